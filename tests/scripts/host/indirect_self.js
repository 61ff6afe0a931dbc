// A file that names itself, twice at that, ends at the limit.
// args-only: @self
// file: self
//| @self @self
// expect stderr: {program}: error: too many indirect files
// exit: 1

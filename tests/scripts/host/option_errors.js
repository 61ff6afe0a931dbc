// All errors are told, and nothing runs.
// args-only: "WScript.Echo('ran')" -bogus -- @{dir}/missing @{dir}/words -load {script} -define
// file: words
//| -verbos "open
//| -load
//|  # "no comment" -x
// expect stderr: {program}: error: unrecognised option -bogus
// expect stderr: {program}: error: unrecognised option --
// expect stderr: {program}: error: can't open indirect file {dir}/missing: No such file or directory
// expect stderr: {program}: error: unterminated string in indirect file {dir}/words(1)
// expect stderr: {program}: error: expected argument for option -load
// expect stderr: {program}: error: unrecognised option -x
// expect stderr: {program}: error: expected argument for option -define
// exit: 1
WScript.Echo('loaded');

// No words at all are a request for help, not an error.
// args-only:
// stderr-contains: Tamberlin for ARM Quorvane - Release 
// stderr-contains: Usage: quorvane [options] script
// stderr-contains:   -define 'variable'='value'  Define a global variable
// stderr-contains:   -help                       Print options help
// stderr-contains:   -load 'file'                Load a script file
// stderr-contains:   -verbose                    Produce verbose output
// exit: 0

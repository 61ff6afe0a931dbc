// No words at all are a request for help, not an error.
// args-only:
// stderr-contains: Tamberlin for ARM Quorvane - Release 
// stderr-contains: Usage: quorvane [options] script
// stderr-contains:   -verbose                    Produce verbose output
// exit: 0

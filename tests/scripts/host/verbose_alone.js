// args-only: -verbose
// exit: 0

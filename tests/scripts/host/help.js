// Help ends the run where it stands: the scripts before it don't run, the errors before it are told.
// args-only: "WScript.Echo(1)" -bogus -help -worse
// stderr-contains: {program}: error: unrecognised option -bogus
// stderr-contains: Usage: quorvane [options] script
// exit: 0

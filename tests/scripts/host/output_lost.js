// Output that doesn't arrive ends the run: at its end, in its midst, and into a pipe that nobody reads.
// args: -define program={program}
// file: cases
//| exec 2>&1 3>&1
//| $0 'WScript.Echo(1)' > /dev/full; echo $?
//| $0 -verbose 1 > /dev/full; echo $?
//| $0 'eval("while (true) WScript.Echo(1)")' > /dev/full; echo $?
//| $0 'WScript.Echo(1); f()' > /dev/full; echo $?
//| { $0 'while (true) WScript.Echo(1)'; echo $? >&3; } | head -c 0
//| { trap "" PIPE; $0 "while (true) WScript.Echo(1)" 2>&3; } | head -c 0
// expect: error: cannot write the standard output
// expect: 1
// expect: error: cannot write the standard output
// expect: 1
// expect: error: cannot write the standard output
// expect: 1
// expect: error: line 1: not a function object
// expect: 1
// expect: 141
// expect: error: cannot write the standard output
TBSys.run('sh -c ". ./cases" ' + program, false);

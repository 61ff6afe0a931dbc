// Words that are no options are one script, a line each, and run after everything else.
// args-only: "WScript.Echo(a)" "WScript.Echo(f); var b = 3" "WScript.Echo(b + '\n')" -load {script} -define a=1
// expect: loaded 1
// expect: 123
WScript.Echo('loaded ' + a + '\n');
var f = 2;

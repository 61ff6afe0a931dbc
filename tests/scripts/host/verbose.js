// args-only: "WScript.Echo('text\n')" -verbose -load {script} -define n=1 -define m -define =
// expect: defining: n=1
// expect: defining: m=
// expect: defining: =
// expect: loading: {script}
// expect: file
// expect: executing: WScript.Echo('text\n')
// expect: text
WScript.Echo('file\n');

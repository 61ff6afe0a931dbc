// args-only: -load {script} -load missing.js -load {script} "WScript.Echo('text')"
// expect: once
// expect error: cannot load missing.js
WScript.Echo('once\n');

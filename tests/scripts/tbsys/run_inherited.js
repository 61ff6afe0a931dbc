// Without capture the child writes where the script does, before what Echo still holds.
// expect: child
// expect: echo
// expect stderr: complaint
// expect: []
WScript.Echo('echo\n');
TBSys.run('sh -c "echo child; echo complaint >&2; cat"', false);
WScript.Echo('[' + TBSys.getRunStdout() + ']\n');

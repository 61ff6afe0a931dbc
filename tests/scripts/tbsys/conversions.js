// Which argument is converted when, as a script can see.
// expect: renameFile: to from false
// expect: copyFile: to from false
// expect: writeStringToFile: no/such false
// expect: writeStringToFile: f text true
// expect: writeByteArrayToFile: no/such false
// expect: run: true 0
// expect: 5 true
function text(value) { return { toString: function () { WScript.Echo(value + ' '); return value; } }; }
function show(member, a, b) {
    WScript.Echo(member + ': ');
    WScript.Echo(TBSys[member](text(a), text(b)) + '\n');
}
show('renameFile', 'from', 'to');
show('copyFile', 'from', 'to');
show('writeStringToFile', 'no/such', 'text');
show('writeStringToFile', 'f', 'text');
show('writeByteArrayToFile', 'no/such', 'array');
show('run', 'true', 'wait');
TBSys.makeDirectory(5);
WScript.Echo(5 + ' ' + TBSys.fileExists('5') + '\n');

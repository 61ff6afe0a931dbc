// Which argument is converted when, as a script can see.
// expect: rename: to from false
// expect: copy: to from false
// expect: write text: no/such false
// expect: write text: f text true
// expect: write bytes: no/such false
// expect: run: true 0
// expect: 5 true
function text(value) { return { toString: function () { WScript.Echo(value + ' '); return value; } }; }
function show(label) { WScript.Echo(label + ': '); }
function end(result) { WScript.Echo(result + '\n'); }
show('rename');
end(TBSys.renameFile(text('from'), text('to')));
show('copy');
end(TBSys.copyFile(text('from'), text('to')));
show('write text');
end(TBSys.writeStringToFile(text('no/such'), text('text')));
show('write text');
end(TBSys.writeStringToFile(text('f'), text('text')));
show('write bytes');
end(TBSys.writeByteArrayToFile(text('no/such'), text('array')));
show('run');
end(TBSys.run(text('true'), text('wait')));
TBSys.makeDirectory(5);
end(5 + ' ' + TBSys.fileExists('5'));

// A copy has the bytes, the time and the mode less the umask; onto itself, by whatever name, nothing is touched.
// file: source
//| content
// file: prepare
//| umask 022; chmod 0666 source; touch -d @1100000000 source; ln source hard; ln -s source soft
//| mkdir folder; ln -s ../source folder/source
// expect: soft>copy true
// expect: /proc/self/status>large true
// expect: source>soft false
// expect: hard>source false
// expect: source>./folder/../source false
// expect: source>folder false
// expect: source>. false
// expect: folder>copy false
// expect: source>/dev/full false
// expect: source> false
// expect: source>folder/none/copy false
// expect: 644 1100000000 8
// expect: true 666
// expect file: source
//| content
TBSys.run('sh prepare', true);
function copy(from, to) { WScript.Echo(from + '>' + to + ' ' + TBSys.copyFile(from, to) + '\n'); }
copy('soft', 'copy');
copy('/proc/self/status', 'large');
copy('source', 'soft');
copy('hard', 'source');
copy('source', './folder/../source');
copy('source', 'folder');
copy('source', '.');
copy('folder', 'copy');
copy('source', '/dev/full');
copy('source', '');
copy('source', 'folder/none/copy');
TBSys.run('stat -c "%a %Y %s" copy', true);
WScript.Echo(TBSys.getRunStdout() + '\n');
var before = TBSys.getRunStdout().length + 1;
TBSys.run('stat -c %a source', true);
WScript.Echo((TBSys.readStringFromFile('large').indexOf('Pid:') > 0) + ' ' + TBSys.getRunStdout().substring(before) + '\n');

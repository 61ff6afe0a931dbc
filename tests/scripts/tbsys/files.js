// file: a.txt
//| content
// file: old.txt
//| something longer that is replaced
// expect: exists true true false false
// expect: size 8 0 0
// expect: copy true 8 false false
// expect: into a directory true 8
// expect: rename true false true
// expect: rename fails false false true
// expect: make true true true false false true
// expect: remove directory false true false false
// expect: remove true false false
function line(label) {
    var text = label;
    for (var i = 0; i < line.values.length; ++i)
        text += ' ' + line.values[i];
    WScript.Echo(text + '\n');
}
function show(label, values) { line.values = values; line(label); }
var sys = TBSys;
show('exists', [sys.fileExists('a.txt'), sys.fileExists('.'), sys.fileExists('missing'), sys.fileExists()]);
sys.writeStringToFile('empty', '');
show('size', [sys.fileSize('a.txt'), sys.fileSize('empty'), sys.fileSize('missing')]);
show('copy', [sys.copyFile('a.txt', 'old.txt'), sys.fileSize('old.txt'), sys.copyFile('missing', 'x'), sys.fileExists('x')]);
sys.makeDirectory('dir');
show('into a directory', [sys.copyFile('a.txt', 'dir'), sys.fileSize('dir/a.txt')]);
show('rename', [sys.renameFile('old.txt', 'new.txt'), sys.fileExists('old.txt'), sys.fileExists('new.txt')]);
show('rename fails', [sys.renameFile('missing', 'a.txt'), sys.renameFile('new.txt', 'no/such'), sys.fileExists('new.txt')]);
show('make', [sys.makeDirectory('x/y/z'), sys.fileExists('x/y/z'), sys.makeDirectory('x/q/..//y/'), sys.makeDirectory('a.txt'),
              sys.makeDirectory('a.txt/b'), sys.makeDirectory('/')]);
show('remove directory', [sys.removeDirectory('x/y'), sys.removeDirectory('x/y/z'), sys.fileExists('x/y/z'), sys.removeDirectory('a.txt')]);
show('remove', [sys.removeFile('new.txt'), sys.fileExists('new.txt'), sys.removeFile('dir')]);

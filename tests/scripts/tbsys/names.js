// Every member finds a file under the very bytes of its name, UTF-8 or not, in whatever locale.
// env: LC_ALL=C
// expect: 2 true true true true true 2 text [255] true false
// expect: dir-é,é
function test(name) {
    var copy = name + '2';
    var results = [
        TBSys.writeStringToFile(name, 'text') && TBSys.fileSize(name) == 4 ? 2 : 0,
        TBSys.copyFile(name, copy), TBSys.fileExists(copy), TBSys.renameFile(copy, 'dir-' + name),
        TBSys.removeFile('dir-' + name), TBSys.makeDirectory('dir-' + name),
        TBSys.run('test -d "dir-' + name + '"', true) + 2, TBSys.readStringFromFile(name),
        '[' + (TBSys.writeByteArrayToFile(name, [-1]) ? TBSys.readByteArrayFromFile(name) : '') + ']',
        TBSys.fileExists('dir-' + name), TBSys.fileExists(copy)];
    var text = '';
    for (var i = 0; i < results.length; ++i)
        text += (i > 0 ? ' ' : '') + results[i];
    return text;
}
var utf8 = test('é');
WScript.Echo(utf8 + '\n');
TBSys.run('sh -c "ls | tr \\"\\n\\" ,"', true);
var list = TBSys.getRunStdout();
WScript.Echo(list.substring(0, list.length - 1) + '\n');
TBSys.removeFile('é');
TBSys.removeDirectory('dir-é');
if (test('caf\xE9') != utf8)
    WScript.Echo('differs\n');

// Ignored child signals and a limit on file sizes, both from outside, change nothing but results.
// args: -define program={program}
// file: inner.js
//| WScript.Echo(TBSys.run('sh -c "exit 3"', true) + '\n');
//| WScript.Echo(TBSys.writeStringToFile('small.txt', 'small') + '\n');
//| WScript.Echo(TBSys.copyFile('big.txt', 'copy.txt') + '\n');
//| WScript.Echo(TBSys.writeByteArrayToFile('bytes.bin', TBSys.readByteArrayFromFile('big.txt')) + '\n');
//| WScript.Echo(TBSys.fileSize('bytes.bin') + '\n');
//| WScript.Echo(TBSys.run('sh -c "cat big.txt > other.txt"', true) < 0);
// expect: 3
// expect: true
// expect: false
// expect: true
// expect: 4096
// expect: true
var text = '0123456789abcdef';
while (text.length < 10000)
    text += text;
TBSys.writeStringToFile('big.txt', text);
TBSys.run('sh -c "trap : CHLD; trap \\"\\" CHLD; ulimit -f 8; exec ' + program + ' -load inner.js 2>&1"', true);
WScript.Echo(TBSys.getRunStdout() + '\n');

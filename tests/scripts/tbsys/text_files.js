// Text files are UTF-8, and lines end in LF when read.
// file-raw: dos.txt "one\r\ntwo\r\n"
// file-raw: utf8.txt "\xc3\xa9\xe2\x82\xac"
// expect: one|two|8
// expect: 233 8364 2
// expect: true true false false
// expect: [] undefined undefined
// expect: undefined 5
// expect file: out.txt
//| a
//| ab
//| 
// expect file: number.txt
//| 5
function line(text) { WScript.Echo(text + '\n'); }
var dos = TBSys.readStringFromFile('dos.txt');
line(dos.substring(0, 3) + '|' + dos.substring(4, 7) + '|' + dos.length);
var text = TBSys.readStringFromFile('utf8.txt');
line(text.charCodeAt(0) + ' ' + text.charCodeAt(1) + ' ' + text.length);
TBSys.writeStringToFile('out.txt', 'replaced, since it was too long');
line(TBSys.writeStringToFile('out.txt', 'a\nab\n\n') + ' ' + TBSys.writeStringToFile('empty', '') + ' ' +
     TBSys.writeStringToFile('.', 'a') + ' ' + TBSys.writeStringToFile('no/such', 'a'));
line('[' + TBSys.readStringFromFile('empty') + '] ' + TBSys.readStringFromFile('missing') + ' ' +
     TBSys.readStringFromFile('.'));
TBSys.writeStringToFile('undefined');
line(TBSys.readStringFromFile() + ' ' + (TBSys.writeStringToFile('utf8-2.txt', text) ? TBSys.fileSize('utf8-2.txt') : 0));
TBSys.writeStringToFile('number.txt', 5);
TBSys.run('sh -c "echo >> number.txt"', true);

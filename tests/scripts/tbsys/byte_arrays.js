// expect: true 65,255,0,0,0,1,0,3
// expect: 8 object number
// expect: true 0 object 0
// expect: undefined undefined false false
// expect: 4236843288 undefined 429103979
// expect: true
function line(text) { WScript.Echo(text + '\n'); }
var holes = [321, -1, undefined, 'x', NaN, '257'];
holes[7] = { valueOf: function () { return 3.9; } };
line(TBSys.writeByteArrayToFile('f', holes) + ' ' + TBSys.readByteArrayFromFile('f'));
var bytes = TBSys.readByteArrayFromFile('f');
line(bytes.length + ' ' + typeof bytes + ' ' + typeof bytes[0]);
line(TBSys.writeByteArrayToFile('f', []) + ' ' + TBSys.fileSize('f') + ' ' + typeof TBSys.readByteArrayFromFile('f') +
     ' ' + TBSys.readByteArrayFromFile('f').length);
line(TBSys.readByteArrayFromFile('missing') + ' ' + TBSys.readByteArrayFromFile('.') + ' ' +
     TBSys.writeByteArrayToFile('.', [1]) + ' ' + TBSys.writeByteArrayToFile('no/such', 'no array'));
line(TBSys.crc32([0x31, 0x32, 0x33, 0x34, 0x35, 0x36, 0x37, 0x38, 0x39]) + ' ' + TBSys.crc32([]) + ' ' +
     TBSys.crc32([97]));
var all = [];
for (var i = 0; i < 256; ++i)
    all.push(i);
TBSys.writeByteArrayToFile('all', all);
line(TBSys.readByteArrayFromFile('all') + '' == all + '');

// 8 MB in and out as an array, with a checksum, against an independent tool.
// expect: 8000000 true true 0
// max memory: 300
TBSys.run('sh -c "head -c 8000000 /dev/urandom > in"', true);
var bytes = TBSys.readByteArrayFromFile('in');
var crc = TBSys.crc32(bytes);
var good = TBSys.writeByteArrayToFile('out', bytes);
WScript.Echo(bytes.length + ' ' + (crc > 0) + ' ' + good + ' ' + TBSys.run('cmp in out', true) + '\n');

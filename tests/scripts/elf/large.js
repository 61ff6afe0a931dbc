// 16 MiB in and out again.
// max memory: 600
// expect: 16777216 true true
var size = 0x1000000;
var image = [0x7F, 0x45, 0x4C, 0x46, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 40, 0, 1, 0, 0, 0, 0, 0, 0, 0, 52, 0, 0, 0,
    0, 0, 0, 0, 0, 0, 0, 0, 52, 0, 32, 0, 1, 0, 40, 0, 0, 0, 0, 0,
    1, 0, 0, 0, 84, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1, 7, 0, 0, 0, 4, 0, 0, 0];
TBSys.writeByteArrayToFile('header', image);
TBSys.run('truncate -s 16777300 header', true);
ElfFile.load('header');
var bytes = ElfFile.peekBytes(0, size);
bytes[0] = 1;
bytes[size - 1] = 2;
var poked = ElfFile.pokeBytes(0, bytes);
WScript.Echo(bytes.length + ' ' + poked + ' ' + (ElfFile.peekUint32(size - 4) == 0x02000000) + '\n');

// The example job on the real image, held against arithmetic of its own.
// args: -define input={root}/examples/firmware/firmware-be.elf -define output=stamped.elf -define version=1.2.3 -load {root}/examples/stamp.js -load {script}
// stdout-contains: version  1.2.3 = 0x00010203 at 0x08000C00
// stdout-contains: 7 bytes changed, version 66051, checksum right
var before = TBSys.readByteArrayFromFile(input);
var after = TBSys.readByteArrayFromFile('stamped.elf');
var changed = before.length == after.length ? 0 : 'lengths differ, ';
for (var i = 0; i < before.length; ++i)
    if (before[i] != after[i])
        ++changed;

// The program headers, read without any help.
var big = after[5] == 2;
function half(at) { return big ? after[at] * 256 + after[at + 1] : after[at + 1] * 256 + after[at]; }
function word(at) { return big ? half(at) * 65536 + half(at + 2) : half(at + 2) * 65536 + half(at); }
var start = 0x08000000;
var flash = [];
for (i = 0; i < 0xC18; ++i)
    flash[i] = 255;
for (i = 0; i < half(44); ++i) {
    var header = word(28) + 32 * i;
    for (var j = 0; j < word(header + 16); ++j)
        flash[word(header + 12) + j - start] = after[word(header + 4) + j];
}
var crc = -1;
for (i = 0; i < 0xC14; ++i) {
    crc ^= flash[i] << 24;
    for (j = 0; j < 8; ++j)
        crc = crc < 0 ? (crc << 1) ^ 0x04C11DB7 : crc << 1;
}
ElfFile.load('stamped.elf');
WScript.Echo(changed + ' bytes changed, version ' + ElfFile.peekUint32(0x08000C00) + ', checksum ' +
             (ElfFile.peekUint32(0x08000C14) == ~crc >>> 0 ? 'right' : 'wrong') + '\n');

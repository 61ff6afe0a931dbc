// Segments with a gap, in either byte order: what can be peeked, poked and summed.
// args: -define folder={root}/examples/firmware/ -load {script}
// expect: firmware.elf 50462976 undefined 319951120 undefined
// expect: 255,255,0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23,255,255 80 true undefined undefined
// expect: 0,0,0,0 0,0,0,0 undefined undefined undefined
// expect: false false true 1,2 true
// expect: 305419896 120,86,52,18 4294967295 undefined undefined
// expect: 319951122 true undefined 11,22,33,44 true
// expect: firmware-be.elf 66051 undefined 269554195 undefined
// expect: 255,255,0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23,255,255 80 true undefined undefined
// expect: 0,0,0,0 0,0,0,0 undefined undefined undefined
// expect: false false true 1,2 true
// expect: 305419896 18,52,86,120 4294967295 undefined undefined
// expect: 269554197 true undefined 11,22,33,44 true
var at = 0x08000C00; // 24 bytes
var data = 0x20000000; // 8 bytes, physically at 0x080001C0
function line(a, b, c, d, e) { WScript.Echo(a + ' ' + b + ' ' + c + ' ' + d + ' ' + e + '\n'); }
function same(address, length, virtual, padding) {
    return ElfFile.crc32(address, length, virtual, padding) ==
        TBSys.crc32(ElfFile.peekBytes(address, length, virtual, padding));
}
function check(file) {
    ElfFile.load(folder + file);
    for (var i = 0; i < 24; ++i)
        ElfFile.pokeBytes(at + i, [i]);
    ElfFile.pokeBytes(data, [16, 17, 18, 19]);
    line(file, ElfFile.peekUint32(at), ElfFile.peekUint32(at + 21), ElfFile.peekUint32(0x080001C0, false),
         ElfFile.peekUint32(0x080001C0));
    line(ElfFile.peekBytes(at - 2, 28, true, 0xFF), ElfFile.peekBytes(at - 16, 80).length, same(at - 16, 80) && same(at, 16) &&
         same(at + 4, 8, true, 7) && same(0x080001BC, 32, false, 0xFF) && same(0xFFFFFFFC, 16, true, 3));
    line(ElfFile.peekBytes(0x0, 4), ElfFile.peekBytes(0x0, 4, true, 0x100), ElfFile.peekBytes(at, 0), ElfFile.crc32(at, -1));
    line(ElfFile.pokeBytes(at, []), ElfFile.pokeBytes(at + 23, [1, 2]), ElfFile.pokeBytes(at + 22, [257, 2]),
         ElfFile.peekBytes(at + 22, 2), same(at, 24));
    ElfFile.pokeUint32(at, 0x12345678);
    var word = ElfFile.peekUint32(at);
    var bytes = ElfFile.peekBytes(at, 4);
    ElfFile.pokeUint32(at, -1);
    line(word, bytes, ElfFile.peekUint32(at));
    ElfFile.pokeUint32(0x080001C0, ElfFile.peekUint32(0x080001C0, false) + 2, false);
    var read = ElfFile.peekUint32(data);
    var alike = read == ElfFile.peekUint32(0x080001C0, 0);
    var missing = ElfFile.pokeUint32(0x5000, 1);

    // What is saved is the file with the patches in it, and nothing else changed.
    ElfFile.load(folder + file);
    ElfFile.pokeBytes(0x080001C4, [11, 22, 33, 44], null);
    ElfFile.save('patched.elf');
    var image = TBSys.readByteArrayFromFile(folder + file);
    var patched = TBSys.readByteArrayFromFile('patched.elf');
    line(read, alike, missing, patched.slice(0x284, 0x288),
         patched.join() == image.slice(0, 0x284).concat([11, 22, 33, 44], image.slice(0x288)).join());
}
check('firmware.elf');
check('firmware-be.elf');

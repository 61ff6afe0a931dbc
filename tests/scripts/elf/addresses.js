// Two segments with a gap, in either byte order: what can be peeked, poked and summed.
// expect: little 50462976 undefined 319951120 undefined
// expect: 0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,255,255,255,255,255,255,255,255,255,255,255,255,255,255,255,255,16,17,18,19,20,21,22,23,24,25,26,27,28,29,30,31
// expect: 0,0,0,0 0,0,0,0 undefined undefined
// expect: 80 true
// expect: false false true 1,2
// expect: 305419896 120,86,52,18 4294967295
// expect: 319951122 true undefined
// expect: little 11,22,33,44 true
// expect: big 66051 undefined 269554195 undefined
// expect: 0,1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,255,255,255,255,255,255,255,255,255,255,255,255,255,255,255,255,16,17,18,19,20,21,22,23,24,25,26,27,28,29,30,31
// expect: 0,0,0,0 0,0,0,0 undefined undefined
// expect: 80 true
// expect: false false true 1,2
// expect: 305419896 18,52,86,120 4294967295
// expect: 269554197 true undefined
// expect: big 11,22,33,44 true
function line(text) { WScript.Echo(text + '\n'); }

var image;
var big;
function half(value) { image = image.concat(big ? [value >> 8, value] : [value, value >> 8]); }
function word(value) {
    half(big ? value >> 16 : value);
    half(big ? value : value >> 16);
}

// The first segment holds 0 to 15 at 0x1000, the second 16 to 31 at 0x1020 and, physically, at 0x8000.
function makeImage(path) {
    image = [0x7F, 0x45, 0x4C, 0x46, 1, big ? 2 : 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0];
    half(2), half(40), word(1), word(0x1000), word(52), word(0), word(0);
    half(52), half(32), half(2), half(40), half(0), half(0);
    word(1), word(116), word(0x1000), word(0x1000), word(16), word(64), word(5), word(4);
    word(1), word(132), word(0x1020), word(0x8000), word(16), word(64), word(5), word(4);
    for (var i = 0; i < 32; ++i)
        image[image.length] = i;
    TBSys.writeByteArrayToFile(path, image);
}

function same(address, length, virtual, padding) {
    return ElfFile.crc32(address, length, virtual, padding) ==
        TBSys.crc32(ElfFile.peekBytes(address, length, virtual, padding));
}

function check(order) {
    makeImage('image.elf');
    ElfFile.load('image.elf');
    line(order + ' ' + ElfFile.peekUint32(0x1000) + ' ' + ElfFile.peekUint32(0x100E) + ' ' +
         ElfFile.peekUint32(0x8000, false) + ' ' + ElfFile.peekUint32(0x8000));
    line(ElfFile.peekBytes(0x1000, 0x30, true, 0xFF));
    line(ElfFile.peekBytes(0x0, 4) + ' ' + ElfFile.peekBytes(0x0, 4, true, 0x100) + ' ' +
         ElfFile.peekBytes(0x1000, 0) + ' ' + ElfFile.crc32(0x1000, -1));
    line(ElfFile.peekBytes(0xFF0, 0x50).length + ' ' +
         (same(0xFF0, 0x50) && same(0x1000, 16) && same(0x1004, 8, true, 7) && same(0x7FFC, 0x20, false, 0xFF) &&
          same(0xFFFFFFFC, 16, true, 3)));
    line(ElfFile.pokeBytes(0x1000, []) + ' ' + ElfFile.pokeBytes(0x100F, [1, 2]) + ' ' +
         ElfFile.pokeBytes(0x100E, [257, 2]) + ' ' + ElfFile.peekBytes(0x100E, 2));
    ElfFile.pokeUint32(0x1000, 0x12345678);
    var word = ElfFile.peekUint32(0x1000);
    var bytes = ElfFile.peekBytes(0x1000, 4);
    ElfFile.pokeUint32(0x1000, -1);
    line(word + ' ' + bytes + ' ' + ElfFile.peekUint32(0x1000));
    ElfFile.pokeUint32(0x8000, ElfFile.peekUint32(0x8000, false) + 2, false);
    line(ElfFile.peekUint32(0x1020) + ' ' + (ElfFile.peekUint32(0x1020) == ElfFile.peekUint32(0x8000, 0)) + ' ' +
         ElfFile.pokeUint32(0x5000, 1));

    // What is saved is the file with the patches in it, and nothing else changed.
    ElfFile.load('image.elf');
    ElfFile.pokeBytes(0x8004, [11, 22, 33, 44], null);
    ElfFile.save('patched.elf');
    var patched = TBSys.readByteArrayFromFile('patched.elf');
    var changes = [];
    var elsewhere = patched.length != image.length;
    for (var i = 0; i < patched.length; ++i)
        if (patched[i] != (image[i] & 255)) {
            changes[changes.length] = patched[i];
            elsewhere = elsewhere || i < 136 || i > 139;
        }
    line(order + ' ' + changes + ' ' + !elsewhere);
}

big = false;
check('little');
big = true;
check('big');

// args: -define little={root}/examples/firmware/firmware.elf -define big={root}/examples/firmware/firmware-be.elf
// args: -load {root}/lib/words.js
// On the checked-in images: 20 bytes of constants at 0x08000C00, then a word, and nothing behind it.
// args: -load {root}/tests/support/show.js
function both(pair) {
    return pair == undefined ? undefined : pair.high + "/" + pair.low;
}

function explore(path, big) {
    ElfFile.load(path);
    var at = 0x08000C04;
    show("order", Words.bigEndian(at) + " " + Words.bigEndian(at, false) + " " + Words.bigEndian(0x08000C16) + " " +
         (ElfFile.peekBytes(at, 4) + "" == (big ? "0,100,0,0" : "100,0,0,0")));

    show("poke", [Words.poke8(at, -1), Words.poke16(at + 2, 0xABCD, big), Words.poke64(at + 4, 0x100000002, big)]);
    show("bytes", ElfFile.peekBytes(at, 12));
    show("peek", [Words.peek8(at), Words.peek16(at + 2, big), Words.peek16(at + 2, !big), both(Words.peek64(at + 4, big)),
         ElfFile.peekUint32(at + 4)]);
    show("64 bits", [Words.poke64(at, -2, big), both(Words.peek64(at, big)),
         Words.poke64(at, { high: 0xFFFFFFFF, low: 0x80000001 }, big), both(Words.peek64(at, big)),
         both(Words.peek64(at, !big))]);
    show("cut", [Words.poke8(at, 0x1FF), Words.peek8(at), Words.poke16(at, -1, big), Words.peek16(at, big)]);

    // The image ends at 0x08000C18; its second segment has other virtual than physical addresses.
    show("end", [Words.peek8(at + 19), Words.peek8(at + 20), Words.peek16(at + 18, big), Words.peek16(at + 19, big),
         both(Words.peek64(at + 13)), Words.poke8(at + 20, 1), Words.poke16(at + 19, 1), Words.poke64(at + 13, 1)]);
    show("physical", [Words.peek8(0x20000000), Words.peek8(0x20000000, false), Words.peek8(0x080001C0, false),
         Words.poke8(0x080001C0, 7, false), Words.peek8(0x20000000)]);
    // Segments that touch by physical address are one for reading.
    show("across", Words.peekBytes(0x080001BE, 4, false).length + " " + Words.peekBytes(0x080001BE, 4) + " " +
         Words.peekBytes(at, 0));

    show("string", [Words.pokeString(at, "v1.2", 8), Words.peekString(at), ElfFile.peekBytes(at, 8)]);
    show("string's room", [Words.pokeString(at, "1234567", 8), Words.peekString(at, 3), Words.pokeString(at, "12345678", 8),
         Words.peekString(at), Words.pokeString(at, "", 1), Words.peekString(at) == ""]);
    Words.pokeString(at + 8, "12345678", 9);
    show("string's end", [Words.poke64(at + 12, -1), Words.peekString(at + 12), Words.peekString(at + 16, 4).length,
         Words.pokeString(at + 12, "to the end", 12)]);
}
explore(little, false);
explore(big, true);
// expect: order: false false undefined true
// expect: poke: true,true,true
// expect: bytes: 255,0,205,171,2,0,0,0,1,0,0,0
// expect: peek: 255,43981,52651,1/2,2
// expect: 64 bits: true,4294967295/4294967294,true,4294967295/2147483649,16777344/4294967295
// expect: cut: true,255,true,65535
// expect: end: 255,undefined,65535,undefined,undefined,false,false,false
// expect: physical: 232,undefined,232,true,7
// expect: across: 4 undefined undefined
// expect: string: true,v1.2,118,49,46,50,0,0,0,0
// expect: string's room: true,123,false,1234567,true,true
// expect: string's end: true,undefined,4,false
// expect: order: true true undefined true
// expect: poke: true,true,true
// expect: bytes: 255,100,171,205,0,0,0,1,0,0,0,2
// expect: peek: 255,43981,52651,1/2,1
// expect: 64 bits: true,4294967295/4294967294,true,4294967295/2147483649,16777344/4294967295
// expect: cut: true,255,true,65535
// expect: end: 255,undefined,65535,undefined,undefined,false,false,false
// expect: physical: 0,undefined,0,true,7
// expect: across: 4 undefined undefined
// expect: string: true,v1.2,118,49,46,50,0,0,0,0
// expect: string's room: true,123,false,1234567,true,true
// expect: string's end: true,undefined,4,false

// args: -load {root}/lib/number.js -load {root}/lib/crc.js
// The values over the digits are the published check values, those over the large array come from other programs.
// args: -load {root}/tests/support/show.js
var digits = [49, 50, 51, 52, 53, 54, 55, 56, 57];
show("check values", [Numbers.hex(Crc.zlib(digits), 8), Numbers.hex(Crc.bzip2(digits), 8), Numbers.hex(Crc.mpeg2(digits), 8),
     Numbers.hex(Crc.ccittFalse(digits), 4), Numbers.hex(Crc.sum32(digits), 8)]);
show("nothing", [Crc.zlib([]), Crc.bzip2([]), Crc.mpeg2([]), Crc.stm32([]), Crc.ccittFalse([]), Crc.sum32([])]);
show("cut to bytes", (Crc.zlib([-1, 256, 321]) == Crc.zlib([255, 0, 65])) + " " + (Crc.sum32([-1, 256]) == 255));

// The word 0x01020304 as the chip reads it from memory is 4, 3, 2, 1; its unit is fed 1, 2, 3, 4.
show("words", Crc.stm32([4, 3, 2, 1, 8, 7, 6, 5]) == Crc.mpeg2([1, 2, 3, 4, 5, 6, 7, 8]));
show("half a word", Crc.stm32(digits));

var image = [];
for (var i = 0; i < 524288; i++) {
    image[i] = i * 7 & 255;
}
show("512 KiB", [Numbers.hex(Crc.zlib(image)), Numbers.hex(Crc.ccittFalse(image)), Numbers.hex(Crc.sum32(image))]);
var head = image.slice(0, 1001);
var tail = image.slice(1001, 3000);
var both = image.slice(0, 3000);
show("in pieces", [Crc.zlib(tail, Crc.zlib(head)) == Crc.zlib(both), Crc.ccittFalse(tail, Crc.ccittFalse(head)) ==
     Crc.ccittFalse(both), Crc.sum32(tail, Crc.sum32(head)) == Crc.sum32(both)]);
// expect: check values: 0xCBF43926,0xFC891918,0x0376E6E7,0x29B1,0x000001DD
// expect: nothing: 0,0,4294967295,4294967295,65535,0
// expect: cut to bytes: true true
// expect: words: true
// expect: half a word: undefined
// expect: 512 KiB: 0x34BD30AD,0x217D,0x3FC0000
// expect: in pieces: true,true,true

// Crc: the checksums that boot loaders and tools ask for, over an array of bytes.
//
//   Crc.zlib(bytes, before)          CRC-32 of zlib, gzip, PNG, Ethernet    "123456789" gives 0xCBF43926
//   Crc.bzip2(bytes)                 CRC-32/BZIP2, the one of TBSys.crc32                   0xFC891918
//   Crc.mpeg2(bytes)                 CRC-32/MPEG-2                                          0x0376E6E7
//   Crc.stm32(bytes)                 as the unit in STM32 chips does it: MPEG-2 over 32-bit words that it
//                                    reads with the low byte first; undefined unless the length is a
//                                    multiple of 4
//   Crc.ccittFalse(bytes, before)    CRC-16/CCITT-FALSE                                     0x29B1
//   Crc.sum32(bytes, before)         sum of the bytes, kept to 32 bits                      0x000001DD
//
// All results are unsigned numbers, also for the empty array. `before` is the result over what came before
// these bytes, so that an image can be taken in pieces: Crc.zlib(b, Crc.zlib(a)) is the CRC of a and b.
// Needs no other file.

var Crc = {};

Crc.makeTable = function (step) {
    var table = [];
    for (var i = 0; i < 256; i++) {
        table[i] = step(i);
    }
    return table;
};

Crc.zlibTable = Crc.makeTable(function (value) {
    for (var bit = 0; bit < 8; bit++) {
        value = value & 1 ? value >>> 1 ^ 0xEDB88320 : value >>> 1;
    }
    return value;
});

Crc.ccittTable = Crc.makeTable(function (value) {
    value = value << 8;
    for (var bit = 0; bit < 8; bit++) {
        value = value & 0x8000 ? value << 1 ^ 0x1021 : value << 1;
    }
    return value & 0xFFFF;
});

Crc.zlib = function (bytes, before) {
    var table = Crc.zlibTable;
    var crc = before == undefined ? -1 : ~before;
    var length = bytes.length;
    for (var i = 0; i < length; i++) {
        crc = crc >>> 8 ^ table[(crc ^ bytes[i]) & 255];
    }
    return ~crc >>> 0;
};

Crc.bzip2 = function (bytes) {
    return bytes.length > 0 ? TBSys.crc32(bytes) : 0;
};

Crc.mpeg2 = function (bytes) {
    return ~Crc.bzip2(bytes) >>> 0;
};

Crc.stm32 = function (bytes) {
    if (bytes.length % 4 != 0) {
        return undefined;
    }
    var swapped = [];
    for (var i = 0; i < bytes.length; i += 4) {
        swapped[i] = bytes[i + 3];
        swapped[i + 1] = bytes[i + 2];
        swapped[i + 2] = bytes[i + 1];
        swapped[i + 3] = bytes[i];
    }
    return Crc.mpeg2(swapped);
};

Crc.ccittFalse = function (bytes, before) {
    var table = Crc.ccittTable;
    var crc = before == undefined ? 0xFFFF : before;
    var length = bytes.length;
    for (var i = 0; i < length; i++) {
        crc = (crc << 8 ^ table[(crc >>> 8 ^ bytes[i]) & 255]) & 0xFFFF;
    }
    return crc;
};

Crc.sum32 = function (bytes, before) {
    var sum = before == undefined ? 0 : before;
    var length = bytes.length;
    for (var i = 0; i < length; i++) {
        sum += bytes[i] & 255;
    }
    return sum >>> 0;
};

// Words: numbers of 8, 16 and 64 bits, in either byte order, and strings in the loaded image, on top of
// ElfFile.peekBytes and pokeBytes. (32 bits: ElfFile.peekUint32 and pokeUint32.)
//
//   Words.peek8(address, virtual)                     Words.poke8(address, value, virtual)
//   Words.peek16(address, bigEndian, virtual)         Words.poke16(address, value, bigEndian, virtual)
//   Words.peek64(address, bigEndian, virtual)         Words.poke64(address, value, bigEndian, virtual)
//   Words.peekString(address, limit, virtual)         Words.pokeString(address, text, size, virtual)
//   Words.peekBytes(address, length, virtual)         the bytes, all of which must be in the image
//   Words.bigEndian(address, virtual)                 true when words have the high byte first;
//                                                     `address` is any word of the image
//
// The peeks give undefined where a byte is not in the image, the pokes true when they have written; like
// pokeBytes they write nothing across the end of a segment. `virtual` is as for ElfFile: left out or true a
// virtual address, false a physical one. `bigEndian` left out means false. Numbers are unsigned; a poke
// keeps the low bits, so that -1 sets all.
//
// 64 bits pass through an object { high, low } of two 32-bit numbers, since a number is exact up to 2^53
// only; poke64 takes a plain whole number as well. A string is its character codes and a 0 behind them:
// peekString reads up to that 0 or `limit` characters (256 if left out), pokeString fills the rest of `size`
// bytes with 0 and refuses, by false, a text that does not leave room for one. Needs no other file.

var Words = {};

// A byte that is not in the image reads as the padding, so it changes with it.
Words.peekBytes = function (address, length, virtual) {
    var bytes = ElfFile.peekBytes(address, length, virtual, 0);
    var others = ElfFile.peekBytes(address, length, virtual, 255);
    if (bytes == undefined) {
        return undefined;
    }
    for (var i = 0; i < length; i++) {
        if (bytes[i] != others[i]) {
            return undefined;
        }
    }
    return bytes;
};

Words.fromBytes = function (bytes, bigEndian) {
    var value = 0;
    for (var i = 0; i < bytes.length; i++) {
        value = value * 256 + bytes[bigEndian ? i : bytes.length - 1 - i];
    }
    return value;
};

Words.toBytes = function (value, count, bigEndian) {
    var bytes = [];
    for (var i = 0; i < count; i++) {
        bytes[i] = value >>> 8 * (bigEndian ? count - 1 - i : i) & 255;
    }
    return bytes;
};

Words.peek8 = function (address, virtual) {
    var bytes = Words.peekBytes(address, 1, virtual);
    return bytes == undefined ? undefined : bytes[0];
};

Words.poke8 = function (address, value, virtual) {
    return ElfFile.pokeBytes(address, [value & 255], virtual);
};

Words.peek16 = function (address, bigEndian, virtual) {
    var bytes = Words.peekBytes(address, 2, virtual);
    return bytes == undefined ? undefined : Words.fromBytes(bytes, bigEndian);
};

Words.poke16 = function (address, value, bigEndian, virtual) {
    return ElfFile.pokeBytes(address, Words.toBytes(value, 2, bigEndian), virtual);
};

Words.peek64 = function (address, bigEndian, virtual) {
    var bytes = Words.peekBytes(address, 8, virtual);
    if (bytes == undefined) {
        return undefined;
    }
    var first = Words.fromBytes(bytes.slice(0, 4), bigEndian);
    var second = Words.fromBytes(bytes.slice(4, 8), bigEndian);
    return bigEndian ? { high: first, low: second } : { high: second, low: first };
};

Words.poke64 = function (address, value, bigEndian, virtual) {
    if (typeof value == "number") {
        value = { high: Math.floor(value / 4294967296), low: value };
    }
    var high = Words.toBytes(value.high, 4, bigEndian);
    var low = Words.toBytes(value.low, 4, bigEndian);
    return ElfFile.pokeBytes(address, bigEndian ? high.concat(low) : low.concat(high), virtual);
};

Words.peekString = function (address, limit, virtual) {
    limit = limit == undefined ? 256 : limit;
    var text = "";
    while (text.length < limit) {
        var code = Words.peek8(address + text.length, virtual);
        if (code == undefined) {
            return undefined;
        }
        if (code == 0) {
            return text;
        }
        text += String.fromCharCode(code);
    }
    return text;
};

Words.pokeString = function (address, text, size, virtual) {
    text = String(text);
    if (text.length >= size) {
        return false;
    }
    var bytes = [];
    for (var i = 0; i < size; i++) {
        bytes[i] = i < text.length ? text.charCodeAt(i) & 255 : 0;
    }
    return ElfFile.pokeBytes(address, bytes, virtual);
};

// A word whose two ends are alike says nothing, so one is written for a moment.
Words.bigEndian = function (address, virtual) {
    var old = ElfFile.peekUint32(address, virtual);
    if (old == undefined) {
        return undefined;
    }
    ElfFile.pokeUint32(address, 1, virtual);
    var first = ElfFile.peekBytes(address, 1, virtual)[0];
    ElfFile.pokeUint32(address, old, virtual);
    return first == 0;
};

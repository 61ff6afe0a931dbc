// Stamps a linked firmware image: writes a version number into it, then the checksum of the flash, and saves
// the result under another name.
//
//   quorvane -define input=firmware/firmware.elf -define output=stamped.elf -define version=1.2.3 \
//       -load stamp.js
//
// The image is expected to have the words board::imageVersion and board::imageCrc, the latter behind
// everything that the checksum covers.

function say(text) {
    WScript.Echo(text + "\n");
}

// There is no exit() and no exception to throw: a build is stopped by an error of the script, and the reason
// is printed before it.
function fail(reason) {
    say("stamp.js: " + reason);
    stopHere();
}

function hex(number) {
    var digits = number.toString(16).toUpperCase();
    while (digits.length < 8) {
        digits = "0" + digits;
    }
    return "0x" + digits;
}

function symbol(name) {
    var address = ElfFile.symbolValue(name);
    if (address == undefined) {
        fail("the image has no symbol " + name);
    }
    return address;
}

// "1.2.3" gives 0x00010203; a text without points is taken as one number. Definitions are always texts, and
// Number() is what turns them into numbers here.
function versionNumber(text) {
    var parts = 0;
    var result = 0;
    var from = 0;
    var point;
    do {
        point = text.indexOf(".", from);
        var part = text.substring(from, point < 0 ? text.length : point);
        var number = Number(part);
        if (part == "" || !(number >= 0 && number <= 0xFFFFFFFF) || number != Math.floor(number)) {
            fail("not a version: " + text);
        }
        result = result * 256 + number;
        parts++;
        if (parts > 1 && number > 255 || parts > 3) {
            fail("not a version: " + text);
        }
        from = point + 1;
    } while (point >= 0)
    if (parts > 1 && result > 0xFFFFFF) {
        fail("not a version: " + text);
    }
    return result;
}

function stamp() {
    // Reading a name that nothing has defined gives undefined.
    if (input == undefined || output == undefined || version == undefined) {
        fail("needs -define input=..., -define output=... and -define version=...");
    }

    ElfFile.load(input);
    var versionAt = symbol("board::imageVersion");
    var crcAt = symbol("board::imageCrc");
    var start = symbol("flash_start");
    if (ElfFile.peekUint32(crcAt) != 0xFFFFFFFF) {
        fail("the image has been stamped before");
    }

    ElfFile.pokeUint32(versionAt, versionNumber(version));

    // The checksum is over the flash as the board sees it: by physical address, since the initial values of
    // variables lie in the flash too, and with 0xFF where nothing is programmed.
    var length = crcAt - start;
    var crc = ElfFile.crc32(start, length, false, 0xFF);
    ElfFile.pokeUint32(crcAt, crc);
    ElfFile.save(output);

    say("image    " + input);
    say("main     " + hex(symbol("main")) + ", sensor::scale(unsigned short) "
        + hex(symbol("sensor::scale(unsigned short)")));
    say("version  " + version + " = " + hex(ElfFile.peekUint32(versionAt)) + " at " + hex(versionAt));
    say("crc      " + hex(crc) + " over " + length + " bytes from " + hex(start) + ", at " + hex(crcAt));
    say("saved    " + output);
}

stamp();

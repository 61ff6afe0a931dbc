// Verifies the checksum that a build step has put into an image. Ends with status 1 and says why when it is
// wrong, so that a build or a release stops there.
//
//   quorvane -define image=firmware.elf -define slot=board::imageCrc -define from=flash_start \
//       -load lib/assert.js -load lib/number.js -load lib/patch.js -load lib/crc.js \
//       -load examples/verify-crc.js
//
//   image    the ELF file
//   slot     symbol or address of the word that holds the checksum
//   from     symbol or address at which the checksum begins; it ends in front of the slot
//   fill     what the flash holds where nothing is programmed (0xFF)
//   kind     bzip2 (as ElfFile.crc32 computes it), mpeg2, stm32 or zlib (bzip2)
//
// Addresses are physical ones: the flash as the board sees it, with the initial values of variables in it.

function place(text) {
    var address = Numbers.parseInteger(text);
    return isNaN(address) ? Patch.requireSymbol(text) : address;
}

function checksum(from, length, padding) {
    if (kind == undefined || kind == "bzip2") {
        return ElfFile.crc32(from, length, false, padding);
    }
    Assert.that(kind == "mpeg2" || kind == "stm32" || kind == "zlib", "no such kind of checksum: " + kind);
    return Crc[kind](ElfFile.peekBytes(from, length, false, padding));
}

function verify() {
    ElfFile.load(Assert.defined(image, "image"));
    var slotAt = place(Assert.defined(slot, "slot"));
    var start = place(Assert.defined(from, "from"));
    var padding = fill == undefined ? 0xFF : Numbers.parseInteger(fill);
    Assert.that(padding >= 0 && padding <= 255, "fill is no byte: " + fill);
    Assert.that(slotAt > start, "the slot does not lie behind the start of the checksum");

    var stored = ElfFile.peekUint32(slotAt, false);
    Assert.that(stored != undefined, slot + " is not in the image");
    var computed = checksum(start, slotAt - start, padding);
    Assert.that(computed != undefined, "these bytes have no checksum of this kind");
    if (stored != computed) {
        Assert.fail(image + ": wrong checksum: " + Numbers.hex(computed, 8) + " over " + (slotAt - start) +
                    " bytes from " + Numbers.hex(start, 8) + ", but the image holds " +
                    Numbers.hex(stored, 8));
    }
    WScript.Echo(image + ": checksum " + Numbers.hex(computed, 8) + " is right\n");
}

verify();

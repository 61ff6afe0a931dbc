// Compares two images byte by byte over a range of addresses and prints where they differ. What lies where
// in the files, and whether a gap is a gap in both, does not matter: only what the board would read. Ends
// with status 1 when there is a difference.
//
//   quorvane -define first=old.elf -define second=new.elf -define from=0x08000000 -define length=0x1000 \
//       -load lib/text.js -load lib/assert.js -load lib/number.js -load examples/compare.js
//
//   first, second    the ELF files
//   from, length     the range; addresses are physical ones
//   fill             what the flash holds where nothing is programmed (0xFF)
//   show             how many places at most are printed (20); differing bytes in a row are one place

function bytesOf(path, start, size, padding) {
    ElfFile.load(path);
    return ElfFile.peekBytes(start, size, false, padding);
}

function row(bytes, from, to) {
    var text = "";
    for (var i = from; i < to && i < from + 8; i++) {
        text += " " + Numbers.hexDigits(bytes[i], 2);
    }
    return text + (to > from + 8 ? " ..." : "");
}

function compare() {
    var start = Numbers.parseInteger(Assert.defined(from, "from"));
    var size = Numbers.parseInteger(Assert.defined(length, "length"));
    var padding = fill == undefined ? 0xFF : Numbers.parseInteger(fill);
    var most = show == undefined ? 20 : Numbers.parseInteger(show);
    Assert.that(start >= 0 && size > 0 && padding >= 0 && padding <= 255 && most >= 0,
                "from, length, fill and show must be numbers");
    var old = bytesOf(Assert.defined(first, "first"), start, size, padding);
    var now = bytesOf(Assert.defined(second, "second"), start, size, padding);

    var places = 0;
    var differing = 0;
    for (var i = 0; i < size; i++) {
        if (old[i] == now[i]) {
            continue;
        }
        var end = i + 1;
        while (end < size && old[end] != now[end]) {
            end++;
        }
        places++;
        differing += end - i;
        if (places <= most) {
            WScript.Echo(Numbers.hex(start + i, 8) + Text.padLeft(end - i, 7) + " :" + row(old, i, end) +
                         " ->" + row(now, i, end) + "\n");
        }
        i = end;
    }
    Assert.that(differing == 0, differing + " bytes in " + places + " places differ");
    WScript.Echo("no difference in " + size + " bytes from " + Numbers.hex(start, 8) + "\n");
}

compare();

// Draws what lies where: the flash by physical address with the gaps that the checksum reads as erased, what has
// another address at run time, and every word that a build step has changed since the linker. The picture is an
// SVG that follows the reader's light or dark mode.
//
//   quorvane -define original=firmware.elf -define image=stamped.elf -define picture=memory_map.svg \
//       -define from=flash_start -define slot=board::imageCrc -define "names=board::imageVersion" \
//       -load lib/text.js -load lib/assert.js -load lib/number.js -load lib/words.js -load lib/patch.js \
//       -load examples/memory_map.js
//
//   original     the ELF file as the linker made it
//   image        the same file patched
//   picture      the file to write
//   from, slot   symbols of the first byte under the checksum and of the word that holds it
//   names        symbols that changed words may bear, with ";" between them

var TOP = 84, STRIP = 98, FLASH = 176, FLASH_WIDTH = 286, MEMORY = 556, MEMORY_WIDTH = 184;

var STYLE =
    "text{font:13px system-ui,sans-serif;fill:var(--text)}.title{font-size:17px;font-weight:600}" +
    ".name{font-weight:600}.dim{fill:var(--dim)}.mono{font:12px ui-monospace,monospace}" +
    ".small{font-size:12px}.end{text-anchor:end}" +
    ".stored{fill:var(--stored);stroke:var(--storedLine)}.gap{fill:url(#hatch);stroke:var(--line)}" +
    ".zeroed{fill:none;stroke:var(--storedLine);stroke-dasharray:4 3}" +
    ".patched{fill:var(--patched);stroke:var(--patchedLine)}.tie{fill:var(--stored);opacity:.5}" +
    ".line{fill:none;stroke:var(--line)}.crc{fill:none;stroke:var(--patchedLine);stroke-width:1.5}" +
    "svg{--back:#fff;--text:#1c2128;--dim:#57606a;--line:#b4bcc6;--stored:#d3e5f8;--storedLine:#2f6db3;" +
    "--patched:#fde3cf;--patchedLine:#bc4c00}" +
    "@media(prefers-color-scheme:dark){svg{--back:#14171c;--text:#e4e7eb;--dim:#9ba5b1;--line:#4a535f;" +
    "--stored:#1b3856;--storedLine:#6cb0f5;--patched:#56290f;--patchedLine:#ff9e5e}}";

var drawing = "";

function draw(element) {
    drawing += element + "\n";
}

function label(x, y, kind, text) {
    text = Text.replaceAll(Text.replaceAll(text, "&", "&amp;"), "<", "&lt;");
    draw("<text x=\"" + x + "\" y=\"" + y + "\" class=\"" + kind + "\">" + text + "</text>");
}

function box(x, y, width, height, kind) {
    draw("<rect x=\"" + x + "\" y=\"" + y + "\" width=\"" + width + "\" height=\"" + height + "\" class=\"" + kind +
         "\"/>");
}

function hex(number) {
    return Numbers.hex(number, 8);
}

function tenth(number) {
    return Math.round(number * 10) / 10;
}

function bytesText(size) {
    return Numbers.grouped(size) + (size == 1 ? " byte" : " bytes");
}

// ElfFile answers for addresses; which of them there are is in the headers of the file.
function reader(bytes) {
    return {
        bigEndian: bytes[5] == 2,
        number: function (at, size) {
            return Words.fromBytes(bytes.slice(at, at + size), this.bigEndian);
        },
        text: function (at) {
            var end = at;
            while (bytes[end] > 0) {
                end++;
            }
            return Text.fromBytes(bytes.slice(at, end));
        }
    };
}

function sectionNames(file, address, size) {
    var table = file.number(32, 4), entry = file.number(46, 2), count = file.number(48, 2);
    var texts = file.number(table + entry * file.number(50, 2) + 16, 4);
    var names = "";
    for (var i = 0; i < count; i++) {
        var at = table + entry * i;
        var start = file.number(at + 12, 4);
        var allocated = (file.number(at + 8, 4) & 2) != 0 && file.number(at + 20, 4) > 0;
        if (allocated && start >= address && start < address + size) {
            names += (names == "" ? "" : ", ") + file.text(texts + file.number(at, 4));
        }
    }
    return names;
}

function segmentsOf(file) {
    var table = file.number(28, 4), entry = file.number(42, 2), count = file.number(44, 2);
    var segments = [];
    for (var i = 0; i < count; i++) {
        var at = table + entry * i;
        if (file.number(at, 4) == 1) { // to be loaded
            var segment = { offset: file.number(at + 4, 4), virtual: file.number(at + 8, 4),
                            physical: file.number(at + 12, 4), stored: file.number(at + 16, 4),
                            size: file.number(at + 20, 4) };
            segment.name = sectionNames(file, segment.virtual, segment.size);
            segments.push(segment);
        }
    }
    return segments;
}

function changedWords(before, after, segment, names) {
    var words = [];
    for (var at = 0; at < segment.stored; at += 4) {
        var size = Math.min(4, segment.stored - at);
        var old = before.number(segment.offset + at, size), now = after.number(segment.offset + at, size);
        if (old != now) {
            var name = names[segment.virtual + at];
            words.push({ address: segment.physical + at, name: name == undefined ? "" : name, old: old, now: now });
        }
    }
    return words;
}

function byAddress(a, b) {
    return a.address - b.address;
}

// What the file brings, by physical address, with the gaps between.
function flashBlocks(segments, before, after, names) {
    var stored = [];
    for (var i = 0; i < segments.length; i++) {
        var segment = segments[i];
        if (segment.stored > 0) {
            stored.push({ kind: "stored", address: segment.physical, size: segment.stored, name: segment.name,
                          words: changedWords(before, after, segment, names) });
        }
    }
    stored.sort(byAddress);
    var blocks = [];
    for (i = 0; i < stored.length; i++) {
        var end = i == 0 ? stored[0].address : stored[i - 1].address + stored[i - 1].size;
        if (stored[i].address > end) {
            blocks.push({ kind: "gap", address: end, size: stored[i].address - end, name: "gap, erased flash",
                          words: [] });
        }
        blocks.push(stored[i]);
    }
    return blocks;
}

// What has an address at run time that is not the one in the flash.
function memoryBlocks(segments) {
    var blocks = [];
    for (var i = 0; i < segments.length; i++) {
        var segment = segments[i];
        if (segment.stored > 0 && segment.virtual != segment.physical) {
            blocks.push({ kind: "stored", address: segment.virtual, size: segment.stored, name: segment.name,
                          from: segment.physical });
        }
        if (segment.size > segment.stored) {
            var zeroed = segment.virtual + segment.stored;
            blocks.push({ kind: "zeroed", address: zeroed, size: segment.size - segment.stored, name: segment.name });
        }
    }
    return blocks.sort(byAddress);
}

// Sets y and height of each block. Heights grow with the logarithm of the size: a word stays readable beside
// a gap of a thousand.
function arrange(blocks, y) {
    for (var i = 0; i < blocks.length; i++) {
        var block = blocks[i];
        block.y = y;
        block.height = Math.round(36 + 5 * Math.log(block.size));
        if (block.kind != "gap" && block.words != undefined) {
            block.height += 42 * block.words.length;
        }
        y += block.height;
    }
    return y;
}

function drawBlock(x, width, block) {
    box(x, block.y, width, block.height, block.kind);
    label(x + 10, block.y + 18, "mono", hex(block.address));
    label(x + width - 10, block.y + 18, "small end dim", bytesText(block.size));
    label(x + 10, block.y + 36, "name", block.name);
}

function drawWords(block) {
    var y = block.y + block.height - 42 * block.words.length - 2;
    for (var i = 0; i < block.words.length; i++, y += 42) {
        var word = block.words[i];
        box(FLASH + 8, y, FLASH_WIDTH - 16, 38, "patched");
        label(FLASH + 16, y + 15, "mono", hex(word.address) + " " + word.name);
        draw("<text x=\"" + (FLASH + 16) + "\" y=\"" + (y + 31) + "\" class=\"mono\">" + hex(word.old) +
             " &#8594; <tspan class=\"name\">" + hex(word.now) + "</tspan></text>");
    }
}

// The flash once more, to scale, with an axis of round addresses and ties to the blocks beside it.
function drawStrip(blocks, bottom) {
    var first = blocks[0].address;
    var end = blocks[blocks.length - 1].address + blocks[blocks.length - 1].size;
    var scale = (bottom - TOP) / (end - first);
    for (var i = 0; i < blocks.length; i++) {
        var block = blocks[i];
        var y = tenth(TOP + (block.address - first) * scale), height = tenth(block.size * scale);
        if (block.kind == "stored") {
            draw("<path class=\"tie\" d=\"M" + (STRIP + 22) + " " + y + "L" + FLASH + " " + block.y + "v" +
                 block.height + "L" + (STRIP + 22) + " " + tenth(y + height) + "z\"/>");
        }
        box(STRIP, y, 22, height, block.kind);
        for (var j = 0; j < block.words.length; j++) {
            box(STRIP, tenth(TOP + (block.words[j].address - first) * scale), 22, tenth(4 * scale), "patched");
        }
    }
    var step = 16;
    while ((end - first) / step > 8) {
        step *= 2;
    }
    for (var tick = Math.ceil(first / step) * step; tick < end; tick += step) {
        var at = tenth(TOP + (tick - first) * scale);
        draw("<path class=\"line\" d=\"M" + (STRIP - 6) + " " + at + "h6\"/>");
        label(STRIP - 10, tenth(at + 4), "mono end dim", hex(tick));
    }
}

function drawCopies(flash, memory) {
    var left = FLASH + FLASH_WIDTH, middle = (left + MEMORY) / 2;
    for (var i = 0; i < memory.length; i++) {
        for (var j = 0; j < flash.length; j++) {
            var from = flash[j], to = memory[i];
            if (to.from == from.address && from.kind == "stored") {
                draw("<path class=\"tie\" d=\"M" + left + " " + from.y + "C" + middle + " " + from.y + " " + middle +
                     " " + to.y + " " + MEMORY + " " + to.y + "v" + to.height + "C" + middle + " " +
                     (to.y + to.height) + " " + middle + " " + (from.y + from.height) + " " + left + " " +
                     (from.y + from.height) + "z\"/>");
            }
        }
    }
}

// A bracket along all that the checksum covers, and what it comes to.
function drawChecksum(blocks, start, slotAt, y) {
    var top = blocks[0].y, bottom = top, filled = slotAt - start;
    for (var i = 0; i < blocks.length; i++) {
        var block = blocks[i];
        if (block.address <= start) {
            top = block.y;
        }
        if (block.address < slotAt) {
            bottom = block.y + block.height;
        }
        if (block.kind == "stored") {
            filled -= Math.max(0, Math.min(block.address + block.size, slotAt) - Math.max(block.address, start));
        }
        for (var j = 0; j < block.words.length; j++) {
            if (block.words[j].address == slotAt) {
                bottom = block.y + block.height - 42 * (block.words.length - j) - 4;
            }
        }
    }
    var x = FLASH + FLASH_WIDTH + 8;
    draw("<path class=\"crc\" d=\"M" + x + " " + (top + 1) + "h10V" + bottom + "h-10M" + (x + 10) + " " +
         Math.min(y + 8, bottom) + "h30V" + (y + 8) + "H" + (MEMORY - 10) + "\"/>");
    label(MEMORY, y + 12, "name", "CRC-32 " + hex(ElfFile.peekUint32(slotAt, false)));
    label(MEMORY, y + 31, "small", "over " + bytesText(slotAt - start) + ", of which");
    label(MEMORY, y + 48, "small", bytesText(filled) + " of gaps read");
    label(MEMORY, y + 65, "small", "as 0xFF. Its own word");
    label(MEMORY, y + 82, "small", "lies behind all that.");
    return y + 90;
}

function drawLegend(y) {
    var entries = [["stored", "in the file"], ["gap", "in no segment"], ["zeroed", "zeroed at start"],
                   ["patched", "changed since the linker"]];
    for (var i = 0; i < entries.length; i++) {
        box(STRIP + 150 * i, y, 14, 14, entries[i][0]);
        label(STRIP + 150 * i + 20, y + 12, "small", entries[i][1]);
    }
}

function memoryMap() {
    var oldBytes = TBSys.readByteArrayFromFile(Assert.defined(original, "original"));
    var bytes = TBSys.readByteArrayFromFile(Assert.defined(image, "image"));
    Assert.that(oldBytes != undefined, "cannot read " + original);
    ElfFile.load(image);
    Assert.that(oldBytes.length == bytes.length, "the two are not the same image");

    var start = Patch.requireSymbol(Assert.defined(from, "from"));
    var slotAt = Patch.requireSymbol(Assert.defined(slot, "slot"));
    Assert.equal(ElfFile.peekUint32(slotAt, false), ElfFile.crc32(start, slotAt - start, false, 0xFF),
                 "checksum in " + slot);
    var known = {};
    var wanted = Text.split(slot + (names == undefined ? "" : ";" + names), ";");
    for (var i = 0; i < wanted.length; i++) {
        known[Patch.requireSymbol(wanted[i])] = wanted[i];
    }

    var file = reader(bytes);
    var segments = segmentsOf(file);
    var flash = flashBlocks(segments, reader(oldBytes), file, known);
    var memory = memoryBlocks(segments);
    Assert.that(flash.length > 0, "nothing is stored in " + image);
    var flashEnd = arrange(flash, TOP), memoryEnd = arrange(memory, TOP);

    label(20, 30, "title", image.substring(image.lastIndexOf("/") + 1));
    label(FLASH, TOP - 28, "name", "Flash");
    label(FLASH, TOP - 11, "small dim", "physical addresses");
    label(MEMORY, TOP - 28, "name", "Memory at run time");
    label(MEMORY, TOP - 11, "small dim", "virtual addresses");
    label(20, TOP - 11, "small dim", "to scale");
    drawStrip(flash, flashEnd);
    drawCopies(flash, memory);
    for (i = 0; i < flash.length; i++) {
        drawBlock(FLASH, FLASH_WIDTH, flash[i]);
        drawWords(flash[i]);
    }
    for (i = 0; i < memory.length; i++) {
        drawBlock(MEMORY, MEMORY_WIDTH, memory[i]);
    }
    var height = Math.max(flashEnd, drawChecksum(flash, start, slotAt, memoryEnd + 40)) + 26;
    drawLegend(height);
    height += 34;

    var head = "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 760 " + height + "\" width=\"760\" height=\"" +
               height + "\" role=\"img\">\n<title>Memory map of " + image + "</title>\n<style>" + STYLE +
               "</style>\n<pattern id=\"hatch\" width=\"7\" height=\"7\" patternUnits=\"userSpaceOnUse\" " +
               "patternTransform=\"rotate(45)\"><path d=\"M0 0v7\" stroke=\"var(--line)\" stroke-width=\"1.2\"/>" +
               "</pattern>\n<rect width=\"760\" height=\"" + height + "\" fill=\"var(--back)\"/>\n";
    var text = head + drawing + "</svg>\n";
    Assert.that(TBSys.writeStringToFile(Assert.defined(picture, "picture"), text) &&
                TBSys.fileSize(picture) == text.length, "cannot write " + picture);
    WScript.Echo(flash.length + " blocks of flash, " + memory.length + " of memory in " + picture + "\n");
}

memoryMap();

// Runs objcopy and size on an image and uses what they make and say: makes the binary file that a programmer
// writes, holds it against the image, and prints how much flash and RAM is taken. Fails when that is more
// than there is.
//
//   quorvane -define image=firmware.elf -define binary=firmware.bin -define flash=0x08000000 \
//       -define flashSize=65536 -define ram=0x20000000 -define ramSize=8192 \
//       -load lib/text.js -load lib/assert.js -load lib/number.js -load lib/run.js -load examples/sizes.js
//
//   image                the ELF file
//   binary               the file to make
//   flash, flashSize     where the flash begins and its bytes; ram, ramSize the same
//   prefix               front of the tools' names, such as arm-none-eabi-. Those of the host do, too:
//                        their objcopy only has to be told that the file is a 32-bit one

function number(text, name) {
    var value = Numbers.parseInteger(Assert.defined(text, name));
    Assert.that(value >= 0, name + " is no number: " + text);
    return value;
}

function makeBinary(tools, start) {
    var format = "";
    if (tools == "") {
        var bigEndian = TBSys.readByteArrayFromFile(image)[5] == 2;
        format = "-I elf32-" + (bigEndian ? "big" : "little") + " ";
    }
    Run.output(tools + "objcopy " + format + "-O binary --gap-fill 0xff " + Run.quote(image) + " " +
               Run.quote(binary));
    var bytes = TBSys.readByteArrayFromFile(binary);
    Assert.that(bytes != undefined && bytes.length > 0, "objcopy has left nothing in " + binary);
    var crc = TBSys.crc32(bytes);
    Assert.equal(crc, ElfFile.crc32(start, bytes.length, false, 0xFF), "CRC-32 of " + binary);
    WScript.Echo(binary + ": " + bytes.length + " bytes, CRC-32 " + Numbers.hex(crc, 8) + "\n");
    return bytes.length;
}

// Lines of `size -A` with a name, a size and an address are sections. (The flash cannot be told from these:
// the initial values of variables take place in it, but have their address in the RAM.)
function sizeOfSections(tools, start, size) {
    var lines = Run.lines(tools + "size -A " + Run.quote(image));
    var sum = 0;
    for (var i = 0; i < lines.length; i++) {
        var words = Text.words(lines[i]);
        var address = words.length == 3 ? Numbers.parse(words[2]) : NaN;
        if (address >= start && address < start + size) {
            sum += Numbers.parse(words[1]);
        }
    }
    return sum;
}

function report(what, used, size) {
    WScript.Echo(Text.padRight(what, 6) + Text.padLeft(Numbers.grouped(used), 10) + " of " +
                 Numbers.grouped(size) + " bytes, " + Numbers.fixed(100 * used / size, 1) + " %\n");
    Assert.that(used <= size, "the image is too large for its " + what);
}

function sizes() {
    var tools = prefix == undefined ? "" : prefix;
    ElfFile.load(Assert.defined(image, "image"));
    Assert.defined(binary, "binary");
    report("flash", makeBinary(tools, number(flash, "flash")), number(flashSize, "flashSize"));
    var available = number(ramSize, "ramSize");
    report("ram", sizeOfSections(tools, number(ram, "ram"), available), available);
}

sizes();

// Patches a table in an image with the numbers of a text file, in the byte order of the image.
//
//   quorvane -define image=firmware.elf -define output=patched.elf -define table=sensor::calibration \
//       -define width=16 -define count=8 -define values=calibration.txt \
//       -load lib/text.js -load lib/assert.js -load lib/number.js -load lib/words.js -load lib/patch.js \
//       -load examples/patch-table.js
//
//   image    the ELF file, which stays as it is
//   output   where the patched image goes
//   table    symbol of the table
//   width    bits of an element: 8, 16 or 32
//   count    how many elements the table has; the file must have exactly as many numbers
//   values   the text file: decimal or 0x numbers, negative ones down to what the width holds, with blanks,
//            commas or line ends between them; "#" begins a comment

function readValues(path, bits) {
    var text = TBSys.readStringFromFile(path);
    Assert.that(text != undefined, "cannot read " + path);
    var lines = Text.lines(text);
    var numbers = [];
    for (var i = 0; i < lines.length; i++) {
        var words = Text.words(Text.replaceAll(Text.split(lines[i], "#")[0], ",", " "));
        for (var j = 0; j < words.length; j++) {
            var number = Numbers.parseInteger(words[j]);
            var limit = Math.pow(2, bits);
            Assert.that(number >= -limit / 2 && number < limit,
                        path + ", line " + (i + 1) + ": no number of " + bits + " bits: " + words[j]);
            numbers[numbers.length] = number;
        }
    }
    return numbers;
}

function patchTable() {
    ElfFile.load(Assert.defined(image, "image"));
    var address = Patch.requireSymbol(Assert.defined(table, "table"));
    var bits = Numbers.parseInteger(Assert.defined(width, "width"));
    Assert.that(bits == 8 || bits == 16 || bits == 32, "width must be 8, 16 or 32");
    var numbers = readValues(Assert.defined(values, "values"), bits);
    var wanted = Numbers.parseInteger(Assert.defined(count, "count"));
    Assert.equal(numbers.length, wanted, "numbers in " + values);

    var bigEndian = Words.bigEndian(address);
    Assert.that(bigEndian != undefined, table + " is not in the image");
    var bytes = [];
    for (var i = 0; i < numbers.length; i++) {
        bytes = bytes.concat(Words.toBytes(numbers[i], bits / 8, bigEndian));
    }
    // One poke for all: it writes either the whole table or nothing.
    Assert.that(ElfFile.pokeBytes(address, bytes), table + " does not lie in the image as a whole");
    ElfFile.save(Assert.defined(output, "output"));
    WScript.Echo(numbers.length + " values of " + bits + " bits at " + Numbers.hex(address, 8) + "\n");
}

patchTable();

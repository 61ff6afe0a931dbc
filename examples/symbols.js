// Prints chosen symbols of an image with their addresses and the words that stand there. Fails behind the
// table when a name is missing, so that it also serves as a check that a build still has what the boot
// loader calls.
//
//   quorvane -define image=firmware.elf -define "names=main;sensor::scale(unsigned short);board::imageCrc" \
//       -load lib/text.js -load lib/assert.js -load lib/number.js -load examples/symbols.js
//
//   image    the ELF file
//   names    demangled names, with ";" between them; a name that holds a "=" needs the list instead
//   list     a text file with one name on each line, blank lines and "#" lines passed over (instead of names)

function wantedNames() {
    if (list == undefined) {
        return Text.split(Assert.defined(names, "names"), ";");
    }
    var text = TBSys.readStringFromFile(list);
    Assert.that(text != undefined, "cannot read " + list);
    return Text.lines(text);
}

function printSymbols() {
    ElfFile.load(Assert.defined(image, "image"));
    var wanted = wantedNames();
    var missing = 0;
    for (var i = 0; i < wanted.length; i++) {
        var name = Text.trim(wanted[i]);
        if (name == "" || Text.startsWith(name, "#")) {
            continue;
        }
        var address = ElfFile.symbolValue(name);
        if (address == undefined) {
            missing++;
            WScript.Echo(Text.padRight("-", 24) + name + "\n");
            continue;
        }
        // A variable without an initial value has an address, and no word in the image.
        var word = ElfFile.peekUint32(address);
        WScript.Echo(Text.padRight(Numbers.hex(address, 8), 12) +
                     Text.padRight(word == undefined ? "-" : Numbers.hex(word, 8), 12) + name + "\n");
    }
    Assert.that(missing == 0, missing + " of the symbols are not in " + image);
}

printSymbols();

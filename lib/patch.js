// Patch: writes into the loaded image only where that is safe, and ends the run otherwise.
//
//   Patch.requireSymbol(name)                    the symbol's address; fails when the image has no such name
//   Patch.addressOf(place)                       the same for a name; a number is taken as the address itself
//   Patch.patchOnce(place, value, expectedOld)   writes a 32-bit word, but only over the value that the
//                                                linker left there: never twice, never at a wrong place
//   Patch.checkMarker(place, marker)             fails unless the 32-bit word is the marker
//
// A place is a demangled symbol name or a virtual address. Messages say what was found. Needs assert.js and
// number.js.

var Patch = {};

Patch.requireSymbol = function (name) {
    var address = ElfFile.symbolValue(name);
    if (address == undefined) {
        Assert.fail("the image has no symbol " + name);
    }
    return address;
};

Patch.addressOf = function (place) {
    return typeof place == "number" ? place : Patch.requireSymbol(place);
};

Patch.shown = function (place, address) {
    return (typeof place == "number" ? "" : place + " at ") + Numbers.hex(address, 8);
};

Patch.requireWord = function (place, expected, refusal) {
    var address = Patch.addressOf(place);
    var word = ElfFile.peekUint32(address);
    if (word == undefined) {
        Assert.fail(Patch.shown(place, address) + " is not in the image");
    }
    if (word != expected >>> 0) {
        Assert.fail(Patch.shown(place, address) + " holds " + Numbers.hex(word, 8) + " instead of " +
                    Numbers.hex(expected >>> 0, 8) + refusal);
    }
    return address;
};

Patch.patchOnce = function (place, value, expectedOld) {
    ElfFile.pokeUint32(Patch.requireWord(place, expectedOld, ": not patched"), value);
};

Patch.checkMarker = function (place, marker) {
    Patch.requireWord(place, marker, ": no marker");
};

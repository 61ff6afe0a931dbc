// args: -define image={root}/examples/firmware/firmware.elf
// args: -load {root}/lib/patch.js -load {root}/lib/number.js -load {root}/lib/assert.js
function attempt(text) { // a failure ends the text alone
    eval("WScript.Echo(" + text + " + '\\n')");
}
attempt("Patch.requireSymbol('main')"); // nothing is loaded yet
ElfFile.load(image);
attempt("Numbers.hex(Patch.requireSymbol('main'), 8)");
attempt("Numbers.hex(Patch.addressOf('board::imageCrc'), 8) + ' ' + Patch.addressOf(5)");
attempt("Patch.checkMarker('board::imageCrc', -1)");
attempt("Patch.checkMarker(0x08000C14, 0xFFFFFFFE)");
attempt("Patch.checkMarker('system_ticks', 0)"); // has no bytes in the image
attempt("Patch.patchOnce('board::imageCrc', 0x12345678, 0)");
attempt("Patch.patchOnce('board::imageCrc', 0x12345678, 0xFFFFFFFF)");
attempt("Patch.patchOnce('board::imageCrc', 0x12345678, 0xFFFFFFFF)");
attempt("Patch.patchOnce('board::imageVersion', 1, ElfFile.peekUint32(Patch.addressOf('board::imageVersion')))");
attempt("Patch.patchOnce('nowhere', 1, 1)");
attempt("Patch.patchOnce(4, 1, 0)");
WScript.Echo(Numbers.hex(ElfFile.peekUint32(0x08000C14), 8) + " " + ElfFile.peekUint32(0x08000C00) + "\n");
// expect: error: the image has no symbol main
// expect: 0x080000A8
// expect: 0x08000C14 5
// expect: undefined
// expect: error: 0x08000C14 holds 0xFFFFFFFF instead of 0xFFFFFFFE: no marker
// expect: error: system_ticks at 0x20000008 is not in the image
// expect: error: board::imageCrc at 0x08000C14 holds 0xFFFFFFFF instead of 0x00000000: not patched
// expect: undefined
// expect: error: board::imageCrc at 0x08000C14 holds 0x12345678 instead of 0xFFFFFFFF: not patched
// expect: undefined
// expect: error: the image has no symbol nowhere
// expect: error: 0x00000004 is not in the image
// expect: 0x12345678 1

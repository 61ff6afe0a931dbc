// A conversion can run script, and script can load another file: the word goes into that one, if it fits there.
// args: -define image={root}/examples/firmware/firmware.elf -load {script}
// expect: 42 undefined
ElfFile.load(image);
var at = ElfFile.symbolValue('board::imageVersion');
ElfFile.pokeUint32(at, {
    valueOf: function () {
        ElfFile.load(image);
        return 42;
    }
});
var word = ElfFile.peekUint32(at);
TBSys.writeByteArrayToFile('tiny.elf', [0x7F, 0x45, 0x4C, 0x46, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 40, 0, 1, 0, 0, 0,
    0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 52, 0, 32, 0, 0, 0, 40, 0, 0, 0, 0, 0]);
ElfFile.pokeUint32(at, {
    valueOf: function () {
        ElfFile.load('tiny.elf');
        return 42;
    }
});
WScript.Echo(word + ' ' + ElfFile.peekUint32(at) + '\n');

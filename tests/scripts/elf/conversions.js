// Which argument is converted when, and which is not at all.
// args: -define image={root}/examples/firmware/firmware.elf -load {script}
// expect: peekUint32: address undefined
// expect: pokeUint32: address undefined
// expect: pokeUint32: address value undefined
// expect: peekBytes: length undefined
// expect: peekBytes: length padding address 255
// expect: crc32: length undefined
// expect: crc32: length padding address 2985771083
// expect: pokeBytes: element address false
// expect: pokeBytes: address false
// expect: symbolValue: symbol 134217728
// expect: load: path undefined
// expect: save: path undefined
function argument(name, value) {
    var convert = function () {
        WScript.Echo(name + ' ');
        return value;
    };
    return { valueOf: convert, toString: convert };
}
function show(member, a, b, c, d) {
    WScript.Echo(member + ': ');
    WScript.Echo(ElfFile[member](a, b, c, d) + '\n');
}
ElfFile.load(image);
var no = argument('address', 0);
var yes = argument('address', 0x08000000);
show('peekUint32', no, argument('flag', 0));
show('pokeUint32', no, argument('value', 0));
show('pokeUint32', yes, argument('value', 0), argument('flag', 0));
show('peekBytes', no, argument('length', 0), true, argument('padding', 0));
show('peekBytes', no, argument('length', 1), true, argument('padding', -1));
show('crc32', no, argument('length', 0x80000000), true, argument('padding', 0));
show('crc32', no, argument('length', 1), true, argument('padding', 0));
show('pokeBytes', no, [argument('element', 1)], true);
show('pokeBytes', yes, [], true);
show('symbolValue', argument('symbol', 'flash_start'));
show('load', argument('path', image));
show('save', argument('path', 'out.elf'));

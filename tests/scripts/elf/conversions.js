// Which argument is converted when, and which is not at all.
// args: -define image={root}/examples/firmware/firmware.elf -load {script}
// expect: peekUint32: address undefined
// expect: pokeUint32: address undefined
// expect: pokeUint32: address value undefined
// expect: peekBytes: length undefined
// expect: peekBytes: length padding address 255
// expect: crc32: length undefined
// expect: crc32: length padding address number
// expect: pokeBytes: element address false
// expect: pokeBytes: address false
// expect: symbolValue: symbol 134217728
// expect: load: path save: path undefined
function argument(name, value) {
    var convert = function () {
        WScript.Echo(name + ' ');
        return value;
    };
    return { valueOf: convert, toString: convert };
}
function show(label) { WScript.Echo(label + ': '); }
function end(result) { WScript.Echo(result + '\n'); }

ElfFile.load(image);
show('peekUint32');
end(ElfFile.peekUint32(argument('address', 0), argument('flag', 0)));
show('pokeUint32');
end(ElfFile.pokeUint32(argument('address', 0), argument('value', 0)));
show('pokeUint32');
end(ElfFile.pokeUint32(argument('address', 0x08000000), argument('value', 0), argument('flag', 0)));
show('peekBytes');
end(ElfFile.peekBytes(argument('address', 0), argument('length', 0), true, argument('padding', 0)));
show('peekBytes');
end(ElfFile.peekBytes(argument('address', 0), argument('length', 1), true, argument('padding', -1)));
show('crc32');
end(ElfFile.crc32(argument('address', 0), argument('length', 0x80000000), true, argument('padding', 0)));
show('crc32');
end(typeof ElfFile.crc32(argument('address', 0), argument('length', 1), true, argument('padding', 0)));
show('pokeBytes');
end(ElfFile.pokeBytes(argument('address', 0), [argument('element', 1)], true));
show('pokeBytes');
end(ElfFile.pokeBytes(argument('address', 0x08000000), [], true));
show('symbolValue');
end(ElfFile.symbolValue(argument('symbol', 'flash_start')));
show('load');
ElfFile.load(argument('path', image));
show('save');
end(ElfFile.save(argument('path', 'out.elf')));

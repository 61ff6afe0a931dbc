// expect: load 1 save 1 peekUint32 2 pokeUint32 3 peekBytes 4 pokeBytes 3 crc32 4 symbolValue 1
var names = ['load', 'save', 'peekUint32', 'pokeUint32', 'peekBytes', 'pokeBytes', 'crc32', 'symbolValue'];
var text = '';
for (var i = 0; i < names.length; ++i)
    text += (i ? ' ' : '') + names[i] + ' ' + ElfFile[names[i]].length;
WScript.Echo(text + '\n');

// With no file loaded there is nothing at any address, and every range is padding.
// expect: undefined undefined undefined false
// expect: 7,7 true undefined
// expect: true 0
function line(text) { WScript.Echo(text + '\n'); }
line(ElfFile.peekUint32(0) + ' ' + ElfFile.pokeUint32(0, 1) + ' ' + ElfFile.symbolValue('main') + ' ' +
     ElfFile.pokeBytes(0, [1]));
line(ElfFile.peekBytes(0, 2, true, 7) + ' ' + (ElfFile.crc32(0, 2, true, 7) == TBSys.crc32([7, 7])) + ' ' +
     ElfFile.crc32(0, 0));
ElfFile.save('empty');
line(TBSys.fileExists('empty') + ' ' + TBSys.fileSize('empty'));

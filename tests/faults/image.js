// An image all the way through: found by name, looked at, changed and saved over another one.
// args: -define source={root}/examples/firmware/firmware.elf
// file-raw: old.elf "the old image"
// expect: true 4096 1 true
ElfFile.load(source);
var found = ElfFile.symbolValue('board::Led::set(bool)') > 0;
var bytes = ElfFile.peekBytes(0x08000000, 0x1000, false, 255);
ElfFile.pokeUint32(0x08000C00, 1);
ElfFile.pokeBytes(0x08000C04, bytes.slice(0, 8));
ElfFile.crc32(0x08000000, 0x1000, true, 255);
ElfFile.save('old.elf');
ElfFile.load('old.elf');
ElfFile.save('new.elf');
WScript.Echo(found + ' ' + bytes.length + ' ' + ElfFile.peekUint32(0x08000C00) + ' ' +
             TBSys.fileExists('new.elf') + '\n');

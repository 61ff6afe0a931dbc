// file: text.elf
//| not an image
// expect error: invalid ELF file: text.elf
ElfFile.load('text.elf');

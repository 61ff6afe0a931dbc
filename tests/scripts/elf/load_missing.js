// The message names the cleaned path, and a failed load leaves nothing of the file before.
// expect error: cannot open a/b/c.elf
ElfFile.load('a/./b//c.elf');

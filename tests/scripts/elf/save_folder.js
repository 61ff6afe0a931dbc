// expect error: cannot open .
ElfFile.save('.');

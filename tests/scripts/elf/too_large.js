// expect error: line 2: length too large
ElfFile.peekBytes(0, 0x7FFFFFFF);

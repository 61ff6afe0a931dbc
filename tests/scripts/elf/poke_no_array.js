// expect error: line 2: array argument expected
ElfFile.pokeBytes(0, 'text');

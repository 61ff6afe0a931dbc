// The library of images by itself, in a program that has no script engine.
// usage: elf_alone IMAGE SYMBOL COPY
#include "elf/elf_file.h"
#include "system/h_exception.h"

#include <cstdio>

int main(int argc, char** argv) {
    try {
        ElfFile file{FilePath(argv[argc - 3])};
        const ElfSymbol* const symbol = file.findSymbol(argv[argc - 2]);
        file.save(FilePath(argv[argc - 1]));
        return symbol != nullptr && ElfFile{FilePath(argv[argc - 1])}.image().size() == file.image().size()
                   ? 0
                   : 1;
    } catch (const HException& failure) {
        std::fprintf(stderr, "%s\n", failure.text().c_str());
        return 1;
    }
}

// Reads an ELF file whole and walks over its symbols and their names, with nothing checked and nothing kept:
// what loading an image is held against. Without a file it does nothing. Prints the number of symbols and of
// the characters in their names.
#include <QString>

#include <cstdio>
#include <cstring>
#include <elf.h>
#include <fcntl.h>
#include <memory>
#include <span>
#include <sys/stat.h>
#include <unistd.h>

int main(int argc, char** argv) {
    const QString path = QString::fromLatin1(argc > 1 ? argv[1] : "");
    if (path.isEmpty()) {
        return 0;
    }
    const int file = open(path.toLatin1().constData(), O_RDONLY);
    struct stat status {};
    if (file < 0 || fstat(file, &status) != 0) {
        return 1;
    }
    const auto size = static_cast<std::size_t>(status.st_size);
    const std::unique_ptr<char[]> bytes(new char[size]);
    if (read(file, bytes.get(), size) != status.st_size) {
        return 1;
    }
    close(file);

    Elf32_Ehdr header;
    std::memcpy(&header, bytes.get(), sizeof header);
    const std::span sections(reinterpret_cast<const Elf32_Shdr*>(&bytes[header.e_shoff]), header.e_shnum);
    std::size_t count = 0;
    std::size_t characters = 0;
    for (const Elf32_Shdr& section : sections) {
        if (section.sh_type == SHT_SYMTAB) {
            const char* const names = &bytes[sections[section.sh_link].sh_offset];
            for (const Elf32_Sym& symbol :
                 std::span(reinterpret_cast<const Elf32_Sym*>(&bytes[section.sh_offset]),
                           section.sh_size / sizeof(Elf32_Sym))) {
                ++count;
                characters += std::strlen(names + symbol.st_name);
            }
        }
    }
    std::printf("%zu %zu\n", count, characters);
    return 0;
}

// A section of an ELF file: its header in host order and its bytes in the image. elf_file.h makes and owns
// the sections.
#pragma once

#include <cstdint>
#include <elf.h>
#include <span>

class ElfFile;

class ElfSection {
public:
    ElfSection(const ElfFile& owner, const Elf32_Shdr& sectionHeader, std::span<std::uint8_t> bytes)
        : header(sectionHeader), data(bytes), file(&owner) {}
    virtual ~ElfSection() = default;

    // Prints the header to stdout, a line for each field. For a debugger's prompt; the program never asks.
    virtual void dump() const;

    Elf32_Shdr header;
    std::span<std::uint8_t> data; // as much of the extent as the file has, whatever the section's type
    const ElfFile* file;
};

// Makes small ELF32 files in memory, in either byte order, and tells where in them each structure lies.
#pragma once

#include <algorithm>
#include <cstdint>
#include <elf.h>
#include <initializer_list>
#include <string>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

inline Bytes bytesOf(const std::string& text) { return {text.begin(), text.end()}; }

inline Bytes countingBytes(std::size_t count, std::uint8_t first = 0) {
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i) {
        bytes[i] = static_cast<std::uint8_t>(first + i);
    }
    return bytes;
}

struct TestProgram {
    std::uint32_t vaddr = 0;
    std::uint32_t paddr = 0;
    Bytes bytes;
    std::uint32_t type = PT_LOAD;
};

struct TestSection {
    std::string name;
    std::uint32_t type = SHT_PROGBITS;
    Bytes bytes;
};

struct TestSymbol {
    std::string name;
    std::uint32_t value = 0;
    unsigned char type = STT_OBJECT;
    std::uint16_t section = 1;
};

class ElfBuilder {
public:
    explicit ElfBuilder(bool isBigEndian) : big(isBigEndian) {}

    bool big;
    std::vector<TestProgram> programs;
    std::vector<TestSection> sections; // a null section, .symtab, .strtab and .shstrtab come by themselves
    std::vector<TestSymbol> symbols;
    bool hasSections = true;
    bool hasStrings = true;
    std::uint32_t symbolSize = sizeof(Elf32_Sym);

    // Where the tables of the built file begin.
    std::size_t sectionTable = 0;
    std::size_t symbolTable = 0;

    Bytes build() {
        out_.assign(sizeof(Elf32_Ehdr) + programs.size() * sizeof(Elf32_Phdr), 0);
        for (std::size_t i = 0; i < programs.size(); ++i) {
            const TestProgram& program = programs[i];
            const auto size = static_cast<std::uint32_t>(program.bytes.size());
            put(sizeof(Elf32_Ehdr) + i * sizeof(Elf32_Phdr), 4,
                {program.type, append(program.bytes), program.vaddr, program.paddr, size, size + 16, 7, 4});
        }
        const std::size_t count = hasSections ? putSections() : 0;
        put(0, 1, {0x7F, 'E', 'L', 'F', ELFCLASS32, big ? std::uint32_t{ELFDATA2MSB} : ELFDATA2LSB, 1});
        put(16, 2, {ET_EXEC, EM_ARM});
        put(20, 4, {1, 0x8000, sizeof(Elf32_Ehdr), static_cast<std::uint32_t>(sectionTable), 0x5000000});
        put(40, 2,
            {sizeof(Elf32_Ehdr), sizeof(Elf32_Phdr), static_cast<std::uint32_t>(programs.size()),
             sizeof(Elf32_Shdr), static_cast<std::uint32_t>(count),
             static_cast<std::uint32_t>(count == 0 ? 0 : count - 1)});
        return out_;
    }

private:
    std::size_t putSections() {
        std::vector<TestSection> all = {{"", SHT_NULL, {}}};
        all.insert(all.end(), sections.begin(), sections.end());
        if (!symbols.empty()) {
            std::string names(1, '\0');
            symbolTable = append(Bytes((symbols.size() + 1) * sizeof(Elf32_Sym)));
            for (std::size_t i = 0; i < symbols.size(); ++i) {
                const std::size_t at = symbolTable + (i + 1) * sizeof(Elf32_Sym);
                put(at, 4, {static_cast<std::uint32_t>(names.size()), symbols[i].value, 4});
                put(at + 12, 1, {symbols[i].type});
                put(at + 14, 2, {symbols[i].section});
                names += symbols[i].name + '\0';
            }
            all.push_back({".symtab", SHT_SYMTAB, Bytes((symbols.size() + 1) * sizeof(Elf32_Sym))});
            if (hasStrings) {
                all.push_back({".strtab", SHT_STRTAB, bytesOf(names)});
            }
        }
        all.push_back({".shstrtab", SHT_STRTAB, {}});
        std::string names;
        std::vector<std::uint32_t> places;
        for (const TestSection& section : all) {
            places.push_back(static_cast<std::uint32_t>(names.size()));
            names += section.name + '\0';
        }
        all.back().bytes = bytesOf(names);
        sectionTable = append(Bytes(all.size() * sizeof(Elf32_Shdr)));
        for (std::size_t i = 0; i < all.size(); ++i) {
            const bool isSymbols = all[i].type == SHT_SYMTAB;
            const std::uint32_t offset =
                isSymbols ? static_cast<std::uint32_t>(symbolTable) : append(all[i].bytes);
            put(sectionTable + i * sizeof(Elf32_Shdr), 4,
                {places[i], all[i].type, SHF_ALLOC, 0, offset,
                 static_cast<std::uint32_t>(all[i].bytes.size()), 0, 0, 4, isSymbols ? symbolSize : 0});
        }
        return all.size();
    }

    std::uint32_t append(const Bytes& bytes) {
        out_.resize((out_.size() + 3) & ~std::size_t{3});
        const auto offset = static_cast<std::uint32_t>(out_.size());
        out_.insert(out_.end(), bytes.begin(), bytes.end());
        return offset;
    }
    void put(std::size_t at, std::size_t size, std::initializer_list<std::uint32_t> values) {
        for (const std::uint32_t value : values) {
            for (std::size_t i = 0; i < size; ++i) {
                out_.at(at + (big ? size - 1 - i : i)) = static_cast<std::uint8_t>(value >> (8 * i));
            }
            at += size;
        }
    }

    Bytes out_;
};

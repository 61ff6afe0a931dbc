// Makes small ELF32 files in memory, in either byte order, and tells where in them each structure lies.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <elf.h>
#include <fstream>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

// Bounds on time are for builds as users have them; what is instrumented gets more.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool isInstrumented = true;
#elif defined(__has_feature)
constexpr bool isInstrumented = __has_feature(address_sanitizer);
#else
constexpr bool isInstrumented = false;
#endif
constexpr double timeFactor = isInstrumented ? 20 : 1;

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
    std::uint32_t entsize = 0;
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
    std::uint32_t stringType = SHT_STRTAB;
    std::uint32_t sectionNameType = SHT_STRTAB;

    // Where the structures of the built file begin.
    std::size_t programTable = 0;
    std::size_t sectionTable = 0;
    std::size_t symbolTable = 0;
    std::size_t sectionCount = 0;

    Bytes build() {
        out_.assign(sizeof(Elf32_Ehdr), 0);
        programTable = out_.size();
        out_.resize(out_.size() + programs.size() * sizeof(Elf32_Phdr));
        for (std::size_t i = 0; i < programs.size(); ++i) {
            const TestProgram& program = programs[i];
            const std::uint32_t size = static_cast<std::uint32_t>(program.bytes.size());
            putWords(
                programTable + i * sizeof(Elf32_Phdr),
                {program.type, append(program.bytes), program.vaddr, program.paddr, size, size + 16, 7, 4});
        }
        if (hasSections) {
            buildSections();
        }
        buildHeader();
        return out_;
    }

private:
    void buildHeader() {
        const std::array<std::uint8_t, 7> identification = {
            0x7F, 'E', 'L', 'F', ELFCLASS32, static_cast<std::uint8_t>(big ? ELFDATA2MSB : ELFDATA2LSB), 1};
        std::copy(identification.begin(), identification.end(), out_.begin());
        putHalves(16, {ET_EXEC, EM_ARM});
        putWords(20, {1, 0x8000, static_cast<std::uint32_t>(programTable),
                      static_cast<std::uint32_t>(sectionTable), 0x5000000});
        const auto count = static_cast<std::uint16_t>(sectionCount);
        putHalves(40, {sizeof(Elf32_Ehdr), sizeof(Elf32_Phdr), static_cast<std::uint16_t>(programs.size()),
                       sizeof(Elf32_Shdr), count, static_cast<std::uint16_t>(count == 0 ? 0 : count - 1)});
    }

    void buildSections() {
        std::vector<TestSection> all = {{"", SHT_NULL, {}, 0}};
        all.insert(all.end(), sections.begin(), sections.end());
        std::size_t symbolSection = 0;
        if (!symbols.empty()) {
            std::string names(1, '\0');
            Bytes table;
            out_.swap(table); // the same helpers write the symbols
            out_.resize((symbols.size() + 1) * sizeof(Elf32_Sym));
            for (std::size_t i = 0; i < symbols.size(); ++i) {
                const std::size_t at = (i + 1) * sizeof(Elf32_Sym);
                putWords(at, {static_cast<std::uint32_t>(names.size()), symbols[i].value, 4});
                out_[at + 12] = symbols[i].type;
                putHalves(at + 14, {symbols[i].section});
                names += symbols[i].name + '\0';
            }
            out_.swap(table);
            symbolSection = all.size();
            all.push_back({".symtab", SHT_SYMTAB, table, symbolSize});
            if (hasStrings) {
                all.push_back({".strtab", stringType, bytesOf(names), 0});
            }
        }
        all.push_back({".shstrtab", sectionNameType, {}, 0});
        std::string names;
        std::vector<std::uint32_t> nameAt;
        for (const TestSection& section : all) {
            nameAt.push_back(static_cast<std::uint32_t>(names.size()));
            names += section.name + '\0';
        }
        all.back().bytes = bytesOf(names);

        std::vector<std::uint32_t> offsets;
        for (const TestSection& section : all) {
            offsets.push_back(append(section.bytes));
        }
        symbolTable = symbolSection == 0 ? 0 : offsets[symbolSection];
        sectionCount = all.size();
        sectionTable = append({});
        out_.resize(out_.size() + all.size() * sizeof(Elf32_Shdr));
        for (std::size_t i = 0; i < all.size(); ++i) {
            putWords(sectionTable + i * sizeof(Elf32_Shdr),
                     {nameAt[i], all[i].type, SHF_ALLOC, 0, offsets[i],
                      static_cast<std::uint32_t>(all[i].bytes.size()), 0, 0, 4, all[i].entsize});
        }
    }

    std::uint32_t append(const Bytes& bytes) {
        out_.resize((out_.size() + 3) & ~std::size_t{3});
        const auto offset = static_cast<std::uint32_t>(out_.size());
        out_.insert(out_.end(), bytes.begin(), bytes.end());
        return offset;
    }
    void putInteger(std::size_t at, std::uint32_t value, std::size_t size) {
        for (std::size_t i = 0; i < size; ++i) {
            out_.at(at + (big ? size - 1 - i : i)) = static_cast<std::uint8_t>(value >> (8 * i));
        }
    }
    void putWords(std::size_t at, const std::vector<std::uint32_t>& words) {
        for (std::size_t i = 0; i < words.size(); ++i) {
            putInteger(at + 4 * i, words[i], 4);
        }
    }
    void putHalves(std::size_t at, const std::vector<std::uint16_t>& halves) {
        for (std::size_t i = 0; i < halves.size(); ++i) {
            putInteger(at + 2 * i, halves[i], 2);
        }
    }

    Bytes out_;
};

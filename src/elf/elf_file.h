// ElfFile, one 32-bit ELF file in memory. The image holds the file's own bytes from loading to saving;
// headers are copies in host order, everything else looks into the image. A patch is a write into the image,
// and nothing is ever laid out again. What scripts see of it is in elf_file_class.h.
#pragma once

#include "elf/address_map.h"
#include "elf/elf_section.h"
#include "elf/image_file.h"
#include "elf/image_view.h"
#include "elf/records.h"
#include "elf/symbol_index.h"
#include "elf/symbol_table.h"
#include "system/files.h"

#include <QString>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <unordered_map>
#include <vector>

enum class AddressSpace { Virtual, Physical };

// A program header of any type, and as much of its file extent as the file has.
struct ElfProgram {
    Elf32_Phdr header;
    std::span<std::uint8_t> data;

    std::uint32_t base(AddressSpace space) const {
        return space == AddressSpace::Virtual ? header.p_vaddr : header.p_paddr;
    }
};

enum class SymbolKind { Arm = 0, Thumb = 1, Other = 2 };

struct ElfSymbol {
    QString name; // demangled
    SymbolKind kind;
    Elf32_Sym entry;
    std::uint32_t value; // the address, without the Thumb bit of a function
};

// Empty, or loaded with one file. All pointers and spans that it gives out are valid until the next load.
class ElfFile {
public:
    ElfFile() = default;
    // Empty when the path is. May throw as load does.
    explicit ElfFile(const FilePath& path, std::uint32_t addressOffset = 0);
    ElfFile(const ElfFile&) = delete;
    ElfFile& operator=(const ElfFile&) = delete;
    ~ElfFile() = default;

    // Replaces the content. addressOffset is added to every address of the file, modulo 2^32. Throws
    // HException, and is empty then: "cannot open ", "cannot read " or "invalid ELF file: " with the path, or
    // "not a string section" when names lie in a section of another type.
    void load(const FilePath& path, std::uint32_t addressOffset = 0);
    // The same from memory; the path is for the messages alone.
    void load(ImageBytes image, const FilePath& path, std::uint32_t addressOffset = 0);

    // Writes the image as it is; an empty model makes an empty file. Throws HException "cannot open " or
    // "write read " with the path. What becomes of the old file is told in image_file.h.
    void save(const FilePath& path) const;

    bool isBigEndian() const { return order_ == ByteOrder::Big; }
    ByteOrder byteOrder() const { return order_; }
    std::span<const std::uint8_t> image() const { return image_.span(); }
    const std::vector<ElfProgram>& programs() const { return programs_; }
    const std::vector<ElfSection>& sections() const { return sections_; }

    // The last section of this name, or null.
    const ElfSection* findSection(std::string_view name) const;
    // Empty when the file has no section names.
    std::string_view sectionName(const ElfSection& section) const;
    // The text up to a NUL or the section's end; empty outside of it. Throws HException "not a string
    // section".
    static QString stringAt(const ElfSection& section, std::uint32_t offset);

    // The symbol with this demangled name, the first in the file if there are several, or null. The first
    // call costs an index over all symbols.
    const ElfSymbol* findSymbol(const char* name);
    // The symbols that belong to a section, by ascending value. Demangles all names at each call.
    std::vector<ElfSymbol> symbolsByValue() const;

    // The bytes of the first program header that holds the range whole, for reading or patching.
    std::optional<std::span<std::uint8_t>> bytesAt(std::uint32_t address, std::uint64_t length,
                                                   AddressSpace space);
    // The bytes from `address` on, `padding` where no program header has any. Where several have, the last
    // one counts.
    void copyRange(std::uint32_t address, std::span<std::uint8_t> out, AddressSpace space,
                   std::uint8_t padding) const;
    // The same bytes in place, if they all come from the file in one piece.
    std::optional<std::span<const std::uint8_t>> wholeRange(std::uint32_t address, std::uint64_t length,
                                                            AddressSpace space) const;
    // The CRC-32 of what copyRange gives; needs no memory for it.
    std::uint32_t crc32(std::uint32_t address, std::uint64_t length, AddressSpace space,
                        std::uint8_t padding) const;

private:
    void clear();
    void build(std::uint32_t addressOffset);
    void buildPrograms(const RecordReader& reader, std::uint32_t addressOffset);
    void buildSections(const RecordReader& reader, std::uint32_t addressOffset);
    NameStyle findNameStyle() const;
    void buildSymbolTable(const RecordReader& reader, std::uint32_t addressOffset);
    ElfSymbol symbolAt(std::uint32_t number, QString name) const;
    std::vector<AddressRun> programRuns(AddressSpace space) const;
    const AddressMap& addressMap(AddressSpace space) const;

    ImageBytes image_;
    ImageView view_; // of image_
    ByteOrder order_ = ByteOrder::Little;
    Elf32_Ehdr header_{};
    std::vector<ElfProgram> programs_;
    std::vector<ElfSection> sections_;
    std::span<const std::uint8_t> sectionNames_;
    SymbolTable symbolTable_;

    // Made when they are first asked for.
    std::unique_ptr<SymbolIndex> symbolIndex_;
    std::unordered_map<std::uint32_t, ElfSymbol> symbols_; // found so far, by number
    mutable std::optional<AddressMap> virtualMap_;
    mutable std::optional<AddressMap> physicalMap_;
    mutable std::optional<ProgramFinder> virtualFinder_;
    mutable std::optional<ProgramFinder> physicalFinder_;
};

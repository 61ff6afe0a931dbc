#include "elf/elf_file.h"

#include "system/crc32.h"
#include "system/h_exception.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <string>
#include <utility>

namespace {

// Not among the names of <elf.h>.
constexpr unsigned char thumbFunctionType = 13;
constexpr unsigned char thumbLabelType = 15;

[[noreturn]] void fail(const char* what, const FilePath& path) {
    throw HException(what + path.ascii().toStdString());
}

std::uint64_t endOf(const Elf32_Shdr& header) { return std::uint64_t{header.sh_offset} + header.sh_size; }

std::string_view textAt(std::span<const std::uint8_t> strings, std::uint64_t offset) {
    if (offset >= strings.size()) {
        return {};
    }
    const auto rest = strings.subspan(offset);
    const auto end = std::find(rest.begin(), rest.end(), std::uint8_t{0});
    return {reinterpret_cast<const char*>(rest.data()), static_cast<std::size_t>(end - rest.begin())};
}

void demandStrings(const ElfSection& section) {
    if (section.header.sh_type != SHT_STRTAB) {
        throw HException("not a string section");
    }
}

bool beginsWith(const ElfSection& section, std::string_view text) {
    return section.data.size() >= text.size() &&
           std::memcmp(section.data.data(), text.data(), text.size()) == 0;
}

} // namespace

ElfFile::ElfFile(const FilePath& path, std::uint32_t addressOffset) {
    if (!path.isEmpty()) {
        load(path, addressOffset);
    }
}

void ElfFile::load(const FilePath& path, std::uint32_t addressOffset) {
    clear();
    ImageBytes image;
    switch (readImageFile(path.ascii().constData(), image)) {
    case ReadResult::Done:
        return load(std::move(image), path, addressOffset);
    case ReadResult::CannotOpen:
        fail("cannot open ", path);
    case ReadResult::CannotRead:
        fail("cannot read ", path);
    case ReadResult::NotElf:
        fail("invalid ELF file: ", path);
    }
}

void ElfFile::load(ImageBytes image, const FilePath& path, std::uint32_t addressOffset) {
    clear();
    image_ = std::move(image);
    try {
        build(addressOffset);
    } catch (const MalformedImage&) {
        clear();
        fail("invalid ELF file: ", path);
    } catch (...) {
        clear();
        throw;
    }
}

void ElfFile::save(const FilePath& path) const {
    switch (writeImageFile(path.ascii().constData(), image_.span())) {
    case WriteResult::Done:
        break;
    case WriteResult::CannotOpen:
        fail("cannot open ", path);
    case WriteResult::CannotWrite:
        fail("write read ", path);
    }
}

void ElfFile::clear() {
    physicalFinder_.reset();
    virtualFinder_.reset();
    physicalMap_.reset();
    virtualMap_.reset();
    symbols_.clear();
    symbolIndex_.reset();
    symbolTable_ = {};
    sectionNames_ = {};
    sections_.clear();
    programs_.clear();
    header_ = {};
    order_ = ByteOrder::Little;
    view_ = {};
    image_ = {};
}

void ElfFile::build(std::uint32_t addressOffset) {
    view_ = ImageView(image_.span());
    const auto identification = view_.bytes(0, EI_NIDENT);
    order_ = identification[EI_DATA] == ELFDATA2LSB ? ByteOrder::Little : ByteOrder::Big;
    const RecordReader reader(view_, order_);
    header_ = reader.read<Elf32_Ehdr>(0);
    if (identification[EI_CLASS] != ELFCLASS32) {
        throw MalformedImage{};
    }
    buildPrograms(reader, addressOffset);
    buildSections(reader, addressOffset);
    buildSymbolTable(reader, addressOffset);
}

void ElfFile::buildPrograms(const RecordReader& reader, std::uint32_t addressOffset) {
    if (header_.e_phnum == 0) {
        return;
    }
    view_.bytes(header_.e_phoff, header_.e_phnum * sizeof(Elf32_Phdr)); // all or nothing
    programs_.reserve(header_.e_phnum);
    for (std::uint64_t i = 0; i < header_.e_phnum; ++i) {
        auto program = reader.read<Elf32_Phdr>(header_.e_phoff + i * sizeof(Elf32_Phdr));
        program.p_vaddr += addressOffset;
        program.p_paddr += addressOffset;
        programs_.push_back({program, view_.clipped(program.p_offset, program.p_filesz)});
    }
}

void ElfFile::buildSections(const RecordReader& reader, std::uint32_t addressOffset) {
    if (header_.e_shnum == 0) {
        return;
    }
    view_.bytes(header_.e_shoff, header_.e_shnum * sizeof(Elf32_Shdr));
    sections_.reserve(header_.e_shnum);
    for (std::uint64_t i = 0; i < header_.e_shnum; ++i) {
        auto section = reader.read<Elf32_Shdr>(header_.e_shoff + i * sizeof(Elf32_Shdr));
        section.sh_addr += addressOffset;
        sections_.emplace_back(*this, section, view_.clipped(section.sh_offset, section.sh_size));
    }
    if (header_.e_shstrndx < header_.e_shnum) {
        const ElfSection& names = sections_[header_.e_shstrndx];
        demandStrings(names);
        sectionNames_ = view_.bytes(names.header.sh_offset, names.header.sh_size);
    }
}

NameStyle ElfFile::findNameStyle() const {
    const ElfSection* comment = findSection(".comment");
    if (comment == nullptr) {
        return NameStyle::GnuV3;
    }
    if (endOf(comment->header) > view_.size()) {
        throw MalformedImage{};
    }
    return beginsWith(*comment, "ARM Linker, ADS1.2") ? NameStyle::Arm : NameStyle::GnuV3;
}

void ElfFile::buildSymbolTable(const RecordReader& reader, std::uint32_t addressOffset) {
    const NameStyle style = findNameStyle();
    const ElfSection* symbols = findSection(".symtab");
    if (symbols == nullptr) {
        return;
    }
    const ElfSection* strings = findSection(".strtab");
    const Elf32_Shdr& header = symbols->header;
    if (header.sh_entsize == 0 || strings == nullptr) {
        throw MalformedImage{};
    }
    // Entries follow each other at 16 bytes whatever size they claim, so they can reach beyond the section.
    const std::uint32_t count = header.sh_size / header.sh_entsize;
    view_.bytes(header.sh_offset, std::max<std::uint64_t>(header.sh_size, count * sizeof(Elf32_Sym)));
    if (count > 0) {
        demandStrings(*strings);
    }
    symbolTable_ =
        SymbolTable(reader, header.sh_offset, count,
                    view_.bytes(strings->header.sh_offset, strings->header.sh_size), addressOffset, style);
}

const ElfSection* ElfFile::findSection(std::string_view name) const {
    // Compared in place: names can share their ends, so all together they may be far longer than the file.
    const auto isNamed = [&](const ElfSection& section) {
        const std::size_t start = section.header.sh_name;
        if (start > sectionNames_.size() || name.size() > sectionNames_.size() - start) {
            return false;
        }
        const auto rest = sectionNames_.subspan(start);
        const std::string_view text(reinterpret_cast<const char*>(rest.data()), rest.size());
        return text.starts_with(name) && (text.size() == name.size() || text[name.size()] == '\0');
    };
    const auto found = std::find_if(sections_.rbegin(), sections_.rend(), isNamed);
    return found == sections_.rend() ? nullptr : &*found;
}

std::string_view ElfFile::sectionName(const ElfSection& section) const {
    return textAt(sectionNames_, section.header.sh_name);
}

QString ElfFile::stringAt(const ElfSection& section, std::uint32_t offset) {
    demandStrings(section);
    const std::string_view text = textAt(section.data, offset);
    return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
}

const ElfSymbol* ElfFile::findSymbol(const char* name) {
    if (!symbolIndex_) {
        symbolIndex_ = std::make_unique<SymbolIndex>(symbolTable_);
    }
    const std::optional<std::uint32_t> number = symbolIndex_->find(name);
    if (!number) {
        return nullptr;
    }
    const auto known = symbols_.find(*number);
    return known != symbols_.end()
               ? &known->second
               : &symbols_.emplace(*number, symbolAt(*number, QString::fromLatin1(name))).first->second;
}

ElfSymbol ElfFile::symbolAt(std::uint32_t number, QString name) const {
    const Elf32_Sym entry = symbolTable_.entry(number);
    const unsigned char type = ELF32_ST_TYPE(entry.st_info);
    SymbolKind kind = SymbolKind::Other;
    std::uint32_t value = entry.st_value;
    if (type == STT_FUNC) {
        kind = (value & 1) != 0 ? SymbolKind::Thumb : SymbolKind::Arm;
        value &= ~std::uint32_t{1};
    } else if (type == thumbFunctionType || type == thumbLabelType) {
        kind = SymbolKind::Thumb;
    }
    return {std::move(name), kind, entry, value};
}

std::vector<ElfSymbol> ElfFile::symbolsByValue() const {
    std::vector<ElfSymbol> symbols;
    for (std::uint32_t number = 0; number < symbolTable_.count(); ++number) {
        const std::string name =
            demangle(symbolTable_.mangledName(number, view_.size()), symbolTable_.style());
        if (!name.empty() && name.front() != '$' && symbolTable_.entry(number).st_shndx < header_.e_shnum) {
            symbols.push_back(
                symbolAt(number, QString::fromLatin1(name.data(), static_cast<qsizetype>(name.size()))));
        }
    }
    std::stable_sort(symbols.begin(), symbols.end(),
                     [](const ElfSymbol& a, const ElfSymbol& b) { return a.value < b.value; });
    return symbols;
}

std::optional<std::span<std::uint8_t>> ElfFile::bytesAt(std::uint32_t address, std::uint64_t length,
                                                        AddressSpace space) {
    const std::uint64_t end = address + length;
    if (end > std::uint64_t{1} << 32) {
        return std::nullopt;
    }
    std::optional<ProgramFinder>& finder = space == AddressSpace::Virtual ? virtualFinder_ : physicalFinder_;
    if (!finder) {
        finder.emplace(programRuns(space));
    }
    const std::optional<std::size_t> found = finder->find(address, end);
    if (!found) {
        return std::nullopt;
    }
    return programs_[*found].data.subspan(address - programs_[*found].base(space), length);
}

std::vector<AddressRun> ElfFile::programRuns(AddressSpace space) const {
    std::vector<AddressRun> runs;
    for (const ElfProgram& program : programs_) {
        const std::uint64_t base = program.base(space);
        runs.push_back({base, base + program.data.size(), program.data.data()});
    }
    return runs;
}

const AddressMap& ElfFile::addressMap(AddressSpace space) const {
    std::optional<AddressMap>& map = space == AddressSpace::Virtual ? virtualMap_ : physicalMap_;
    if (!map) {
        map.emplace(programRuns(space));
    }
    return *map;
}

void ElfFile::copyRange(std::uint32_t address, std::span<std::uint8_t> out, AddressSpace space,
                        std::uint8_t padding) const {
    auto to = out.begin();
    addressMap(space).forEachPiece(
        address, out.size(),
        [&](std::span<const std::uint8_t> bytes) { to = std::copy(bytes.begin(), bytes.end(), to); },
        [&](std::uint64_t gap) { to = std::fill_n(to, gap, padding); });
}

std::optional<std::span<const std::uint8_t>> ElfFile::wholeRange(std::uint32_t address, std::uint64_t length,
                                                                 AddressSpace space) const {
    return addressMap(space).piece(address, length);
}

std::uint32_t ElfFile::crc32(std::uint32_t address, std::uint64_t length, AddressSpace space,
                             std::uint8_t padding) const {
    if (length == 0) {
        return computeCrc32(nullptr, 0);
    }
    std::array<std::uint8_t, 16 * 1024> filling;
    filling.fill(padding);
    Crc32 crc;
    addressMap(space).forEachPiece(
        address, length, [&](std::span<const std::uint8_t> bytes) { crc.update(bytes.data(), bytes.size()); },
        [&](std::uint64_t gap) {
            for (; gap > 0; gap -= std::min<std::uint64_t>(gap, filling.size())) {
                crc.update(filling.data(), std::min<std::uint64_t>(gap, filling.size()));
            }
        });
    return crc.value();
}

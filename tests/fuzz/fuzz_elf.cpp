// An image from its bytes, and all that a script can do with it. The file's last bytes double as the choice
// of addresses, so an input is an image as it stands. Answers are held against the plainest reading of the
// headers.
#include "elf/elf_file.h"
#include "fuzz_target.h"
#include "system/crc32.h"
#include "system/h_exception.h"

#include <algorithm>
#include <cstring>

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t choiceBytes = 48;
constexpr std::size_t mostNames = 32; // asked of one image

ImageBytes copyOf(std::span<const std::uint8_t> input) {
    auto bytes = std::make_unique<std::uint8_t[]>(input.size());
    std::copy(input.begin(), input.end(), bytes.get());
    return {std::move(bytes), input.size()};
}

std::uint64_t endOf(const ElfProgram& program, AddressSpace space) {
    return std::uint64_t{program.base(space)} + program.data.size();
}

void checkNames(ElfFile& file, Choices& choices) {
    for (const ElfSection& section : file.sections()) {
        const std::string_view name = file.sectionName(section);
        const ElfSection* found = file.findSection(name);
        expect(name.empty() || (found != nullptr && file.sectionName(*found) == name),
               "a section is found by name");
        if (section.header.sh_type == SHT_STRTAB) {
            const std::uint32_t offset = choices.byte();
            const QString text = ElfFile::stringAt(section, offset);
            expect(text.isEmpty() || text.size() <= static_cast<qsizetype>(section.data.size() - offset),
                   "a string lies in its section");
        }
    }
    const std::vector<ElfSymbol> symbols = file.symbolsByValue();
    expect(std::ranges::is_sorted(symbols, {}, &ElfSymbol::value), "symbols come by value");
    for (std::size_t i = 0; i < symbols.size(); i += symbols.size() / mostNames + 1) {
        const ElfSymbol* found = file.findSymbol(symbols[i].name.toLatin1().constData());
        expect(found != nullptr && found->name == symbols[i].name, "a symbol is found by its name");
    }
}

std::uint32_t chooseAddress(const ElfFile& file, Choices& choices, AddressSpace space) {
    const std::uint32_t kind = choices.byte();
    if (kind < 64 || file.programs().empty()) {
        return choices.word();
    }
    const ElfProgram& program =
        file.programs()[choices.below(std::min<std::size_t>(file.programs().size(), 256))];
    const std::uint32_t edge =
        kind < 160 ? program.base(space) : static_cast<std::uint32_t>(endOf(program, space));
    return edge + choices.byte() - 64;
}

void checkRange(const ElfFile& file, std::uint32_t address, std::size_t length, AddressSpace space,
                std::uint8_t padding) {
    Bytes expected(length, padding);
    for (std::size_t i = 0; i < length; ++i) {
        for (const ElfProgram& program : file.programs()) {
            const std::uint64_t at = std::uint64_t{address} + i;
            if (at >= program.base(space) && at < std::min(endOf(program, space), std::uint64_t{1} << 32)) {
                expected[i] = program.data[at - program.base(space)];
            }
        }
    }
    Bytes copied(length, static_cast<std::uint8_t>(~padding));
    file.copyRange(address, copied, space, padding);
    expect(copied == expected, "a range has the bytes of the last program header, and padding elsewhere");
    expect(file.crc32(address, length, space, padding) == computeCrc32(expected.data(), length),
           "the CRC of a range is that of its bytes");
    if (const auto whole = file.wholeRange(address, length, space)) {
        expect(std::ranges::equal(*whole, expected), "a whole range is the same bytes");
    }
}

void checkPoke(ElfFile& file, std::uint32_t address, AddressSpace space, std::uint32_t value) {
    Bytes expected(file.image().begin(), file.image().end());
    const auto bytes = file.bytesAt(address, 4, space);
    const auto holder = std::ranges::find_if(file.programs(), [&](const ElfProgram& program) {
        return address >= program.base(space) && std::uint64_t{address} + 4 <= endOf(program, space);
    });
    const bool isHeld =
        std::uint64_t{address} + 4 <= std::uint64_t{1} << 32 && holder != file.programs().end();
    expect(bytes.has_value() == isHeld, "a word is there or it isn't");
    if (!bytes) {
        return;
    }
    expect(bytes->data() == holder->data.data() + (address - holder->base(space)),
           "a word is that of the first program header");
    writeWord(*bytes, value, file.byteOrder());
    expect(readWord(*bytes, file.byteOrder()) == value, "a poked word reads back");
    writeWord(std::span(expected).subspan(static_cast<std::size_t>(bytes->data() - file.image().data())),
              value, file.byteOrder());
    expect(std::ranges::equal(expected, file.image()), "a poke changes its own bytes alone");
}

void exercise(ElfFile& file, std::span<const std::uint8_t> input) {
    Choices choices(input.last(std::min(input.size(), choiceBytes)));
    checkNames(file, choices);
    expect(std::ranges::equal(file.image(), input), "a loaded image is the file as it came");
    for (int i = 0; i < 4; ++i) {
        const AddressSpace space = choices.oneIn(2) ? AddressSpace::Physical : AddressSpace::Virtual;
        const std::uint32_t address = chooseAddress(file, choices, space);
        checkRange(file, address, choices.byte() * 2, space, static_cast<std::uint8_t>(choices.byte()));
        checkPoke(file, address, space, choices.word());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::span input(data, size);
    if (size < SELFMAG || std::memcmp(data, ELFMAG, SELFMAG) != 0) {
        return 0; // never comes past the reading of files
    }
    ElfFile file;
    try {
        file.load(copyOf(input), FilePath("image"), size % 3 == 0 ? 0xFFFF0000 : 0);
        exercise(file, input);
    } catch (const HException& failure) {
        expect(failure.text() == "invalid ELF file: image" || failure.text() == "not a string section",
               "an image is refused in one of two ways");
        expect(file.image().empty() && file.sections().empty() && file.programs().empty(),
               "what was refused leaves nothing behind");
    }
    return 0;
}

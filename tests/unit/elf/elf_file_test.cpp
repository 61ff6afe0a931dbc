#include "elf/elf_file.h"

#include "elf_builder.h"
#include "system/crc32.h"
#include "system/h_exception.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <random>
#include <tuple>

namespace {

// Every test runs on files of both byte orders.
class ElfFileTest : public testing::TestWithParam<bool> {
protected:
    // The message of a failed load, or the empty text.
    std::string load(const Bytes& bytes, std::uint32_t addressOffset = 0) {
        auto copied = std::make_unique<std::uint8_t[]>(bytes.size());
        std::copy(bytes.begin(), bytes.end(), copied.get());
        try {
            file.load(ImageBytes(std::move(copied), bytes.size()), FilePath("a.elf"), addressOffset);
        } catch (const HException& failure) {
            return failure.text();
        }
        return {};
    }

    std::optional<std::uint32_t> symbol(const char* name) {
        const ElfSymbol* found = file.findSymbol(name);
        return found == nullptr ? std::nullopt : std::optional(found->value);
    }

    Bytes copy(std::uint32_t address, std::size_t length, std::uint8_t padding = 0) {
        Bytes bytes(length);
        file.copyRange(address, bytes, AddressSpace::Virtual, padding);
        return bytes;
    }

    ElfFile file;
    ElfBuilder builder{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(BothOrders, ElfFileTest, testing::Bool(),
                         [](const auto& order) { return order.param ? "big" : "little"; });

TEST_P(ElfFileTest, ReadsHeadersInTheFilesOrder) {
    builder.programs = {{0x1000, 0x9000, countingBytes(16), PT_LOAD}, {0x2000, 0x2000, {}, PT_NOTE}};
    builder.sections = {{".x", SHT_PROGBITS, countingBytes(8)}, {".x", SHT_STRTAB, bytesOf("abc")}};
    ASSERT_EQ(load(builder.build(), 0xFFFFF800), "");
    EXPECT_EQ(file.isBigEndian(), GetParam());
    ASSERT_EQ(file.programs().size(), 2U);
    EXPECT_EQ(file.programs()[0].header.p_vaddr, 0x800U); // the offset wraps
    EXPECT_EQ(file.programs()[0].header.p_paddr, 0x8800U);
    EXPECT_EQ(file.programs()[1].header.p_type, std::uint32_t{PT_NOTE});
    const ElfSection& section = *file.findSection(".x"); // the later one of the name
    EXPECT_EQ(section.header.sh_addr, 0xFFFFF800U);
    EXPECT_EQ(ElfFile::stringAt(section, 0), QString::fromLatin1("abc")); // no NUL: up to the end
    EXPECT_EQ(ElfFile::stringAt(section, 3), QString());
    EXPECT_THROW(ElfFile::stringAt(file.sections()[1], 0), HException);
    EXPECT_EQ(file.findSection("."), nullptr);
    EXPECT_EQ(file.findSection("x"), nullptr);
}

TEST_P(ElfFileTest, FindsSymbolsByDemangledName) {
    builder.symbols = {
        {"_Z3fooi", 0x8001, STT_FUNC}, {"arm_code", 0x8000, STT_FUNC},
        {"data", 0x8001, STT_OBJECT},  {"thumb", 0x8003, 13},
        {"label", 0x8005, 15},         {"__Z3barv", 7, STT_NOTYPE},
        {"$d", 1, STT_NOTYPE},         {"_Z1$v", 2, STT_FUNC},
        {"", 3, STT_OBJECT},           {"absolute", 0xFFFFFFFF, STT_NOTYPE, SHN_ABS},
        {"i", 9, STT_OBJECT},          {"undefined", 0, STT_NOTYPE, SHN_UNDEF},
    };
    ASSERT_EQ(load(builder.build(), 0x10), "");
    const std::vector<std::tuple<const char*, std::uint32_t, SymbolKind>> found = {
        {"foo(int)", 0x8010, SymbolKind::Thumb}, {"arm_code", 0x8010, SymbolKind::Arm},
        {"data", 0x8011, SymbolKind::Other},     {"thumb", 0x8013, SymbolKind::Thumb},
        {"label", 0x8015, SymbolKind::Thumb},    {"bar()", 0x17, SymbolKind::Other},
        {"absolute", 0xF, SymbolKind::Other},    {"undefined", 0x10, SymbolKind::Other},
        {"int", 0x19, SymbolKind::Other}};
    for (const auto& [name, value, kind] : found) {
        ASSERT_EQ(symbol(name), value) << name;
        EXPECT_EQ(file.findSymbol(name)->kind, kind) << name;
    }
    for (const char* dropped : {"$d", "$()", "", "foo", "foo(int) ", "_Z3fooi", "i"}) {
        EXPECT_EQ(symbol(dropped), std::nullopt) << dropped;
    }
    std::vector<std::string> names;
    for (const ElfSymbol& each : file.symbolsByValue()) {
        names.push_back(each.name.toStdString());
    }
    EXPECT_EQ(names, (std::vector<std::string>{"undefined", "bar()", "int", "foo(int)", "arm_code", "data",
                                               "thumb", "label"}));
}

TEST_P(ElfFileTest, TheLinkersCommentChoosesTheStyleOfNames) {
    for (const auto& [comment, isArm] : {std::pair{"ARM Linker, ADS1.2 [Build 805]", true},
                                         {"ARM Linker, ADS1.2", true},
                                         {"ARM Linker, ADS1.", false},
                                         {" ARM Linker, ADS1.2", false}}) {
        builder.sections = {{".comment", SHT_PROGBITS, bytesOf(comment)}};
        builder.symbols = {{"f__Fi", 4}, {"_Z1gv", 8}};
        ASSERT_EQ(load(builder.build()), "");
        EXPECT_EQ(symbol("f(int)").has_value(), isArm) << comment;
        EXPECT_EQ(symbol("_Z1gv").has_value(), isArm) << comment;
        EXPECT_EQ(symbol("g()").has_value(), !isArm) << comment;
    }
}

TEST_P(ElfFileTest, RefusesWhatItCannotTrust) {
    const auto patched = [](std::size_t at, const Bytes& bytes) {
        return [=](Bytes& image) {
            std::copy(bytes.begin(), bytes.end(), image.begin() + static_cast<std::ptrdiff_t>(at));
        };
    };
    builder.programs = {{0x1000, 0x1000, countingBytes(16), PT_LOAD}};
    builder.sections = {{".comment", SHT_PROGBITS, bytesOf("GCC")}};
    builder.symbols = {{"first", 1}};
    const Bytes good = builder.build();
    ASSERT_EQ(load(good), "");
    constexpr const char* invalid = "invalid ELF file: a.elf";
    const auto section = [&](std::size_t index, std::size_t field) {
        return builder.sectionTable + index * sizeof(Elf32_Shdr) + field * 4;
    };
    const struct {
        const char* what;
        std::function<void(Bytes&)> change;
        const char* message;
    } cases[] = {
        {"64-bit", patched(EI_CLASS, {ELFCLASS64}), invalid},
        {"only the magic", [](Bytes& image) { image.resize(4); }, invalid},
        {"half a header", [](Bytes& image) { image.resize(51); }, invalid},
        {"no bytes", [](Bytes& image) { image.clear(); }, invalid},
        {"cut in the section table", [](Bytes& image) { image.pop_back(); }, invalid},
        {"program table outside", patched(28, {0x7F, 0xFF, 0xFF, 0x7F}), invalid},
        {"too many programs", patched(44, {0xFF, 0xFF}), invalid},
        {"comment outside", patched(section(1, 4), {0x7F, 0, 0, 0x7F}), invalid},
        {"symbols outside", patched(section(2, 5), {0x7F, 0, 0, 0x7F}), invalid},
        {"symbols without size", patched(section(2, 9), {0, 0, 0, 0}), invalid},
        {"strings outside", patched(section(3, 4), {0x7F, 0, 0, 0x7F}), invalid},
        {"names outside", patched(section(4, 4), {0x7F, 0, 0, 0x7F}), invalid},
        {"strings of another type", patched(section(3, 1), {1, 0, 0, 1}), "not a string section"},
        {"names of another type", patched(section(4, 1), {1, 0, 0, 1}), "not a string section"},
    };
    for (const auto& each : cases) {
        Bytes image = good;
        each.change(image);
        EXPECT_EQ(load(image), each.message) << each.what;
        EXPECT_TRUE(file.image().empty()) << each.what;
        EXPECT_TRUE(file.programs().empty()) << each.what;
        EXPECT_EQ(symbol("first"), std::nullopt) << each.what;
    }
    builder.hasStrings = false;
    EXPECT_EQ(load(builder.build()), "invalid ELF file: a.elf");
    // Entries of 16 bytes leave the file where the section says that they are smaller.
    builder.hasStrings = true;
    builder.symbolSize = 1;
    EXPECT_EQ(load(builder.build()), "invalid ELF file: a.elf");
}

TEST_P(ElfFileTest, LoadsWhatTheFileHolds) {
    builder.hasSections = false;
    builder.programs = {{0x1000, 0x1000, countingBytes(16), PT_LOAD}};
    Bytes image = builder.build();
    image.resize(image.size() - 4); // the program header claims more
    ASSERT_EQ(load(image), "");
    EXPECT_EQ(symbol("main"), std::nullopt);
    EXPECT_TRUE(file.bytesAt(0x1008, 4, AddressSpace::Virtual));
    EXPECT_FALSE(file.bytesAt(0x1009, 4, AddressSpace::Virtual));

    // Sections that nothing asks for may lie anywhere; names may lie outside of their table.
    builder.hasSections = true;
    builder.sections = {{".debug", SHT_PROGBITS, countingBytes(4)}};
    builder.symbols = {{"first", 1}, {"second", 2}};
    image = builder.build();
    for (std::size_t i = 0; i < 4; ++i) {
        image[builder.sectionTable + sizeof(Elf32_Shdr) + 16 + i] = 0xFF;
        image[builder.symbolTable + sizeof(Elf32_Sym) + i] = 0xFF;
    }
    ASSERT_EQ(load(image), "");
    EXPECT_TRUE(file.sections()[1].data.empty());
    EXPECT_EQ(symbol("first"), std::nullopt);
    EXPECT_EQ(symbol("second"), 2U);
}

TEST_P(ElfFileTest, MapsAddressesToBytes) {
    builder.programs = {{0x100, 0x8000, Bytes(32, 1), PT_LOAD},
                        {0x108, 0x8010, Bytes(8, 2), PT_LOAD},
                        {0x0F8, 0x9000, Bytes(12, 3), PT_LOAD},
                        {0x10C, 0, {}, PT_LOAD},
                        {0xFFFFFFF8, 0, countingBytes(16), PT_LOAD}};
    ASSERT_EQ(load(builder.build()), "");
    Bytes expected(48, 0xEE); // where programs overlap, the last one counts
    for (std::size_t i = 0; i < 3; ++i) {
        const TestProgram& program = builder.programs[i];
        std::copy(program.bytes.begin(), program.bytes.end(), expected.begin() + (program.vaddr - 0xF0));
    }
    for (std::uint32_t start = 0; start < 48; ++start) {
        for (std::uint32_t length = 1; start + length <= 48; ++length) {
            const auto part = std::span(expected).subspan(start, length);
            EXPECT_TRUE(std::ranges::equal(copy(0xF0 + start, length, 0xEE), part));
            EXPECT_EQ(file.crc32(0xF0 + start, length, AddressSpace::Virtual, 0xEE),
                      computeCrc32(part.data(), length));
            const auto whole = file.wholeRange(0xF0 + start, length, AddressSpace::Virtual);
            EXPECT_TRUE(!whole || std::ranges::equal(*whole, part));
        }
    }
    EXPECT_EQ(file.crc32(0, 0, AddressSpace::Virtual, 0), 0U);
    const Bytes gap(100'000, 0x5A);
    EXPECT_EQ(file.crc32(0x1234, gap.size(), AddressSpace::Virtual, 0x5A),
              computeCrc32(gap.data(), gap.size()));
    // The address space ends at 2^32.
    EXPECT_EQ(copy(0xFFFFFFF6, 14, 7), (Bytes{7, 7, 0, 1, 2, 3, 4, 5, 6, 7, 7, 7, 7, 7}));
    EXPECT_TRUE(file.bytesAt(0xFFFFFFFC, 4, AddressSpace::Virtual));
    EXPECT_FALSE(file.bytesAt(0xFFFFFFFD, 4, AddressSpace::Virtual));
    // A word is that of the first program that holds all of it.
    EXPECT_EQ(file.bytesAt(0x108, 2, AddressSpace::Virtual)->front(), 1);
    EXPECT_EQ(file.bytesAt(0x8010, 4, AddressSpace::Physical)->data(), file.programs()[0].data.data() + 16);
    EXPECT_FALSE(file.bytesAt(0x0FF, 32, AddressSpace::Virtual));
}

// Against the plainest reading, over all ranges of some hundred arrangements.
TEST(ProgramFinder, FindsTheFirstThatHoldsTheRangeWhole) {
    std::mt19937 random(1);
    for (int round = 0; round < 300; ++round) {
        std::vector<AddressRun> programs(random() % 20);
        for (AddressRun& program : programs) {
            program.start = random() % 40;
            program.end = program.start + random() % 15;
        }
        const ProgramFinder finder(programs);
        for (std::uint64_t start = 0; start < 60; ++start) {
            for (std::uint64_t end = start; end < start + 12; ++end) {
                const auto holder = std::ranges::find_if(
                    programs, [&](const AddressRun& run) { return start >= run.start && end <= run.end; });
                ASSERT_EQ(finder.find(start, end).value_or(programs.size()),
                          static_cast<std::size_t>(holder - programs.begin()));
            }
        }
    }
}

} // namespace

#include "elf/elf_file.h"

#include "elf_builder.h"
#include "hostobjects/crc32.h"
#include "runtime/failures.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

// Every test runs on files of both byte orders.
class ElfFileTest : public testing::TestWithParam<bool> {
protected:
    // The message of a failed load, or the empty text.
    std::string load(const Bytes& bytes, std::uint32_t addressOffset = 0) {
        path = folder.write("test.elf", bytes);
        try {
            file.load(FilePath(path.c_str()), addressOffset);
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

    TemporaryFolder folder;
    std::string path;
    ElfFile file;
    ElfBuilder builder{GetParam()};
};

INSTANTIATE_TEST_SUITE_P(BothOrders, ElfFileTest, testing::Bool(),
                         [](const auto& order) { return order.param ? "big" : "little"; });

TEST_P(ElfFileTest, ReadsHeadersInTheFilesOrder) {
    builder.programs = {{0x1000, 0x9000, countingBytes(16), PT_LOAD}, {0x2000, 0x2000, {}, PT_NOTE}};
    builder.sections = {{".text", SHT_PROGBITS, countingBytes(8), 0}};
    ASSERT_EQ(load(builder.build(), 0xFFFFF800), "");
    EXPECT_EQ(file.isBigEndian(), GetParam());
    ASSERT_EQ(file.programs().size(), 2U);
    EXPECT_EQ(file.programs()[0].header.p_vaddr, 0x800U); // the offset wraps
    EXPECT_EQ(file.programs()[0].header.p_paddr, 0x8800U);
    EXPECT_EQ(file.programs()[0].data.size(), 16U);
    EXPECT_EQ(file.programs()[1].header.p_type, std::uint32_t{PT_NOTE});
    ASSERT_NE(file.findSection(".text"), nullptr);
    EXPECT_EQ(file.findSection(".text")->header.sh_addr, 0xFFFFF800U);
    EXPECT_EQ(file.findSection(".tex"), nullptr);
    EXPECT_EQ(file.findSection("text"), nullptr);
}

TEST_P(ElfFileTest, ALaterSectionOfTheSameNameCounts) {
    builder.sections = {{".x", SHT_PROGBITS, countingBytes(8), 0}, {".x", SHT_STRTAB, bytesOf("abc"), 0}};
    ASSERT_EQ(load(builder.build()), "");
    const ElfSection& section = *file.findSection(".x");
    EXPECT_EQ(ElfFile::stringAt(section, 0), QString::fromLatin1("abc")); // no NUL: up to the end
    EXPECT_EQ(ElfFile::stringAt(section, 2), QString::fromLatin1("c"));
    EXPECT_EQ(ElfFile::stringAt(section, 3), QString());
    EXPECT_EQ(ElfFile::stringAt(section, 0xFFFFFFFF), QString());
    EXPECT_THROW(ElfFile::stringAt(file.sections()[1], 0), HException);
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
    EXPECT_EQ(symbol("foo(int)"), 0x8010U);
    EXPECT_EQ(symbol("_Z3fooi"), std::nullopt);
    EXPECT_EQ(symbol("arm_code"), 0x8010U);
    EXPECT_EQ(symbol("data"), 0x8011U);
    EXPECT_EQ(symbol("thumb"), 0x8013U);
    EXPECT_EQ(symbol("label"), 0x8015U);
    EXPECT_EQ(symbol("bar()"), 0x17U);
    EXPECT_EQ(symbol("absolute"), 0xFU);
    EXPECT_EQ(symbol("undefined"), 0x10U);
    EXPECT_EQ(symbol("i"), std::nullopt);
    EXPECT_EQ(symbol("int"), 0x19U);
    for (const char* dropped : {"$d", "$()", "", "foo", "foo(int) "}) {
        EXPECT_EQ(symbol(dropped), std::nullopt) << dropped;
    }
    EXPECT_EQ(file.findSymbol("foo(int)")->kind, SymbolKind::Thumb);
    EXPECT_EQ(file.findSymbol("arm_code")->kind, SymbolKind::Arm);
    EXPECT_EQ(file.findSymbol("data")->kind, SymbolKind::Other);
    EXPECT_EQ(file.findSymbol("thumb")->kind, SymbolKind::Thumb);
    EXPECT_EQ(file.findSymbol("foo(int)"), file.findSymbol("foo(int)"));

    std::vector<std::string> names;
    for (const ElfSymbol& each : file.symbolsByValue()) {
        names.push_back(each.name.toStdString());
    }
    EXPECT_EQ(names, (std::vector<std::string>{"undefined", "bar()", "int", "foo(int)", "arm_code", "data",
                                               "thumb", "label"}));
}

TEST_P(ElfFileTest, TheLinkersCommentChoosesTheStyleOfNames) {
    const struct {
        const char* comment;
        bool isArm;
    } cases[] = {{"ARM Linker, ADS1.2 [Build 805]", true},
                 {"ARM Linker, ADS1.2", true},
                 {"ARM Linker, ADS1.", false},
                 {" ARM Linker, ADS1.2", false},
                 {"ARM Linker, RVCT3.1", false},
                 {"GCC: (GNU) 12", false},
                 {"", false}};
    for (const auto& each : cases) {
        builder.sections = {{".comment", SHT_PROGBITS, bytesOf(each.comment), 0}};
        builder.symbols = {{"f__Fi", 4}, {"_Z1gv", 8}};
        ASSERT_EQ(load(builder.build()), "");
        EXPECT_EQ(symbol("f(int)").has_value(), each.isArm) << each.comment;
        EXPECT_EQ(symbol("_Z1gv").has_value(), each.isArm) << each.comment;
        EXPECT_EQ(symbol("g()").has_value(), !each.isArm) << each.comment;
    }
}

TEST_P(ElfFileTest, RefusesWhatItCannotTrust) {
    const auto patched = [](std::size_t at, const Bytes& bytes) {
        return [=](Bytes& image) {
            std::copy(bytes.begin(), bytes.end(), image.begin() + static_cast<std::ptrdiff_t>(at));
        };
    };
    builder.programs = {{0x1000, 0x1000, countingBytes(16), PT_LOAD}};
    builder.sections = {{".comment", SHT_PROGBITS, bytesOf("GCC"), 0}};
    builder.symbols = {{"first", 1}};
    const Bytes good = builder.build();
    ASSERT_EQ(load(good), "");
    const auto section = [&](std::size_t index, std::size_t field) {
        return builder.sectionTable + index * sizeof(Elf32_Shdr) + field * 4;
    };
    const struct {
        const char* what;
        std::function<void(Bytes&)> change;
        const char* message;
    } cases[] = {
        {"no magic", patched(1, {'e'}), "invalid ELF file: "},
        {"64-bit", patched(EI_CLASS, {ELFCLASS64}), "invalid ELF file: "},
        {"only the magic", [](Bytes& image) { image.resize(4); }, "invalid ELF file: "},
        {"half a header", [](Bytes& image) { image.resize(51); }, "invalid ELF file: "},
        {"no bytes", [](Bytes& image) { image.clear(); }, "invalid ELF file: "},
        {"cut in the section table", [](Bytes& image) { image.pop_back(); }, "invalid ELF file: "},
        {"program table outside", patched(28, {0x7F, 0xFF, 0xFF, 0x7F}), "invalid ELF file: "},
        {"too many programs", patched(44, {0xFF, 0xFF}), "invalid ELF file: "},
        {"comment outside", patched(section(1, 4), {0x7F, 0, 0, 0x7F}), "invalid ELF file: "},
        {"symbols outside", patched(section(2, 5), {0x7F, 0, 0, 0x7F}), "invalid ELF file: "},
        {"symbols without size", patched(section(2, 9), {0, 0, 0, 0}), "invalid ELF file: "},
        {"strings outside", patched(section(3, 4), {0x7F, 0, 0, 0x7F}), "invalid ELF file: "},
        {"names outside", patched(section(4, 4), {0x7F, 0, 0, 0x7F}), "invalid ELF file: "},
        {"strings of another type", patched(section(3, 1), {1, 0, 0, 1}), "not a string section"},
        {"names of another type", patched(section(4, 1), {1, 0, 0, 1}), "not a string section"},
    };
    for (const auto& each : cases) {
        Bytes image = good;
        each.change(image);
        const std::string expected =
            each.message +
            (std::string(each.message).ends_with(": ") ? folder.file("test.elf") : std::string());
        EXPECT_EQ(load(image), expected) << each.what;
        EXPECT_TRUE(file.image().empty()) << each.what;
        EXPECT_TRUE(file.programs().empty()) << each.what;
        EXPECT_EQ(symbol("first"), std::nullopt) << each.what;
    }
    builder.hasStrings = false;
    EXPECT_EQ(load(builder.build()), "invalid ELF file: " + path);
    // Entries of 16 bytes leave the file where the section says that they are smaller.
    builder.hasStrings = true;
    builder.symbolSize = 1;
    EXPECT_EQ(load(builder.build()), "invalid ELF file: " + path);
}

TEST_P(ElfFileTest, LoadsWhatTheFileHolds) {
    builder.hasSections = false;
    builder.programs = {{0x1000, 0x1000, countingBytes(16), PT_LOAD}};
    Bytes image = builder.build();
    image.resize(image.size() - 4); // the program header claims more
    ASSERT_EQ(load(image), "");
    EXPECT_EQ(symbol("main"), std::nullopt);
    EXPECT_TRUE(file.bytesAt(0x1008, 4, AddressSpace::Virtual));
    EXPECT_FALSE(file.bytesAt(0x100A, 4, AddressSpace::Virtual));
    EXPECT_EQ(copy(0x100A, 4, 0xEE), (Bytes{10, 11, 0xEE, 0xEE}));

    // Sections that nothing asks for may lie anywhere; names may lie outside of their table.
    builder = ElfBuilder(GetParam());
    builder.sections = {{".debug", SHT_PROGBITS, countingBytes(4), 0}};
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
    // and a failed load takes all of it away
    EXPECT_EQ(load(bytesOf("no image")), "invalid ELF file: " + path);
    EXPECT_EQ(symbol("second"), std::nullopt);
}

TEST_P(ElfFileTest, MapsAddressesToBytes) {
    builder.programs = {{0x1000, 0x8000, countingBytes(16, 1), PT_LOAD},
                        {0x1020, 0x8010, countingBytes(16, 101), PT_LOAD},
                        {0xFFFFFFF8, 0xFFFFFFF8, countingBytes(16, 201), PT_LOAD}};
    ASSERT_EQ(load(builder.build()), "");
    const Bytes first = countingBytes(16, 1);
    const Bytes second = countingBytes(16, 101);
    const auto joined = [](std::initializer_list<Bytes> parts) {
        Bytes all;
        for (const Bytes& part : parts) {
            all.insert(all.end(), part.begin(), part.end());
        }
        return all;
    };
    EXPECT_EQ(copy(0x1000, 0x30, 0xFF), joined({first, Bytes(16, 0xFF), second}));
    EXPECT_EQ(copy(0xFF0, 0x50), joined({Bytes(16), first, Bytes(16), second, Bytes(16)}));
    EXPECT_EQ(copy(0x1004, 4), (Bytes{5, 6, 7, 8}));
    EXPECT_EQ(copy(0, 4, 9), Bytes(4, 9));
    // the address space ends at 2^32
    EXPECT_EQ(copy(0xFFFFFFF6, 14, 7), (Bytes{7, 7, 201, 202, 203, 204, 205, 206, 207, 208, 7, 7, 7, 7}));
    EXPECT_TRUE(file.bytesAt(0xFFFFFFFC, 4, AddressSpace::Virtual));
    EXPECT_FALSE(file.bytesAt(0xFFFFFFFD, 4, AddressSpace::Virtual));

    EXPECT_TRUE(file.bytesAt(0x100C, 4, AddressSpace::Virtual));
    EXPECT_FALSE(file.bytesAt(0x100D, 4, AddressSpace::Virtual));
    EXPECT_FALSE(file.bytesAt(0xFFF, 4, AddressSpace::Virtual));
    EXPECT_FALSE(file.bytesAt(0x800E, 4, AddressSpace::Physical)); // from one header into the next
    EXPECT_EQ(file.bytesAt(0x8010, 4, AddressSpace::Physical)->data(),
              file.bytesAt(0x1020, 4, AddressSpace::Virtual)->data());
    EXPECT_FALSE(file.bytesAt(0x8010, 4, AddressSpace::Virtual));

    // A patch is seen at once and saved.
    std::fill_n(file.bytesAt(0x1002, 2, AddressSpace::Virtual)->begin(), 2, std::uint8_t{0xAB});
    EXPECT_EQ(copy(0x1001, 4), (Bytes{2, 0xAB, 0xAB, 5}));
}

TEST_P(ElfFileTest, TheLastOfOverlappingProgramsCounts) {
    builder.programs = {{0x100, 0, Bytes(32, 1), PT_LOAD},
                        {0x108, 0, Bytes(8, 2), PT_LOAD},
                        {0x0F8, 0, Bytes(12, 3), PT_LOAD},
                        {0x10C, 0, {}, PT_LOAD}};
    ASSERT_EQ(load(builder.build()), "");
    Bytes expected(48, 0xEE);
    for (const TestProgram& program : builder.programs) {
        std::copy(program.bytes.begin(), program.bytes.end(), expected.begin() + (program.vaddr - 0xF0));
    }
    EXPECT_EQ(copy(0xF0, 48, 0xEE), expected);
    for (std::uint32_t start = 0; start < 48; ++start) {
        for (std::uint32_t length = 1; start + length <= 48; ++length) {
            EXPECT_EQ(file.crc32(0xF0 + start, length, AddressSpace::Virtual, 0xEE),
                      computeCrc32(expected.data() + start, length))
                << start << " " << length;
            if (const auto whole = file.wholeRange(0xF0 + start, length, AddressSpace::Virtual)) {
                EXPECT_TRUE(std::equal(whole->begin(), whole->end(), expected.begin() + start));
            }
        }
    }
    EXPECT_EQ(file.bytesAt(0x108, 2, AddressSpace::Virtual)->front(), 1); // the first that holds all of it
}

TEST_P(ElfFileTest, ChecksumsOfGapsNeedNoMemory) {
    ASSERT_EQ(load(builder.build()), "");
    const Bytes gap(100'000, 0x5A);
    EXPECT_EQ(file.crc32(0x1234, gap.size(), AddressSpace::Physical, 0x5A),
              computeCrc32(gap.data(), gap.size()));
    EXPECT_EQ(file.crc32(0, 0, AddressSpace::Physical, 0), 0U);
}

TEST_P(ElfFileTest, SavesTheFileAsItCame) {
    builder.programs = {{0x1000, 0x1000, countingBytes(16), PT_LOAD}};
    builder.symbols = {{"_Z3fooi", 0x8001, STT_FUNC}};
    const Bytes image = builder.build();
    ASSERT_EQ(load(image, 0x100), "");
    EXPECT_TRUE(symbol("foo(int)"));
    const std::string out = folder.file("out.elf");
    file.save(FilePath(out.c_str()));
    EXPECT_EQ(TemporaryFolder::read(out), image);
    ElfFile().save(FilePath(out.c_str()));
    EXPECT_EQ(TemporaryFolder::read(out), Bytes());
}

TEST(ElfFileMessages, NameTheCleanedPath) {
    TemporaryFolder folder;
    const std::string untidy = folder.path() + "/./x/..//missing\xE9.elf";
    const std::string clean = folder.path() + "/missing\xE9.elf";
    const auto messageOf = [](const std::function<void()>& action) {
        try {
            action();
        } catch (const HException& failure) {
            return failure.text();
        }
        return std::string("none");
    };
    ElfFile file;
    EXPECT_EQ(messageOf([&] { file.load(FilePath(untidy.c_str())); }), "cannot open " + clean);
    EXPECT_EQ(messageOf([&] { ElfFile loaded(FilePath(folder.path().c_str())); }),
              "cannot open " + folder.path());
    EXPECT_EQ(messageOf([&] { ElfFile empty(FilePath(""), 5); }), "none");
    EXPECT_EQ(messageOf([&] { file.save(FilePath(folder.path().c_str())); }), "cannot open " + folder.path());
    EXPECT_EQ(messageOf([&] { file.save(FilePath("")); }), "cannot open ");
    file.save(FilePath(untidy.c_str()));
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"missing\xE9.elf"}));
}

TEST(ElfSection, DumpsItsHeader) {
    TemporaryFolder folder;
    ElfBuilder builder(true);
    builder.sections = {{".text", SHT_PROGBITS, countingBytes(8), 0}};
    ElfFile file(FilePath(folder.write("a.elf", builder.build()).c_str()), 0x8000);
    testing::internal::CaptureStdout();
    file.findSection(".text")->dump();
    const std::string text = testing::internal::GetCapturedStdout();
    for (const char* line :
         {"sh_name     : 0x1 .text\n", "sh_type     : 0x1 PROGBITS\n", "sh_flags    : 0x2 ALLOC\n",
          "sh_addr     : 0x8000\n", "sh_size     : 0x8\n", "sh_addralign: 0x4\n"}) {
        EXPECT_NE(text.find(line), std::string::npos) << line << text;
    }
}

} // namespace

// Every field of good images set to every wild value, and the images cut at every structure: loading ends in
// one of its messages or in a model that works on what the file holds. The sanitizers say the rest.
#include "elf/elf_file.h"

#include "elf_builder.h"
#include "runtime/failures.h"
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include <chrono>
#include <set>

namespace {

// A file that never sees a disk.
class MemoryFile {
public:
    MemoryFile() : fd_(memfd_create("image", MFD_CLOEXEC)), path_("/proc/self/fd/" + std::to_string(fd_)) {}
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;
    ~MemoryFile() { close(fd_); }

    const std::string& write(const Bytes& bytes) const {
        const bool written = ftruncate(fd_, 0) == 0 && pwrite(fd_, bytes.data(), bytes.size(), 0) >= 0;
        EXPECT_TRUE(written);
        return path_;
    }

private:
    int fd_;
    std::string path_;
};

struct Field {
    std::size_t offset;
    std::size_t size;
};

// The places of all fields of all structures that the headers of an image name.
class Layout {
public:
    explicit Layout(const Bytes& image) : image_(image), big_(image.at(EI_DATA) == ELFDATA2MSB) {
        add(0, {1, 1, 1, 1, 1, 1, 1, 9, 2, 2, 4, 4, 4, 4, 4, 2, 2, 2, 2, 2, 2});
        const std::size_t sections = word(32);
        addTable(word(28), half(44), sizeof(Elf32_Phdr), Bytes(8, 4));
        addTable(sections, half(48), sizeof(Elf32_Shdr), Bytes(10, 4));
        for (std::size_t i = 0; i < half(48); ++i) {
            const std::size_t header = sections + i * sizeof(Elf32_Shdr);
            if (word(header + 4) == SHT_SYMTAB) {
                addTable(word(header + 16), word(header + 20) / sizeof(Elf32_Sym), sizeof(Elf32_Sym),
                         {4, 4, 4, 1, 1, 2});
            }
            edges.insert(word(header + 16));
            edges.insert(word(header + 16) + word(header + 20));
        }
    }

    Bytes with(const Field& field, std::uint64_t value) const {
        Bytes changed = image_;
        for (std::size_t i = 0; i < std::min<std::size_t>(field.size, 4); ++i) {
            changed[field.offset + (big_ ? field.size - 1 - i : i)] =
                static_cast<std::uint8_t>(value >> (8 * i));
        }
        return changed;
    }

    std::vector<Field> fields;
    std::set<std::size_t> edges; // where structures begin and end

private:
    void add(std::size_t at, const Bytes& sizes) {
        for (const std::size_t size : sizes) {
            fields.push_back({at, size});
            edges.insert(at);
            at += size;
        }
        edges.insert(at);
    }
    void addTable(std::size_t at, std::size_t count, std::size_t size, const Bytes& sizes) {
        for (std::size_t i = 0; i < count; ++i) {
            add(at + i * size, sizes);
        }
    }
    std::size_t integer(std::size_t at, std::size_t size) const {
        std::size_t value = 0;
        for (std::size_t i = 0; i < size; ++i) {
            value = value << 8 | image_.at(at + (big_ ? i : size - 1 - i));
        }
        return value;
    }
    std::size_t word(std::size_t at) const { return integer(at, 4); }
    std::size_t half(std::size_t at) const { return integer(at, 2); }

    const Bytes& image_;
    bool big_;
};

class MalformedImages : public testing::TestWithParam<const char*> {
protected:
    void SetUp() override {
        image = TemporaryFolder::read(std::string(QUORVANE_SOURCE_DIR "/examples/firmware/") + GetParam());
        ASSERT_FALSE(image.empty());
    }

    // Does all that a script can do, and watches that it stays within its means.
    void exercise(const Bytes& bytes, const std::string& what) {
        const auto start = std::chrono::steady_clock::now();
        const std::string path = disk.write(bytes);
        try {
            file.load(FilePath(path.c_str()));
            ++loaded;
            use();
        } catch (const HException& failure) {
            ASSERT_TRUE(failure.text() == "invalid ELF file: " + path ||
                        failure.text() == "not a string section")
                << what << ": " << failure.text();
            ASSERT_TRUE(file.image().empty() && file.sections().empty()) << what;
            ++refused;
        }
        ASSERT_TRUE(file.image().empty() || std::ranges::equal(file.image(), bytes)) << what;
        const std::chrono::duration<double> time = std::chrono::steady_clock::now() - start;
        ASSERT_LT(time.count(), 1.0 * timeFactor) << what;
    }

    void use() {
        for (const char* name : {"main", "board::Led::set(bool)", "_Z", "missing::name(int)"}) {
            file.findSymbol(name);
        }
        Bytes range(4096);
        for (const AddressSpace space : {AddressSpace::Virtual, AddressSpace::Physical}) {
            for (const ElfProgram& program : file.programs()) {
                const std::uint32_t base = program.base(space);
                if (const auto bytes = file.bytesAt(base, 4, space)) {
                    writeWord(*bytes, readWord(*bytes, file.byteOrder()), file.byteOrder());
                }
                file.bytesAt(base + program.header.p_filesz - 4, 4, space);
                file.copyRange(base - 16, range, space, 0xFF);
                file.crc32(base - 16, 0x10000, space, 0xFF);
            }
        }
        for (const ElfSection& section : file.sections()) {
            file.sectionName(section);
        }
        file.symbolsByValue();
    }

    MemoryFile disk;
    ElfFile file;
    Bytes image;
    int loaded = 0;
    int refused = 0;
};

INSTANTIATE_TEST_SUITE_P(Firmware, MalformedImages, testing::Values("firmware.elf", "firmware-be.elf"),
                         [](const auto& name) {
                             return std::string(name.param).length() > 12 ? "big" : "little";
                         });

TEST_P(MalformedImages, EveryFieldWithEveryWildValue) {
    const Layout layout(image);
    const std::uint64_t size = image.size();
    for (const Field& field : layout.fields) {
        for (const std::uint64_t value :
             {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{0xFFFFFFFF}, size, size - 1, size + 1,
              std::uint64_t{0x7FFFFFFF}, std::uint64_t{0x80000000}}) {
            exercise(layout.with(field, value),
                     std::to_string(value) + " at " + std::to_string(field.offset));
        }
    }
    EXPECT_GT(loaded, 1000);
    EXPECT_GT(refused, 100);
}

TEST_P(MalformedImages, CutAtEveryStructure) {
    const Layout layout(image);
    ASSERT_GT(layout.edges.size(), 100U);
    for (const std::size_t edge : layout.edges) {
        for (const std::size_t length : {edge - 1, edge, edge + 1}) {
            if (length < image.size()) {
                exercise(Bytes(image.begin(), image.begin() + static_cast<std::ptrdiff_t>(length)),
                         "cut at " + std::to_string(length));
            }
        }
    }
    EXPECT_EQ(loaded, 0); // the section headers come last
}

TEST(MalformedImage, ClaimsOutOfProportionAreRefusedAtOnce) {
    MemoryFile disk;
    ElfBuilder builder(false);
    builder.symbols = {{"name", 1}};
    const Bytes good = builder.build();
    const auto loadTime = [&](std::size_t at, std::uint32_t value, std::size_t size) {
        Bytes image = good;
        for (std::size_t i = 0; i < size; ++i) {
            image[at + i] = static_cast<std::uint8_t>(value >> (8 * i));
        }
        const std::string path = disk.write(image);
        const auto start = std::chrono::steady_clock::now();
        EXPECT_THROW(ElfFile(FilePath(path.c_str())), HException);
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    EXPECT_LT(loadTime(48, 0xFFFF, 2), 0.05 * timeFactor); // 65,535 sections
    EXPECT_LT(loadTime(builder.sectionTable + sizeof(Elf32_Shdr) + 20, 0xFFFFFFF0, 4),
              0.05 * timeFactor); // 4 GB of symbols
}

} // namespace

// Every field of good images set to every wild value, and the images cut at every structure: the rules of the
// fuzz target hold, and the sanitizers say the rest.
#define LLVMFuzzerTestOneInput checkImage
#include "fuzz/fuzz_elf.cpp"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <set>

namespace {

struct Field {
    std::size_t offset;
    std::size_t size;
};

// The places of all fields of all structures that the headers of an image name.
class Layout {
public:
    explicit Layout(const Bytes& image) : copy_(image), big_(image.at(EI_DATA) == ELFDATA2MSB) {
        const RecordReader reader(ImageView(copy_), big_ ? ByteOrder::Big : ByteOrder::Little);
        const auto header = reader.read<Elf32_Ehdr>(0);
        add(0, {1, 1, 1, 1, 1, 1, 1, 9, 2, 2, 4, 4, 4, 4, 4, 2, 2, 2, 2, 2, 2});
        addTable(header.e_phoff, header.e_phnum, sizeof(Elf32_Phdr), Bytes(8, 4));
        addTable(header.e_shoff, header.e_shnum, sizeof(Elf32_Shdr), Bytes(10, 4));
        for (std::size_t i = 0; i < header.e_shnum; ++i) {
            const auto section = reader.read<Elf32_Shdr>(header.e_shoff + i * sizeof(Elf32_Shdr));
            if (section.sh_type == SHT_SYMTAB) {
                addTable(section.sh_offset, section.sh_size / sizeof(Elf32_Sym), sizeof(Elf32_Sym),
                         {4, 4, 4, 1, 1, 2});
            }
            edges.insert({section.sh_offset, section.sh_offset + section.sh_size});
        }
    }

    Bytes with(const Field& field, std::uint64_t value) const {
        Bytes changed = copy_;
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

    Bytes copy_;
    bool big_;
};

TEST(MalformedImages, EveryFieldWithEveryWildValueAndEveryCut) {
    for (const char* name : {"firmware.elf", "firmware-be.elf"}) {
        std::ifstream stream(std::string(QUORVANE_SOURCE_DIR "/examples/firmware/") + name, std::ios::binary);
        const Bytes image{std::istreambuf_iterator<char>(stream), {}};
        const Layout layout(image);
        ASSERT_GT(layout.edges.size(), 100U);
        const std::uint64_t size = image.size();
        for (const Field& field : layout.fields) {
            SCOPED_TRACE(std::to_string(field.offset));
            for (const std::uint64_t value : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{0xFFFFFFFF},
                                              size, size - 1, std::uint64_t{0x80000000}}) {
                const Bytes bent = layout.with(field, value);
                checkImage(bent.data(), bent.size());
            }
        }
        for (const std::size_t edge : layout.edges) {
            for (const std::size_t length : {edge - 1, edge, edge + 1}) {
                checkImage(image.data(), std::min(length, image.size()));
            }
        }
    }
}

} // namespace

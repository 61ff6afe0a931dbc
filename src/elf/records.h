// The ELF32 records and words of an image, read into host order. Byte order belongs to the reader: what
// comes out of it is a copy, and the image keeps the file's own bytes, so that saving is a plain write.
#pragma once

#include "elf/image_view.h"

#include <QtEndian>

#include <cstring>
#include <elf.h>

enum class ByteOrder { Little, Big };

template <typename Integer>
Integer fromFileOrder(Integer value, ByteOrder order) {
    return order == ByteOrder::Big ? qFromBigEndian(value) : qFromLittleEndian(value);
}

inline void convertFields(Elf32_Ehdr& header, ByteOrder order) {
    const auto convert = [order](auto&... fields) { ((fields = fromFileOrder(fields, order)), ...); };
    convert(header.e_type, header.e_machine, header.e_version, header.e_entry, header.e_phoff, header.e_shoff,
            header.e_flags, header.e_ehsize, header.e_phentsize, header.e_phnum, header.e_shentsize,
            header.e_shnum, header.e_shstrndx);
}

inline void convertFields(Elf32_Phdr& header, ByteOrder order) {
    const auto convert = [order](auto&... fields) { ((fields = fromFileOrder(fields, order)), ...); };
    convert(header.p_type, header.p_offset, header.p_vaddr, header.p_paddr, header.p_filesz, header.p_memsz,
            header.p_flags, header.p_align);
}

inline void convertFields(Elf32_Shdr& header, ByteOrder order) {
    const auto convert = [order](auto&... fields) { ((fields = fromFileOrder(fields, order)), ...); };
    convert(header.sh_name, header.sh_type, header.sh_flags, header.sh_addr, header.sh_offset, header.sh_size,
            header.sh_link, header.sh_info, header.sh_addralign, header.sh_entsize);
}

inline void convertFields(Elf32_Sym& symbol, ByteOrder order) {
    const auto convert = [order](auto&... fields) { ((fields = fromFileOrder(fields, order)), ...); };
    convert(symbol.st_name, symbol.st_value, symbol.st_size, symbol.st_shndx);
}

// Reads records at any offset, aligned or not.
class RecordReader {
public:
    RecordReader() = default;
    RecordReader(ImageView image, ByteOrder order) : image_(image), order_(order) {}

    // Throws MalformedImage when the record isn't wholly in the image.
    template <typename Record>
    Record read(std::uint64_t offset) const {
        Record record;
        std::memcpy(&record, image_.bytes(offset, sizeof(Record)).data(), sizeof(Record));
        convertFields(record, order_);
        return record;
    }

private:
    ImageView image_;
    ByteOrder order_ = ByteOrder::Little;
};

// The 32-bit word in the first four bytes, which must be there.
inline std::uint32_t readWord(std::span<const std::uint8_t> bytes, ByteOrder order) {
    const std::uint8_t* from = bytes.first<4>().data();
    return order == ByteOrder::Big ? qFromBigEndian<std::uint32_t>(from)
                                   : qFromLittleEndian<std::uint32_t>(from);
}

inline void writeWord(std::span<std::uint8_t> bytes, std::uint32_t word, ByteOrder order) {
    std::uint8_t* to = bytes.first<4>().data();
    if (order == ByteOrder::Big) {
        qToBigEndian(word, to);
    } else {
        qToLittleEndian(word, to);
    }
}

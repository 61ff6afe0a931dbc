// The symbol table of an image as it lies in the file, with nothing copied: entries by number, and their
// names still mangled. symbol_index.h finds an entry by its demangled name.
#pragma once

#include "elf/demangle.h"
#include "elf/records.h"

#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>

class SymbolTable {
public:
    SymbolTable() = default;
    // `count` entries from `offset` on must lie in the image. addressOffset is added to every value, modulo
    // 2^32.
    SymbolTable(RecordReader reader, std::uint64_t offset, std::uint32_t count,
                std::span<const std::uint8_t> strings, std::uint32_t addressOffset, NameStyle style)
        : reader_(reader), offset_(offset), count_(count), strings_(strings), addressOffset_(addressOffset),
          style_(style) {}

    std::uint32_t count() const { return count_; }
    NameStyle style() const { return style_; }

    // Names begin below this.
    std::size_t stringsSize() const { return strings_.size(); }

    // In host order.
    Elf32_Sym entry(std::uint32_t number) const {
        auto symbol = reader_.read<Elf32_Sym>(offset_ + std::uint64_t{number} * sizeof(Elf32_Sym));
        symbol.st_value += addressOffset_;
        return symbol;
    }

    // The name as the file has it, of which no more than `limit` characters are looked at: names can share
    // their ends, so all together they may be far longer than the file.
    std::string_view mangledName(std::uint32_t number, std::size_t limit) const {
        const std::size_t start = entry(number).st_name;
        if (start >= strings_.size()) {
            return {};
        }
        const char* text = reinterpret_cast<const char*>(strings_.data()) + start;
        const std::size_t length = std::min(limit, strings_.size() - start);
        const void* end = std::memchr(text, 0, length);
        return {text,
                end == nullptr ? length : static_cast<std::size_t>(static_cast<const char*>(end) - text)};
    }

    // As much of the name as it takes to demangle it or to see that it is too long for that.
    std::string_view shortName(std::uint32_t number) const {
        return mangledName(number, maxMangledLength(style_) + 2);
    }

    // Whether `text` is the demangled name.
    bool hasName(std::uint32_t number, std::string_view text) const {
        return matchesName(mangledName(number, std::max(maxMangledLength(style_), text.size()) + 2), text,
                           style_);
    }

private:
    RecordReader reader_;
    std::uint64_t offset_ = 0;
    std::uint32_t count_ = 0;
    std::span<const std::uint8_t> strings_;
    std::uint32_t addressOffset_ = 0;
    NameStyle style_ = NameStyle::GnuV3;
};

// The one way to the bytes of a file image. Offsets and sizes that a file claims are 64-bit here, so they
// can't wrap, and what lies outside the image can't be had. records.h reads records through this view;
// elf_file.h puts the records together.
#pragma once

#include <algorithm>
#include <cstdint>
#include <span>

// Thrown when the file contradicts itself or has less than its headers say.
struct MalformedImage {};

// Looks at bytes that somebody else owns. Copying is cheap.
class ImageView {
public:
    ImageView() = default;
    explicit ImageView(std::span<std::uint8_t> image) : image_(image) {}

    std::uint64_t size() const { return image_.size(); }

    bool holds(std::uint64_t offset, std::uint64_t size) const {
        return offset <= image_.size() && size <= image_.size() - offset;
    }

    // Exactly these bytes. Throws MalformedImage.
    std::span<std::uint8_t> bytes(std::uint64_t offset, std::uint64_t size) const {
        if (!holds(offset, size)) {
            throw MalformedImage{};
        }
        return image_.subspan(offset, size);
    }

    // As many of these bytes as the image holds, which may be none.
    std::span<std::uint8_t> clipped(std::uint64_t offset, std::uint64_t size) const {
        if (offset >= image_.size()) {
            return {};
        }
        return image_.subspan(offset, std::min(size, image_.size() - offset));
    }

private:
    std::span<std::uint8_t> image_;
};

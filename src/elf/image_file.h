// An image on its way from the disk and back. Reading takes the file whole; writing replaces a file in one
// step where that can be done, so that whatever happens on the way either the old image stands or the new
// one. Paths are the bytes of the name as the system takes them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

// Owns the bytes of a file.
class ImageBytes {
public:
    ImageBytes() = default;
    ImageBytes(std::unique_ptr<std::uint8_t[]> bytes, std::size_t size)
        : bytes_(std::move(bytes)), size_(size) {}

    std::span<std::uint8_t> span() const { return {bytes_.get(), size_}; }

private:
    std::unique_ptr<std::uint8_t[]> bytes_;
    std::size_t size_ = 0;
};

enum class ReadResult {
    Done,
    CannotOpen, // missing, not permitted, a directory
    CannotRead, // fewer bytes came than the file says it has
    NotElf,     // the magic is missing, or the file is too large for 32-bit offsets; the rest wasn't read
};

// Pipes and devices are read up to their end. May throw std::bad_alloc.
ReadResult readImageFile(const char* path, ImageBytes& image);

enum class WriteResult {
    Done,
    CannotOpen, // nothing was touched
    CannotWrite // too few bytes were written
};

// A regular file that is the user's own and has no second name is replaced in one step, as is a file that
// doesn't exist yet: after a failure, and even when the process is killed, the old state stands. Its group,
// its mode without the set-id bits, its extended attributes with the ACL, and the symbolic links to it stay.
// Everything else (devices, pipes, files of several names or of another owner, folders that can't be written,
// attributes that can't be kept) is overwritten in place: what has no room is refused before the old content
// is touched, and the length is set last, but who is killed in the midst leaves a mixture.
// SIGXFSZ must not be at its default, or a limit on file sizes ends the process.
WriteResult writeImageFile(const char* path, std::span<const std::uint8_t> image);

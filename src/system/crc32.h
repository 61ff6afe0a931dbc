// The checksum that scripts see as TBSys.crc32 and ElfFile.crc32: CRC-32/BZIP2, that is polynomial
// 0x04C11DB7, most significant bit first, initial value and final inversion all ones. How it is made fast,
// and how the fast paths are held against the plain table, stands in crc32.cpp and crc32_paths.h.
#pragma once

#include <cstddef>
#include <cstdint>

// The CRC of `length` bytes; 0 when `length` is 0, in which case `bytes` may be null. Throws nothing.
std::uint32_t computeCrc32(const std::uint8_t* bytes, std::size_t length);

// The same CRC over bytes that come in pieces. The value depends on the bytes alone, not on where they were
// cut.
class Crc32 {
public:
    void update(const std::uint8_t* bytes, std::size_t length);
    std::uint32_t value() const { return ~state_; }

private:
    std::uint32_t state_ = 0xFFFFFFFFU;
};

// The ways in which this machine can compute a CRC-32, so that a test can hold each against the plain table.
// Everyone else takes crc32.h, which picks the fastest.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

// Takes the running state (all ones at the start, inverted by the caller at the end) over `length` more
// bytes.
using Crc32Update = std::uint32_t (*)(std::uint32_t state, const std::uint8_t* bytes, std::size_t length);

struct Crc32Path {
    const char* name;
    Crc32Update update;
};

// The paths that the running processor can take, the fastest first. The last is the portable one.
std::span<const Crc32Path> crc32Paths();

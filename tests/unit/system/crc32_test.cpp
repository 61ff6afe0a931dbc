#include "system/crc32.h"

#include "system/crc32_paths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <vector>

namespace {

// The reference: the plain 256-entry table, one byte a step.
std::uint32_t plainUpdate(std::uint32_t state, const std::uint8_t* bytes, std::size_t length) {
    static const std::array<std::uint32_t, 256> table = [] {
        std::array<std::uint32_t, 256> entries{};
        for (std::uint32_t i = 0; i < 256; ++i) {
            std::uint32_t remainder = i << 24;
            for (int bit = 0; bit < 8; ++bit) {
                remainder = (remainder & 0x80000000U) != 0 ? (remainder << 1) ^ 0x04C11DB7U : remainder << 1;
            }
            entries[i] = remainder;
        }
        return entries;
    }();
    for (std::size_t i = 0; i < length; ++i) {
        state = (state << 8) ^ table[(state >> 24) ^ bytes[i]];
    }
    return state;
}

} // namespace

TEST(Crc32, EveryPathEqualsThePlainTableWhereverItIsCut) {
    EXPECT_EQ(Crc32().value(), 0U);
    std::mt19937 random(32);
    std::vector<std::uint8_t> bytes(20000);
    std::generate(bytes.begin(), bytes.end(), [&random] { return static_cast<std::uint8_t>(random()); });
    for (const Crc32Path& path : crc32Paths()) {
        for (std::size_t i = 0; i < 64 * 1000; ++i) {
            const std::uint8_t* const start = bytes.data() + i % 64;
            const std::size_t length = i < 63 * 1000 ? i / 64 : random() % 19000;
            const std::size_t cut = i % 3 == 0 ? 0 : random() % (length + 1);
            const auto state = static_cast<std::uint32_t>(random());
            const std::uint32_t half = path.update(state, start, cut);
            ASSERT_EQ(path.update(half, start + cut, length - cut), plainUpdate(state, start, length))
                << path.name << ": " << length << " bytes, cut at " << cut;
        }
    }
}

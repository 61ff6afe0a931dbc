#include "hostobjects/crc32.h"

#include "hostobjects/crc32_paths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <string_view>
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

std::vector<std::uint8_t> randomBytes(std::size_t count, std::mt19937& random) {
    std::vector<std::uint8_t> bytes(count);
    std::generate(bytes.begin(), bytes.end(), [&random] { return static_cast<std::uint8_t>(random()); });
    return bytes;
}

std::uint32_t crcOfText(std::string_view text) {
    const std::vector<std::uint8_t> bytes(text.begin(), text.end());
    return computeCrc32(bytes.data(), bytes.size());
}

} // namespace

TEST(Crc32, PublishedValues) {
    EXPECT_EQ(crcOfText("123456789"), 0xFC891918U);
    EXPECT_EQ(crcOfText("a"), 0x19939B6BU);
    EXPECT_EQ(crcOfText(std::string(100000, '\0')),
              ~plainUpdate(0xFFFFFFFFU, std::vector<std::uint8_t>(100000).data(), 100000));
    EXPECT_EQ(computeCrc32(nullptr, 0), 0U);
    EXPECT_EQ(Crc32().value(), 0U);
}

TEST(Crc32, EveryPathEqualsThePlainTableForEveryLengthAndAlignment) {
    std::mt19937 random(32);
    const std::vector<std::uint8_t> bytes = randomBytes(1100, random);
    for (const Crc32Path& path : crc32Paths()) {
        SCOPED_TRACE(path.name);
        for (std::size_t offset = 0; offset < 64; ++offset) {
            for (std::size_t length = 0; length <= 1000; ++length) {
                const std::uint32_t state = static_cast<std::uint32_t>(random());
                ASSERT_EQ(path.update(state, bytes.data() + offset, length),
                          plainUpdate(state, bytes.data() + offset, length))
                    << "offset " << offset << ", length " << length;
            }
        }
    }
}

TEST(Crc32, EveryPathMayBeCutAnywhere) {
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        const std::vector<std::uint8_t> bytes = randomBytes(random() % 20000, random);
        const std::uint32_t expected = plainUpdate(0xFFFFFFFFU, bytes.data(), bytes.size());
        for (const Crc32Path& path : crc32Paths()) {
            std::uint32_t state = 0xFFFFFFFFU;
            for (std::size_t done = 0; done < bytes.size();) {
                const std::size_t piece = std::min<std::size_t>(bytes.size() - done, random() % 3000);
                state = path.update(state, bytes.data() + done, piece);
                done += piece;
            }
            ASSERT_EQ(state, expected) << path.name << ", " << bytes.size() << " bytes";
        }
        Crc32 whole;
        const std::size_t cut = bytes.empty() ? 0 : random() % bytes.size();
        whole.update(bytes.data(), cut);
        whole.update(bytes.data() + cut, bytes.size() - cut);
        ASSERT_EQ(whole.value(), ~expected);
    }
}

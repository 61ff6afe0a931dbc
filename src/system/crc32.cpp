#include "system/crc32.h"

#include "system/crc32_paths.h"

#include <array>
#include <utility>

// QUORVANE_PORTABLE_CRC leaves only the path that any processor can take.
#if defined(__x86_64__) && !defined(QUORVANE_PORTABLE_CRC)
#define QUORVANE_CARRYLESS_CRC 1
#include <immintrin.h>
#endif

namespace {

constexpr std::uint32_t polynomial = 0x04C11DB7U;

constexpr std::uint32_t timesX(std::uint32_t remainder) {
    return (remainder << 1) ^ ((remainder & 0x80000000U) != 0 ? polynomial : 0U);
}

// ---- Portable: sixteen bytes a step. Table k holds the remainder of a byte that k more bytes follow. ----

constexpr std::size_t sliceCount = 16;
using SliceTables = std::array<std::array<std::uint32_t, 256>, sliceCount>;

constexpr SliceTables makeSliceTables() {
    SliceTables tables{};
    for (std::uint32_t byte = 0; byte < 256; ++byte) {
        std::uint32_t remainder = byte << 24;
        for (int bit = 0; bit < 8; ++bit) {
            remainder = timesX(remainder);
        }
        tables[0][byte] = remainder;
    }
    for (std::size_t slice = 1; slice < sliceCount; ++slice) {
        for (std::size_t byte = 0; byte < 256; ++byte) {
            const std::uint32_t before = tables[slice - 1][byte];
            tables[slice][byte] = (before << 8) ^ tables[0][before >> 24];
        }
    }
    return tables;
}

constexpr SliceTables slices = makeSliceTables();

// The sum over the bytes from `first` to the last of a step, without a loop.
template <std::size_t first, std::size_t... i>
std::uint32_t lookUp(const std::uint8_t* bytes, std::index_sequence<i...>) {
    return (slices[sliceCount - 1 - first - i][bytes[first + i]] ^ ...);
}

std::uint32_t updateBySlices(std::uint32_t state, const std::uint8_t* bytes, std::size_t length) {
    for (; length >= sliceCount; bytes += sliceCount, length -= sliceCount) {
        state = slices[15][bytes[0] ^ (state >> 24)] ^ slices[14][bytes[1] ^ ((state >> 16) & 0xFFU)] ^
                slices[13][bytes[2] ^ ((state >> 8) & 0xFFU)] ^ slices[12][bytes[3] ^ (state & 0xFFU)] ^
                lookUp<4>(bytes, std::make_index_sequence<sliceCount - 4>());
    }
    for (; length > 0; ++bytes, --length) {
        state = (state << 8) ^ slices[0][(state >> 24) ^ *bytes];
    }
    return state;
}

#ifdef QUORVANE_CARRYLESS_CRC

// ---- Carry-less multiplication. ----
//
// Sixteen bytes, the first one on top, are a polynomial A = high * x^64 + low. Moving A forward by n bits
// past the bytes that follow it keeps the remainder when A * x^n is replaced by high * (x^(n+64) mod P) + low
// * (x^n mod P), which fits 128 bits again. So a block is folded into the block n bits behind it, and what is
// left in the end is one block with the remainder of them all. Four independent lanes hide the latency of the
// multiplier.

constexpr std::uint64_t xPowerModP(unsigned exponent) {
    std::uint32_t remainder = 1;
    for (unsigned i = 0; i < exponent; ++i) {
        remainder = timesX(remainder);
    }
    return remainder;
}

constexpr std::size_t blockSize = 16;
constexpr std::size_t laneCount = 4;

struct FoldConstants {
    std::uint64_t low;
    std::uint64_t high;
};

// What moves a block forward by `bytes` bytes.
template <std::size_t bytes>
constexpr FoldConstants foldBy{xPowerModP(unsigned{bytes} * 8), xPowerModP(unsigned{bytes} * 8 + 64)};

#define TARGET_128 __attribute__((target("pclmul,ssse3,sse4.1")))

TARGET_128 inline __m128i reverse128() {
    return _mm_set_epi8(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
}

TARGET_128 inline __m128i load128(const std::uint8_t* bytes) {
    return _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)), reverse128());
}

TARGET_128 inline __m128i constants128(FoldConstants constants) {
    return _mm_set_epi64x(static_cast<long long>(constants.high), static_cast<long long>(constants.low));
}

TARGET_128 inline __m128i fold128(__m128i block, __m128i constants, __m128i next) {
    const __m128i high = _mm_clmulepi64_si128(block, constants, 0x11);
    const __m128i low = _mm_clmulepi64_si128(block, constants, 0x00);
    return _mm_xor_si128(_mm_xor_si128(high, low), next);
}

// Folds the blocks that are left one after the other into `block`, and reduces the result to a state.
TARGET_128 std::uint32_t finish128(__m128i block, const std::uint8_t* bytes, std::size_t length) {
    const __m128i constants = constants128(foldBy<blockSize>);
    for (; length >= blockSize; bytes += blockSize, length -= blockSize) {
        block = fold128(block, constants, load128(bytes));
    }
    std::array<std::uint8_t, blockSize> rest;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(rest.data()), _mm_shuffle_epi8(block, reverse128()));
    return updateBySlices(updateBySlices(0, rest.data(), rest.size()), bytes, length);
}

TARGET_128 std::uint32_t updateBy128(std::uint32_t state, const std::uint8_t* bytes, std::size_t length) {
    constexpr std::size_t stride = laneCount * blockSize;
    if (length < stride) {
        return updateBySlices(state, bytes, length);
    }
    __m128i a = load128(bytes);
    __m128i b = load128(bytes + blockSize);
    __m128i c = load128(bytes + 2 * blockSize);
    __m128i d = load128(bytes + 3 * blockSize);
    // The state so far is what the first four bytes are added to.
    a = _mm_xor_si128(a, _mm_set_epi32(static_cast<int>(state), 0, 0, 0));
    bytes += stride;
    length -= stride;

    const __m128i constants = constants128(foldBy<stride>);
    for (; length >= stride; bytes += stride, length -= stride) {
        a = fold128(a, constants, load128(bytes));
        b = fold128(b, constants, load128(bytes + blockSize));
        c = fold128(c, constants, load128(bytes + 2 * blockSize));
        d = fold128(d, constants, load128(bytes + 3 * blockSize));
    }
    const __m128i byBlock = constants128(foldBy<blockSize>);
    const __m128i block = fold128(fold128(fold128(a, byBlock, b), byBlock, c), byBlock, d);
    return finish128(block, bytes, length);
}

// The same with two blocks in each lane, for processors that multiply 256 bits at once.

#define TARGET_256 __attribute__((target("vpclmulqdq,avx2,pclmul,ssse3,sse4.1")))

TARGET_256 inline __m256i load256(const std::uint8_t* bytes, __m256i reverse) {
    return _mm256_shuffle_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes)), reverse);
}

TARGET_256 inline __m256i fold256(__m256i blocks, __m256i constants, __m256i next) {
    const __m256i high = _mm256_clmulepi64_epi128(blocks, constants, 0x11);
    const __m256i low = _mm256_clmulepi64_epi128(blocks, constants, 0x00);
    return _mm256_xor_si256(_mm256_xor_si256(high, low), next);
}

TARGET_256 std::uint32_t updateBy256(std::uint32_t state, const std::uint8_t* bytes, std::size_t length) {
    constexpr std::size_t laneSize = 2 * blockSize;
    constexpr std::size_t stride = laneCount * laneSize;
    if (length < stride) {
        return updateBy128(state, bytes, length);
    }
    const __m256i reverse = _mm256_broadcastsi128_si256(reverse128());
    __m256i a = load256(bytes, reverse);
    __m256i b = load256(bytes + laneSize, reverse);
    __m256i c = load256(bytes + 2 * laneSize, reverse);
    __m256i d = load256(bytes + 3 * laneSize, reverse);
    // The first block of a lane is its lower half here, though its bytes are the more significant ones.
    a = _mm256_xor_si256(a, _mm256_set_epi32(0, 0, 0, 0, static_cast<int>(state), 0, 0, 0));
    bytes += stride;
    length -= stride;

    const __m256i byStride = _mm256_broadcastsi128_si256(constants128(foldBy<stride>));
    for (; length >= stride; bytes += stride, length -= stride) {
        a = fold256(a, byStride, load256(bytes, reverse));
        b = fold256(b, byStride, load256(bytes + laneSize, reverse));
        c = fold256(c, byStride, load256(bytes + 2 * laneSize, reverse));
        d = fold256(d, byStride, load256(bytes + 3 * laneSize, reverse));
    }
    const __m256i byLane = _mm256_broadcastsi128_si256(constants128(foldBy<laneSize>));
    const __m256i pair = fold256(fold256(fold256(a, byLane, b), byLane, c), byLane, d);
    const __m128i block = fold128(_mm256_castsi256_si128(pair), constants128(foldBy<blockSize>),
                                  _mm256_extracti128_si256(pair, 1));
    return finish128(block, bytes, length);
}

#undef TARGET_128
#undef TARGET_256

#endif

// From the fastest to the one that any processor can take.
constexpr Crc32Path paths[] = {
#ifdef QUORVANE_CARRYLESS_CRC
    {"carry-less multiplication, 256 bits", updateBy256},
    {"carry-less multiplication, 128 bits", updateBy128},
#endif
    {"sixteen slices", updateBySlices},
};

} // namespace

std::span<const Crc32Path> crc32Paths() {
    std::size_t usable = 1;
#ifdef QUORVANE_CARRYLESS_CRC
    const int for128 = (__builtin_cpu_supports("pclmul") != 0) + (__builtin_cpu_supports("ssse3") != 0) +
                       (__builtin_cpu_supports("sse4.1") != 0);
    const int for256 = (__builtin_cpu_supports("avx2") != 0) + (__builtin_cpu_supports("vpclmulqdq") != 0);
    usable += (for128 == 3 ? 1U : 0U) + (for128 + for256 == 5 ? 1U : 0U);
#endif
    return std::span(paths).last(usable);
}

void Crc32::update(const std::uint8_t* bytes, std::size_t length) {
    state_ = crc32Paths().front().update(state_, bytes, length);
}

std::uint32_t computeCrc32(const std::uint8_t* bytes, std::size_t length) {
    Crc32 crc;
    crc.update(bytes, length);
    return crc.value();
}

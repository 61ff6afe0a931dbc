#include "runtime/text_hash.h"

#include <chrono>
#include <cstring>
#include <unistd.h>

namespace {

constexpr std::uint64_t modulus = (std::uint64_t{1} << 61) - 1;
constexpr std::uint64_t pieceMask = (std::uint64_t{1} << 48) - 1;

__extension__ using Wide = unsigned __int128;

struct Key {
    std::uint64_t place;  // below 2^60, which keeps what step() gives below 2^63
    std::uint64_t spread; // odd; takes each of the sum's bits into all those that tables use

    Key() {
        std::uint64_t random[2];
        if (getentropy(random, sizeof random) != 0) { // an old kernel, or one that forbids it
            const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
            random[0] = static_cast<std::uint64_t>(now) * 0x9E3779B97F4A7C15u;
            random[1] = random[0] ^ reinterpret_cast<std::uintptr_t>(&now) << 16;
        }
        place = random[0] >> 4 | 1u << 20;
        spread = random[1] | 1;
    }
};

// Not reduced to the end: equal texts go the same way, so the few bits above 2^61 do no harm.
std::uint64_t step(std::uint64_t sum, std::uint64_t place, std::uint64_t piece) {
    const Wide product = static_cast<Wide>(sum) * place;
    return (static_cast<std::uint64_t>(product) & modulus) + static_cast<std::uint64_t>(product >> 61) +
           piece;
}

// A last piece may differ in its high bits alone, which a product cut at 64 bits would leave in the high
// half.
std::uint64_t folded(std::uint64_t sum, std::uint64_t spread) {
    const Wide product = static_cast<Wide>(sum) * spread;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

const Key key;

} // namespace

std::uint64_t hashOf(QStringView text) {
    const char16_t* at = text.utf16();
    auto rest = static_cast<std::size_t>(text.size());
    std::uint64_t sum = rest;
    for (; rest > 3; rest -= 3, at += 3) {
        std::uint64_t four; // of which the last belongs to the next piece
        std::memcpy(&four, at, sizeof four);
        sum = step(sum, key.place, four & pieceMask);
    }
    std::uint64_t last = 0;
    if (text.size() > 3) { // with a unit or more of the piece before
        std::memcpy(&last, at + rest - 4, sizeof last);
        last >>= 64 - 16 * rest;
    } else {
        for (; rest != 0; --rest) {
            last = last << 16 | at[rest - 1];
        }
    }
    return folded(step(sum, key.place, last), key.spread);
}

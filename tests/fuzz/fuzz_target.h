// What the fuzz targets share. A target is one LLVMFuzzerTestOneInput over bytes in memory, in a file of its
// name: clang's fuzzer searches with it (scripts/fuzz), and replay_main.cpp, in the ordinary build, runs it
// on the inputs that are kept in corpus/ and finds/.
#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <span>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

// A demand that doesn't hold ends the process: that is what the fuzzer takes for a find.
inline void expect(bool holds, const char* demand) {
    if (!holds) {
        std::fprintf(stderr, "does not hold: %s\n", demand);
        std::abort();
    }
}

inline QString latin1(std::span<const std::uint8_t> bytes) {
    return QString::fromLatin1(reinterpret_cast<const char*>(bytes.data()),
                               static_cast<qsizetype>(bytes.size()));
}

inline std::string_view textOf(std::span<const std::uint8_t> bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// Decisions taken from bytes, all of them 0 when the bytes are used up.
class Choices {
public:
    explicit Choices(std::span<const std::uint8_t> bytes) : rest_(bytes) {}

    bool isEmpty() const { return rest_.empty(); }
    std::uint32_t byte() {
        if (rest_.empty()) {
            return 0;
        }
        const std::uint8_t first = rest_.front();
        rest_ = rest_.subspan(1);
        return first;
    }
    // 0 to count - 1; count is at most 256.
    std::uint32_t below(std::size_t count) { return byte() % static_cast<std::uint32_t>(count); }
    bool oneIn(std::size_t count) { return below(count) == count - 1; }
    std::uint32_t word() { return byte() << 24 | byte() << 16 | byte() << 8 | byte(); }

private:
    std::span<const std::uint8_t> rest_;
};

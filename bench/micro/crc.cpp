// CRC-32 of plain bytes on each of the machine's paths, and of an image with and without gaps.
#include "system/crc32.h"
#include "system/crc32_paths.h"
#include "test_image.h"

#include <benchmark/benchmark.h>

namespace {

constexpr std::uint32_t smallSize = 64 << 10;
constexpr std::uint32_t largeSize = 64 << 20;

void plainBytes(benchmark::State& state, Crc32Update update, std::uint32_t size) {
    const Bytes bytes = countingBytes(size);
    for ([[maybe_unused]] const auto iteration : state) {
        benchmark::DoNotOptimize(update(0xFFFFFFFFU, bytes.data(), bytes.size()));
    }
    state.SetBytesProcessed(state.iterations() * size);
}

// The range is `size` long with its gaps, which take half of it when there are any.
void imageBytes(benchmark::State& state, std::uint32_t size, std::uint32_t gaps) {
    const TestImage image(gaps == 0 ? 1 : gaps, gaps == 0 ? size : size / gaps / 2,
                          gaps == 0 ? 0 : size / gaps / 2, 0);
    const ElfFile file(image.path());
    Bytes expected(size);
    file.copyRange(imageBase, expected, AddressSpace::Physical, 0xFF);
    if (file.crc32(imageBase, size, AddressSpace::Physical, 0xFF) !=
        computeCrc32(expected.data(), expected.size())) {
        state.SkipWithError("another CRC than that of the bytes");
    }
    for ([[maybe_unused]] const auto iteration : state) {
        benchmark::DoNotOptimize(file.crc32(imageBase, size, AddressSpace::Physical, 0xFF));
    }
    state.SetBytesProcessed(state.iterations() * size);
}

const bool isRegistered = [] {
    for (const Crc32Path& path : crc32Paths()) {
        for (const auto& [name, size] : {std::pair("/small", smallSize), std::pair("/large", largeSize)}) {
            benchmark::RegisterBenchmark((std::string("crc/bytes/") + path.name + name).c_str(), plainBytes,
                                         path.update, size);
        }
    }
    return true;
}();

BENCHMARK_CAPTURE(imageBytes, small, smallSize, 0)->Name("crc/image/small");
BENCHMARK_CAPTURE(imageBytes, small_gaps, smallSize, 16)->Name("crc/image/small_gaps");
BENCHMARK_CAPTURE(imageBytes, large, largeSize, 0)->Name("crc/image/large");
BENCHMARK_CAPTURE(imageBytes, large_gaps, largeSize, 64)->Name("crc/image/large_gaps");

} // namespace

// Loading an image with many symbols, and looking them up.
#include "test_image.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace {

constexpr std::uint32_t smallCount = 2'000;
constexpr std::uint32_t largeCount = 200'000;

void load(benchmark::State& state, std::uint32_t count) {
    const TestImage image(1, 4096, 0, count);
    ElfFile file;
    for ([[maybe_unused]] const auto iteration : state) {
        file.load(image.path());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(file.image().size()));
}

void checkFound(benchmark::State& state, const ElfSymbol* symbol, bool exists) {
    if ((symbol != nullptr) != exists) {
        state.SkipWithError(exists ? "a name was not found" : "a name was found that does not exist");
    }
}

// The lookup that makes the index.
void firstLookup(benchmark::State& state, std::uint32_t count) {
    const TestImage image(1, 4096, 0, count);
    const std::string name = demangledName(count / 2);
    for ([[maybe_unused]] const auto iteration : state) {
        state.PauseTiming();
        auto file = std::make_unique<ElfFile>(image.path());
        state.ResumeTiming();
        checkFound(state, file->findSymbol(name.c_str()), true);
        state.PauseTiming();
        file.reset();
        state.ResumeTiming();
    }
}

enum class Names { Existing, Missing };

// The next hundred after it: what a script asks for, and too few for the index to become complete.
void laterLookups(benchmark::State& state, std::uint32_t count, Names names) {
    constexpr std::uint32_t lookups = 100;
    const TestImage image(1, 4096, 0, count);
    std::vector<std::string> asked;
    for (std::uint32_t i = 0; i < lookups; ++i) {
        asked.push_back(demangledName(names == Names::Existing ? i * (count / lookups) : count + 16 * i));
    }
    for ([[maybe_unused]] const auto iteration : state) {
        state.PauseTiming();
        auto file = std::make_unique<ElfFile>(image.path());
        file->findSymbol("first");
        state.ResumeTiming();
        for (const std::string& name : asked) {
            checkFound(state, file->findSymbol(name.c_str()), names == Names::Existing);
        }
        state.PauseTiming();
        file.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * lookups);
}

// Each symbol of the file in turn.
void allLookups(benchmark::State& state, std::uint32_t count) {
    const TestImage image(1, 4096, 0, count);
    std::vector<std::string> asked;
    for (std::uint32_t i = 0; i < count; ++i) {
        asked.push_back(demangledName(i));
    }
    for ([[maybe_unused]] const auto iteration : state) {
        ElfFile file(image.path());
        for (const std::string& name : asked) {
            checkFound(state, file.findSymbol(name.c_str()), true);
        }
    }
    state.SetItemsProcessed(state.iterations() * count);
}

BENCHMARK_CAPTURE(load, small, smallCount);
BENCHMARK_CAPTURE(load, large, largeCount)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(firstLookup, small, smallCount);
BENCHMARK_CAPTURE(firstLookup, large, largeCount)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(laterLookups, existing, smallCount, Names::Existing);
BENCHMARK_CAPTURE(laterLookups, missing, smallCount, Names::Missing);
BENCHMARK_CAPTURE(laterLookups, large_existing, largeCount, Names::Existing);
BENCHMARK_CAPTURE(laterLookups, large_missing, largeCount, Names::Missing);
BENCHMARK_CAPTURE(allLookups, small, smallCount);
BENCHMARK_CAPTURE(allLookups, large, largeCount)->Unit(benchmark::kMillisecond);

} // namespace

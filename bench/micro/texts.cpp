// Script text through the lexer and through the whole compiler, in bytes a second.
#include "compiler/compilation.h"
#include "runtime/context.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

namespace {

// The programs of this folder, each a text of its own.
std::vector<QString> programs() {
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(QUORVANE_BENCH_DIR)) {
        if (entry.path().extension() == ".js") {
            paths.push_back(entry.path());
        }
    }
    std::sort(paths.begin(), paths.end());
    std::vector<QString> texts;
    for (const auto& path : paths) {
        std::ifstream stream(path);
        texts.push_back(QString::fromStdString({std::istreambuf_iterator<char>(stream), {}}));
    }
    return texts;
}

std::int64_t sizeOf(const std::vector<QString>& texts) {
    return std::accumulate(texts.begin(), texts.end(), std::int64_t{0},
                           [](std::int64_t sum, const QString& text) { return sum + text.size(); });
}

void lexer(benchmark::State& state) {
    const std::vector<QString> texts = programs();
    ESContext ctx;
    ctx.initContext();
    for ([[maybe_unused]] const auto iteration : state) {
        for (const QString& text : texts) {
            ESFunctionScope scope(nullptr, true);
            ESLexer source(ctx);
            source.setScope(&scope);
            source.setSource(text);
            while (source.next() != TokenEnd) {
            }
        }
    }
    state.SetBytesProcessed(state.iterations() * sizeOf(texts));
}

// In a new context each time: the blocks of functions stay until their context goes.
void compiler(benchmark::State& state) {
    const std::vector<QString> texts = programs();
    for ([[maybe_unused]] const auto iteration : state) {
        state.PauseTiming();
        auto ctx = std::make_unique<ESContext>();
        ctx->initContext();
        state.ResumeTiming();
        for (const QString& text : texts) {
            benchmark::DoNotOptimize(compileProgram(*ctx, text));
        }
        state.PauseTiming();
        ctx.reset();
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * sizeOf(texts));
}

void context(benchmark::State& state) {
    for ([[maybe_unused]] const auto iteration : state) {
        ESContext ctx;
        ctx.initContext();
    }
}

BENCHMARK(lexer)->Name("text/lexer");
BENCHMARK(compiler)->Name("text/compiler");
BENCHMARK(context)->Name("context/new");

} // namespace

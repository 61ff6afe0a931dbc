// The rules of the fuzz target, over names that compilers made and names bent in all ways.
#define LLVMFuzzerTestOneInput checkInput
#include "fuzz/fuzz_demangle.cpp"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <random>

namespace {

std::vector<std::string> linesOf(const std::string& path) {
    std::ifstream stream(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

std::vector<std::string> handPickedNames() {
    auto names = linesOf(QUORVANE_SOURCE_DIR "/tests/fuzz/corpus/fuzz_demangle/names");
    for (const std::size_t length : {1018, 1019}) { // the longest name, and one that stays
        names.push_back("_Z" + std::to_string(length) + std::string(length, 'a') + "v");
    }
    names.insert(names.end(), {std::string(2000, 'x'), std::string(2000, 'x') + "y",
                               "PF" + std::string(900, 'i') + "E", "_ZN3fooE" + std::string(3000, 'v')});
    return names;
}

TEST(SymbolIndex, FindsWhatDemanglingAllWouldFind) {
    // The names of a library whose folder depends on the machine, if it is there.
    const std::string list = testing::TempDir() + "names." + std::to_string(getpid());
    const std::string command =
        "nm -D --format=posix $(ldconfig -p | sed -n 's/.*libQt6Core.so.6.*=> //p' | head -n 1)";
    ASSERT_NE(std::system(("(" + command + ") 2>/dev/null | sed 's/[ @].*//' >" + list).c_str()), -1);
    std::vector<std::string> names = handPickedNames();
    const std::vector<std::string> real = linesOf(list);
    std::remove(list.c_str());
    for (std::size_t i = 0; i < real.size(); i += 1 + real.size() / 4000) {
        names.push_back(real[i]);
    }
    checkNames({names.begin(), names.end()}, NameStyle::GnuV3);
    for (const std::string& name : names) { // alone, a name has no other that could hide a fault
        checkNames({name}, NameStyle::GnuV3);
    }
    EXPECT_EQ(SymbolIndex(Table({}, NameStyle::GnuV3).symbols).find("main"), std::nullopt);
}

TEST(SymbolIndex, BentNamesKeepTheRules) {
    const std::vector<std::string> seeds = handPickedNames();
    const char* const pieces[] = {
        "_Z",   "N",  "E",  "3foo", "St", "Sa",    "Ss", "I",    "i",       "K",       "Z",     "S_", "S0_",
        "T_",   "C1", "D0", "L",    "_",  "UlvE_", "X",  "dl",   "sr",      "cl",      "DT",    "Dp", "J",
        "Li5E", "M",  "F",  "pl",   "cv", "GV",    "TV", "Th8_", "B5cxx11", ".isra.0", "u3abc", "W",  "0"};
    std::mt19937 random(20240607);
    const auto below = [&](std::size_t count) { return count == 0 ? 0 : random() % count; };
    for (int round = 0; round < 60'000; ++round) {
        std::string name = seeds[below(seeds.size())];
        for (std::size_t changes = 1 + below(3); changes > 0; --changes) {
            const std::size_t at = below(name.size() + 1);
            switch (below(4)) {
            case 0:
                name.insert(at, pieces[below(std::size(pieces))]);
                break;
            case 1:
                name.erase(at, 1 + below(5));
                break;
            case 2:
                name.insert(std::min<std::size_t>(2, name.size()), pieces[below(std::size(pieces))]);
                break;
            default:
                name.resize(at);
            }
        }
        SCOPED_TRACE(name);
        checkNames({name, seeds[below(seeds.size())]}, NameStyle::GnuV3);
    }
}

// However many symbols share a name, it is looked at once.
TEST(SymbolIndex, SharedNamesAreFiledOnce) {
    for (const NameStyle style : {NameStyle::GnuV3, NameStyle::Arm}) {
        Table shared({"main", "f__Fi", "_Z1fi", ""}, style);
        std::vector<std::uint8_t> entries(60'000 * sizeof(Elf32_Sym));
        for (std::uint32_t i = 0; i < 60'000; ++i) {
            entries[i * sizeof(Elf32_Sym)] = i < 30'000 ? 5 : i % 2 == 0 ? 11 : 0;
        }
        const SymbolTable table(RecordReader(ImageView(entries), ByteOrder::Little), 0, 60'000,
                                std::span(shared.bytes).subspan(4 * sizeof(Elf32_Sym)), 0, style);
        SymbolIndex index(table);
        EXPECT_EQ(index.size(), 3U);
        EXPECT_EQ(index.find("f(int)"), style == NameStyle::Arm ? 0U : 30'000U);
        EXPECT_EQ(index.find("main"), 30'001U);
    }
}

} // namespace

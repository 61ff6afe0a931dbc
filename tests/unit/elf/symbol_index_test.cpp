#include "elf/symbol_index.h"

#include "elf/name_keys.h"
#include "elf_builder.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <random>
#include <unordered_map>

namespace {

// A symbol table of nothing but names.
class NameTable {
public:
    explicit NameTable(const std::vector<std::string>& names, NameStyle style = NameStyle::GnuV3) {
        for (const std::string& name : names) {
            const auto start = static_cast<std::uint32_t>(strings.size());
            strings.insert(strings.end(), name.begin(), name.end());
            strings.push_back(0);
            const std::size_t at = entries_.size();
            entries_.resize(at + sizeof(Elf32_Sym));
            for (std::size_t i = 0; i < 4; ++i) {
                entries_[at + i] = static_cast<std::uint8_t>(start >> (8 * i));
            }
        }
        table = SymbolTable(RecordReader(ImageView(entries_), ByteOrder::Little), 0,
                            static_cast<std::uint32_t>(names.size()), strings, 0, style);
    }

    SymbolTable table;
    Bytes strings;

private:
    Bytes entries_;
};

std::vector<std::string> namesOfLibrary(const std::string& path) {
    std::vector<std::string> names;
    const std::unique_ptr<FILE, int (*)(FILE*)> nm(
        popen(("nm -D --format=posix " + path + " 2>/dev/null").c_str(), "r"), &pclose);
    std::string line;
    for (int c = 0; nm && (c = std::fgetc(nm.get())) != EOF;) {
        if (c != '\n') {
            line += static_cast<char>(c);
            continue;
        }
        names.push_back(line.substr(0, line.find_first_of(" @")));
        line.clear();
    }
    return names;
}

// What compilers make, and what nobody should.
std::vector<std::string> handPickedNames() {
    return {
        "main",
        "i",
        "j",
        "Pc",
        "PKc",
        "Ss",
        "St",
        "3foo",
        "3foov",
        "N3foo3barE",
        "u3foo",
        "pl",
        "pp",
        "pt",
        "ps0",
        "plIiE",
        "printf",
        "rv",
        "reset",
        "TIM2_IRQHandler",
        "HAL_Init",
        "K",
        "P",
        "",
        "$t",
        "$d.1",
        "_",
        "__",
        "__Z",
        "_Z",
        "_Z3foov",
        "__Z3foov",
        "_Z3foov",
        "_Z3fooi",
        "_Z3foo",
        "_Z9foo",
        "_Z03foov",
        "_ZN3fooE",
        "_ZN3foo3barE",
        "_ZN3foo3barEv",
        "_ZN3foo3barEi",
        "_ZNK3foo3barEv",
        "_ZN3fooC1Ev",
        "_ZN3fooC2Ev",
        "_ZN3fooD0Ev",
        "_ZN3fooD1Ev",
        "_ZN3fooplERKS_",
        "_ZN3foocviEv",
        "_ZplRK3fooS1_",
        "_Znwj",
        "_ZdlPv",
        "_ZTV3foo",
        "_ZTS3foo",
        "_ZTIN3foo3barE",
        "_ZTT3foo",
        "_ZTC3foo0_3bar",
        "_ZTIPKc",
        "_ZThn8_N3foo3barEv",
        "_ZTv0_n12_N3foo3barEv",
        "_ZTch0_h4_N3foo3barEv",
        "_ZGV3foo",
        "_ZGVZ3foovE3bar",
        "_ZZ3foovE3bar",
        "_ZZN3foo3barEvE3baz",
        "_ZZN3foo3barEvENKUlvE_clEv",
        "_ZZ3foovENKUlvE_clEv",
        "_ZZ3foovEs",
        "_ZGR3foo_",
        "_ZTH3foo",
        "_ZTW3foo",
        "_ZL3foo",
        "_ZN12_GLOBAL__N_13fooE",
        "_ZN12_GLOBAL__N_13fooEv",
        "_ZN12_GLOBAL__N_1L3fooE",
        "_ZSt4cout",
        "_ZStL8__ioinit",
        "_ZNSt6vectorIiSaIiEE9push_backERKi",
        "_ZNSs4swapERSs",
        "_ZNSaIcEC1Ev",
        "_ZNSsC1EPKc",
        "_ZN3fooB5cxx11Ev",
        "_ZN3fooB5cxx113barEv",
        "_Z3foov.isra.0",
        "_Z3foov.part.1.cold",
        "_ZN3foo3barEv.constprop.0",
        "_Z3fooIiEvT_",
        "_ZN3fooIiE3barEv",
        "_ZN3fooIiE3barIcEEvT_",
        "_Z3fooILi5EEvv",
        "_Z3fooILj5EEvv",
        "_Z3fooIXadL_Z3barvEEEvv",
        "_Z3fooI1AEDTcl3barfp_EET_",
        "_Z3fooIJicEEvDpT_",
        "_Z3fooDn",
        "_Z3fooDv4_i",
        "_Z3fooDF16_",
        "_Z3foou6__fp16",
        "_Z3fooPU3AS1i",
        "_ZTJ3foo",
        "_ZGr3_Sa",
        "_ZGTt3foov",
        "_ZGA3foov",
        "_GLOBAL__I_foo",
        "_GLOBAL__D_foo",
        "_GLOBAL__I__Z3foov",
        "_GLOBAL__sub_I_foo.cpp",
        "_GLOBAL_OFFSET_TABLE_",
        "_Z7foo.barv",
        "_Z7foo barv",
        "_Z4f\xC3\xBC_v",
        "_Z5$foo_v",
        "_Z1$v",
        "_ZN1$3fooEv",
        "_Z3foov@plt",
        "_ZN3foo3barEv@@V1",
        "_Z2_Zv",
        "_ZW3foo3barv",
        "_ZDC3foo3barE",
        "_ZN3foo1aE",
        "_ZN1aE",
        "_Z1av",
        std::string(2000, 'x'),
        std::string(2000, 'x') + "y",
        "_Z1018" + std::string(1018, 'a') + "v",
        "_Z1019" + std::string(1019, 'a') + "v",
        "_ZN3fooE" + std::string(3000, 'v'),
        "f__Fi",
        "__ct__1cFi",
    };
}

// These, and several thousand that a compiler made.
std::vector<std::string> manyNames() {
    std::vector<std::string> real;
    for (const char* library : {"libQt6Core.so.6", "libstdc++.so.6"}) {
        for (const char* folder :
             {"/usr/lib/x86_64-linux-gnu/", "/usr/lib/aarch64-linux-gnu/", "/usr/lib64/", "/usr/lib/"}) {
            const auto found = namesOfLibrary(std::string(folder) + library);
            real.insert(real.end(), found.begin(), found.end());
        }
    }
    std::vector<std::string> names = handPickedNames();
    const std::size_t step = 1 + real.size() / 6000;
    for (std::size_t i = 0; i < real.size(); i += step) {
        names.push_back(real[i]);
    }
    return names;
}

// What each name should lead to: the first symbol that has it.
std::unordered_map<std::string, std::uint32_t> allDemangled(const std::vector<std::string>& names) {
    std::unordered_map<std::string, std::uint32_t> first;
    for (std::uint32_t i = 0; i < names.size(); ++i) {
        const std::string text = demangle(names[i], NameStyle::GnuV3);
        if (!text.empty() && text.front() != '$') {
            first.try_emplace(text, i);
        }
    }
    return first;
}

void expectSame(SymbolIndex& index, const std::unordered_map<std::string, std::uint32_t>& first,
                const std::string& name) {
    const auto expected = first.find(name);
    const auto found = index.find(name);
    ASSERT_EQ(found.has_value(), expected != first.end()) << name;
    if (found) {
        ASSERT_EQ(*found, expected->second) << name;
    }
}

TEST(SymbolIndex, FindsWhatDemanglingAllWouldFind) {
    const std::vector<std::string> names = manyNames();
    const auto first = allDemangled(names);
    const NameTable table(names);
    // Few enough lookups for each index that it stays incomplete.
    auto index = std::make_unique<SymbolIndex>(table.table);
    SymbolIndex complete(table.table, true);
    std::size_t asked = 0;
    for (const auto& [name, symbol] : first) {
        if (++asked % 150 == 0) {
            index = std::make_unique<SymbolIndex>(table.table);
        }
        expectSame(*index, first, name);
        expectSame(complete, first, name);
    }
    SymbolIndex growing(table.table); // becomes complete on the way
    for (int round = 0; round < 2; ++round) {
        for (const std::string& name : names) {
            expectSame(growing, first, name);
            expectSame(growing, first, demangle(name, NameStyle::GnuV3));
            expectSame(growing, first, name + "x");
        }
    }
}

TEST(SymbolIndex, HandPickedNamesOneByOne) {
    // Alone in a table, a name has no other that could hide a fault.
    for (const std::string& name : handPickedNames()) {
        const NameTable table({name});
        const auto first = allDemangled({name});
        for (const std::string& asked :
             {demangle(name, NameStyle::GnuV3), name, name + "_", std::string("foo")}) {
            SymbolIndex index(table.table);
            expectSame(index, first, asked);
        }
    }
    const NameTable none({});
    EXPECT_EQ(SymbolIndex(none.table).find("main"), std::nullopt);
}

TEST(SymbolIndex, ArmNames) {
    const NameTable table({"f__Fi", "_Z1fi", "$a", "plain"}, NameStyle::Arm);
    SymbolIndex index(table.table);
    EXPECT_EQ(index.find("f(int)"), 0U);
    EXPECT_EQ(index.find("_Z1fi"), 1U);
    EXPECT_EQ(index.find("plain"), 3U);
    EXPECT_EQ(index.find("f__Fi"), std::nullopt);
}

// The facts that the index stands on, over names bent in all ways.
TEST(NameKeys, HoldForBrokenNamesToo) {
    const std::vector<std::string> names = handPickedNames();
    const char* const pieces[] = {
        "_Z",   "N",  "E",  "3foo", "St", "Sa",    "Ss", "I",    "i",       "K",       "Z",     "S_", "S0_",
        "T_",   "C1", "D0", "L",    "_",  "UlvE_", "X",  "dl",   "sr",      "cl",      "DT",    "Dp", "J",
        "Li5E", "M",  "F",  "pl",   "cv", "GV",    "TV", "Th8_", "B5cxx11", ".isra.0", "u3abc", "W",  "0"};
    std::mt19937 random(20240607);
    const auto below = [&](std::size_t count) { return count == 0 ? 0 : random() % count; };
    std::size_t demangled = 0;
    for (int round = 0; round < 200'000; ++round) {
        std::string name = names[below(names.size())];
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
        if (name.size() > maxMangledLength(NameStyle::GnuV3)) {
            continue;
        }
        name = withoutExtraUnderscore(name);
        const std::string text = demangle(name, NameStyle::GnuV3);
        if (text == name) {
            continue;
        }
        ++demangled;
        const NameKey key = keyOfName(name);
        ASSERT_NE(key.kind, NameKind::Plain) << name << " is " << text;
        bool keyFound = key.kind == NameKind::Unclear;
        std::size_t position = 0;
        for (auto word = nextWord(text, position); !word.empty(); word = nextWord(text, position)) {
            keyFound = keyFound || word == key.text;
            ASSERT_NE(name.find(requiredPart(word)), std::string::npos)
                << word << " of " << name << " is " << text;
        }
        ASSERT_TRUE(keyFound) << key.text << " of " << name << " is " << text;
    }
    EXPECT_GT(demangled, 15'000U);
}

// However many symbols share a name, it is looked at once; and of a long one no more than is needed.
TEST(SymbolIndex, SharedNamesAreFiledOnce) {
    for (const NameStyle style : {NameStyle::GnuV3, NameStyle::Arm}) {
        const NameTable names({"main", "f__Fi", "_Z1fi", ""}, style);
        Bytes entries(60'000 * sizeof(Elf32_Sym));
        for (std::uint32_t i = 0; i < 60'000; ++i) {
            entries[i * sizeof(Elf32_Sym)] = i < 30'000 ? 5 : i % 2 == 0 ? 11 : 0;
        }
        const SymbolTable table(RecordReader(ImageView(entries), ByteOrder::Little), 0, 60'000, names.strings,
                                0, style);
        SymbolIndex index(table);
        EXPECT_EQ(index.size(), 3U);
        EXPECT_EQ(index.find("f(int)"), style == NameStyle::Arm ? 0U : 30'000U);
        EXPECT_EQ(index.find("main"), 30'001U);
    }
    const std::string longType = "PF" + std::string(900, 'i') + "E";
    const NameTable table({longType, "main"});
    for (const bool complete : {false, true}) {
        SymbolIndex index(table.table, complete);
        EXPECT_EQ(index.find(demangle(longType, NameStyle::GnuV3)), 0U);
        EXPECT_EQ(index.find(longType), std::nullopt);
    }
}

} // namespace

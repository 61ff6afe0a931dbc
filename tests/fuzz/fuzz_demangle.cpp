// Names of symbols, one a line; the first byte chooses the style. A name gives a text within bounds or
// itself, a comparison agrees with the text, the keys of a name are in its text, and an index of any kind
// finds what a walk over the table finds.
#include "elf/demangle.h"
#include "elf/name_keys.h"
#include "elf/symbol_index.h"
#include "fuzz_target.h"

#include <string>
#include <unordered_map>
#include <vector>

namespace {

constexpr std::size_t mostNames = 128;
constexpr std::size_t askedAlone = 16;
constexpr std::uint32_t nowhere = 0xFFFFFFFF;

std::vector<std::string_view> namesIn(std::string_view text) {
    std::vector<std::string_view> names;
    while (!text.empty() && names.size() < mostNames) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        names.push_back(text.substr(0, std::min(end, text.find('\0'))));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return names;
}

void checkKeys(std::string_view name, const std::string& text) {
    const NameKey key = keyOfName(name);
    expect(key.kind != NameKind::Plain, "a plain name isn't demangled");
    bool isKeyThere = key.kind == NameKind::Unclear;
    std::size_t position = 0;
    for (auto word = nextWord(text, position); !word.empty(); word = nextWord(text, position)) {
        isKeyThere = isKeyThere || word == key.text;
        expect(name.find(requiredPart(word)) != std::string_view::npos, "a word is in the mangled name");
    }
    expect(isKeyThere, "the key is a word");
}

std::string checkName(std::string_view name, NameStyle style) {
    const std::string_view raw = withoutExtraUnderscore(name);
    std::string text = demangle(name, style);
    expect(text.size() <= maxDemangledLength || text == raw, "a text stays within its bound");
    expect(raw.size() <= maxMangledLength(style) || text == raw, "a name that is too long stays");
    expect(matchesName(name, text, style), "a name matches its text");
    expect(!matchesName(name, text + "x", style), "a name matches no longer text");
    expect(text.empty() || !matchesName(name, text.substr(1), style), "a name matches no shorter text");
    if (style == NameStyle::GnuV3 && text != raw) {
        checkKeys(raw, text);
    }
    return text;
}

// Entries and names as they lie in an image.
struct Table {
    std::vector<std::uint8_t> bytes;
    SymbolTable symbols;

    Table(const std::vector<std::string_view>& names, NameStyle style) {
        const std::size_t entries = names.size() * sizeof(Elf32_Sym);
        bytes.resize(entries);
        for (std::size_t i = 0; i < names.size(); ++i) {
            const std::size_t offset = bytes.size() - entries;
            writeWord(std::span(bytes).subspan(i * sizeof(Elf32_Sym)), static_cast<std::uint32_t>(offset),
                      ByteOrder::Little);
            bytes.insert(bytes.end(), names[i].begin(), names[i].end());
            bytes.push_back(0);
        }
        symbols = SymbolTable(RecordReader(ImageView(bytes), ByteOrder::Little), 0,
                              static_cast<std::uint32_t>(names.size()), std::span(bytes).subspan(entries), 0,
                              style);
    }
};

void checkNames(const std::vector<std::string_view>& names, NameStyle style) {
    std::unordered_map<std::string, std::uint32_t> first;
    for (std::uint32_t i = 0; i < names.size(); ++i) {
        const std::string text = checkName(names[i], style);
        if (!text.empty() && text.front() != '$') {
            first.try_emplace(text, i);
        }
    }
    const Table table(names, style);
    SymbolIndex growing(table.symbols);
    SymbolIndex complete(table.symbols, true);
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string name(names[i]);
        for (const std::string& text : {demangle(name, style), name, name + "x"}) {
            const auto found = first.find(text);
            const std::uint32_t expected = found == first.end() ? nowhere : found->second;
            expect(growing.find(text).value_or(nowhere) == expected,
                   "the index finds the first symbol of a text");
            expect(complete.find(text).value_or(nowhere) == expected,
                   "the complete index finds the first symbol of a text");
            expect(i >= askedAlone || SymbolIndex(table.symbols).find(text).value_or(nowhere) == expected,
                   "a fresh index finds the first symbol of a text");
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size > 0) {
        checkNames(namesIn(textOf({data + 1, size - 1})),
                   (data[0] & 1) != 0 ? NameStyle::Arm : NameStyle::GnuV3);
    }
    return 0;
}

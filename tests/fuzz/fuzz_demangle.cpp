// Names of symbols, one a line; the first byte chooses the style. A name gives a text within bounds or
// itself, a comparison agrees with the text, and both kinds of index find what a walk over the table finds.
#include "elf/arm_demangle.h"
#include "elf/demangle.h"
#include "elf/symbol_index.h"
#include "fuzz_target.h"

#include <string>
#include <vector>

namespace {

constexpr std::size_t mostNames = 16;

std::vector<std::string_view> namesIn(std::string_view text) {
    std::vector<std::string_view> names;
    while (!text.empty() && names.size() < mostNames) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        names.push_back(text.substr(0, std::min(end, text.find('\0'))));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return names;
}

std::string checkName(std::string_view name, NameStyle style) {
    const std::string_view raw = withoutExtraUnderscore(name);
    std::string text = demangle(name, style);
    expect(text.size() <= maxDemangledLength || text == raw, "a text stays within its bound");
    if (raw.size() > maxMangledLength(style)) {
        expect(text == raw, "a name that is too long stays");
    } else if (style == NameStyle::Arm) {
        expect(demangleArm(raw).value_or(std::string(raw)) == text, "an unknown name stays");
    }
    expect(matchesName(name, text, style), "a name matches its text");
    expect(!matchesName(name, text + "x", style), "a name matches no longer text");
    expect(text.empty() || !matchesName(name, text.substr(1), style), "a name matches no shorter text");
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

std::optional<std::uint32_t> firstOf(const std::vector<std::string>& texts, const std::string& text) {
    const auto found = std::find(texts.begin(), texts.end(), text);
    if (found == texts.end() || text.empty() || text.front() == '$') {
        return std::nullopt;
    }
    return static_cast<std::uint32_t>(found - texts.begin());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const NameStyle style = (data[0] & 1) != 0 ? NameStyle::Arm : NameStyle::GnuV3;
    const std::vector<std::string_view> names = namesIn(textOf({data + 1, size - 1}));
    std::vector<std::string> texts;
    for (const std::string_view name : names) {
        texts.push_back(checkName(name, style));
    }
    const Table table(names, style);
    SymbolIndex lazy(table.symbols);
    SymbolIndex complete(table.symbols, true);
    for (std::size_t i = 0; i < names.size(); ++i) {
        for (const std::string& text : {texts[i], std::string(names[i])}) {
            const auto expected = firstOf(texts, text);
            expect(lazy.find(text) == expected, "the index finds the first symbol of a text");
            expect(complete.find(text) == expected, "the complete index finds the first symbol of a text");
        }
    }
    return 0;
}

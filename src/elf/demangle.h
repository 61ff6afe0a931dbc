// Symbol names in the form that people write. demangle() is the definition; matchesName() answers the
// question that a lookup asks without building texts that nobody wants. The ARM style is in arm_demangle.h,
// the lookup in symbol_index.h.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

enum class NameStyle {
    GnuV3,
    Arm, // the scheme of the older ARM linkers
};

// A text that grows past this stays mangled: a few bytes of a hostile name can stand for megabytes.
constexpr std::size_t maxDemangledLength = 64 * 1024;

// Longer names stay as they are. For GNU v3 this is where the library gives up.
constexpr std::size_t maxMangledLength(NameStyle style) {
    return style == NameStyle::GnuV3 ? 1024 : 16 * 1024;
}

// The name without the extra underscore that some tools put before "_Z".
constexpr std::string_view withoutExtraUnderscore(std::string_view name) {
    return name.starts_with("__Z") ? name.substr(1) : name;
}

// The demangled text, or the name itself (less an extra underscore) where there is none or it would cost too
// much (name_graph.h). Types count as names, so "i" gives "int". `name` holds no NUL.
std::string demangle(std::string_view name, NameStyle style);

// The beginning of demangle(name, style), for those who need no more.
struct TextStart {
    std::string text;
    bool isWhole; // if not, the text is the beginning, or the name itself counts after all
};
TextStart startOfDemangled(std::string_view name, NameStyle style, std::size_t limit);

// Whether demangle(name, style) == text.
bool matchesName(std::string_view name, std::string_view text, NameStyle style);

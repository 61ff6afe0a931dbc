#include "elf/name_keys.h"

#include "elf/demangle.h"
#include "elf/name_cursor.h"

#include <algorithm>
#include <array>

namespace {

constexpr bool isLower(char c) { return c >= 'a' && c <= 'z'; }
constexpr bool isOneOf(char c, std::string_view set) {
    bool found = false;
    for (const char each : set) {
        found = found || each == c;
    }
    return found;
}

// Everything that the demangler puts between names, and what could be mistaken for it.
constexpr std::array<bool, 256> markWordCharacters() {
    std::array<bool, 256> table{};
    for (std::size_t c = '!'; c != table.size(); ++c) {
        table[c] = !isOneOf(static_cast<char>(c), "!\"#%&'()*+,-./:;<=>?@[\\]^`{|}~") && c != 0x7F;
    }
    return table;
}
constexpr std::array<bool, 256> wordCharacters = markWordCharacters();

constexpr bool isWordCharacter(char c) { return wordCharacters[static_cast<unsigned char>(c)]; }

// Whether a name outside of the mangled ones could be read as a type, which has a demangled form too.
bool mayBeType(std::string_view name) {
    const std::size_t start = name.find_first_not_of("rVKPROCG");
    if (start == std::string_view::npos) {
        return true;
    }
    const std::string_view base = name.substr(start);
    const char first = base.front();
    if (isOneOf(first, "uUL")) { // what comes from vendors or is local has a length next
        return base.size() > 1 && isDigit(base[1]);
    }
    if (isOneOf(first, "kpq")) { // no types, but the codes of operators, and those go as names of classes
        return base.size() <= 2 || isOneOf(base[2], "BI");
    }
    if (isLower(first)) { // a fundamental type is complete with its letter
        return base.size() == 1;
    }
    if (isOneOf(first, "FN")) { // functions and scopes have an end
        return base.back() == 'E';
    }
    return isOneOf(first, "ADMSTWZ") || isDigit(first);
}

class ScopeReader : NameCursor {
public:
    using NameCursor::NameCursor;

    // The last identifier of the scope, or the empty text.
    std::string_view lastIdentifier() {
        if (!isDigit(peek()) && peek() != 'N' && !skipPrefixes()) {
            return {};
        }
        const bool nested = take('N');
        while (nested && isOneOf(peek(), "rVKRO")) {
            rest_.remove_prefix(1);
        }
        // The abbreviations of the standard library; only "St" takes a name outside of a nested one.
        if (peek() == 'S' && rest_.size() > 1 && isOneOf(rest_[1], nested ? "tabsiod" : "t")) {
            rest_.remove_prefix(2);
        }
        std::string_view last;
        std::string_view identifier;
        while (takeIdentifier(identifier)) {
            if (identifier.front() != '_' ||
                !identifier.starts_with("_GLOBAL_")) { // may be "(anonymous namespace)"
                last = identifier;
            }
            if (!nested) {
                break;
            }
        }
        return last;
    }

private:
    // What tables, guards and thunks, and things inside functions have in front of the name they belong to.
    bool skipPrefixes() {
        if (take("Th")) {
            if (!skipOffset()) {
                return false;
            }
        } else if (take("Tv")) {
            if (!skipOffset() || !skipOffset()) {
                return false;
            }
        } else if (!take("GV") && !take("TV") && !take("TT") && !take("TI")) {
            take("TS");
        }
        while (take('Z')) {
        }
        return true;
    }

    bool skipOffset() {
        take('n');
        const std::size_t end = rest_.find_first_not_of("0123456789");
        if (end == 0 || end == std::string_view::npos) {
            return false;
        }
        rest_.remove_prefix(end);
        return take('_');
    }

    bool takeIdentifier(std::string_view& identifier) {
        if (peek() == 'L' && rest_.size() > 1 && isDigit(rest_[1])) { // of internal linkage
            rest_.remove_prefix(1);
        }
        if (!isDigit(peek()) || peek() == '0') {
            return false;
        }
        std::size_t length = 0;
        while (isDigit(peek()) && length < maxMangledLength(NameStyle::GnuV3)) {
            length = length * 10 + static_cast<std::size_t>(peek() - '0');
            rest_.remove_prefix(1);
        }
        if (length > rest_.size()) {
            return false;
        }
        identifier = std::string_view(rest_.data(), length);
        rest_.remove_prefix(length);
        return true;
    }
};

// The words of the demangler itself, of four letters and more, in order. What isn't here and isn't taken from
// the mangled name makes a lookup fail, so words too many do no harm.
constexpr auto demanglerWords = std::to_array<std::string_view>({
    "Class",
    "JArray",
    "_Accum",
    "_BitInt",
    "_Complex",
    "_Fract",
    "_Imaginary",
    "_Sat",
    "__float128",
    "__int128",
    "__vector",
    "alias",
    "alignof",
    "allocator",
    "anonymous",
    "auto",
    "basic_iostream",
    "basic_istream",
    "basic_ostream",
    "basic_string",
    "bfloat16_t",
    "binding",
    "bool",
    "boolean",
    "byte",
    "char",
    "char16_t",
    "char32_t",
    "char8_t",
    "char_traits",
    "class",
    "clone",
    "co_await",
    "const",
    "const_cast",
    "construction",
    "constructors",
    "covariant",
    "decimal128",
    "decimal32",
    "decimal64",
    "decltype",
    "default",
    "delete",
    "destructors",
    "double",
    "dynamic_cast",
    "enum",
    "false",
    "float",
    "function",
    "global",
    "guard",
    "half",
    "hidden",
    "init",
    "initializer",
    "iostream",
    "istream",
    "java",
    "keyed",
    "lambda",
    "literal",
    "local",
    "localalias",
    "long",
    "module",
    "name",
    "namespace",
    "noexcept",
    "nullptr",
    "nullptr_t",
    "object",
    "operator",
    "ostream",
    "parameter",
    "parm",
    "part",
    "property",
    "reference",
    "reinterpret_cast",
    "requires",
    "resource",
    "restrict",
    "return",
    "short",
    "signed",
    "sizeof",
    "static_cast",
    "string",
    "structured",
    "template",
    "temporary",
    "this",
    "throw",
    "thunk",
    "transaction",
    "transaction_safe",
    "true",
    "type",
    "typeid",
    "typeinfo",
    "typename",
    "unnamed",
    "unsigned",
    "variable",
    "virtual",
    "void",
    "volatile",
    "vtable",
    "wchar_t",
    "wrapper",
});
static_assert(std::is_sorted(demanglerWords.begin(), demanglerWords.end()));

} // namespace

NameKey keyOfName(std::string_view name) {
    if (name.size() > maxMangledLength(NameStyle::GnuV3)) {
        return {NameKind::Plain, name};
    }
    if (name.starts_with("_Z")) {
        const std::string_view identifier = ScopeReader(name.substr(2)).lastIdentifier();
        const bool isWord =
            !identifier.empty() && std::all_of(identifier.begin(), identifier.end(), isWordCharacter);
        return isWord ? NameKey{NameKind::Mangled, identifier} : NameKey{NameKind::Unclear, name};
    }
    // Functions that run all constructors or destructors of a file have a form of their own.
    const bool mayBeGlobal = name.starts_with("_GLOBAL_") && name.size() > 10 && isOneOf(name[9], "DI");
    return {mayBeGlobal || mayBeType(name) ? NameKind::Unclear : NameKind::Plain, name};
}

std::string_view nextWord(std::string_view text, std::size_t& position) {
    while (position < text.size() && !isWordCharacter(text[position])) {
        ++position;
    }
    const std::size_t start = position;
    while (position < text.size() && isWordCharacter(text[position])) {
        ++position;
    }
    return text.substr(start, position - start);
}

std::string_view requiredPart(std::string_view word) {
    // Types of floating point have a number in their name.
    if (std::binary_search(demanglerWords.begin(), demanglerWords.end(), word) ||
        word.starts_with("_Float")) {
        return {};
    }
    // Values have a suffix, as in 10ul, and of what stands for the value in a broken name nothing is certain
    // but that it comes from there.
    const std::string_view part = word.substr(0, word.find_last_not_of("ul") + 1);
    return part.size() < 4 || isDigit(part.front()) ? std::string_view() : part;
}

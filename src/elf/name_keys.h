// What a mangled name gives away without being demangled. A lookup demangles only symbols whose key occurs in
// the name that is asked for, so everything here rests on two facts about GNU v3 names: the identifiers along
// the scope that a mangled name begins with appear in its demangled form as they are, and any other word of a
// demangled form is either a piece of the mangled one or a word that the demangler itself brings.
#pragma once

#include <cstddef>
#include <string_view>

enum class NameKind {
    Plain,   // isn't mangled: the key is the name
    Mangled, // the key is an identifier, and a word of the demangled name if there is one
    Unclear, // only demangling tells
};

struct NameKey {
    NameKind kind;
    std::string_view text; // part of the name
};

// `name` comes without an extra underscore.
NameKey keyOfName(std::string_view name);

// The next word of a demangled name behind `position`, which is moved behind it; empty at the end. Words are
// what lies between blanks and punctuation.
std::string_view nextWord(std::string_view text, std::size_t& position);

// The part of such a word that the mangled form must contain; empty where nothing can be said.
std::string_view requiredPart(std::string_view word);

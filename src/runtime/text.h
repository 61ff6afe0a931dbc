// ESText, the characters of a script string: UTF-16 code units that never change once they can be seen. A
// concatenation holds its two halves and is flattened when somebody first looks; an append or a prepend to a
// text whose buffer has room there goes in place. Atoms (atom.h) hold a text each, so both string tags read
// alike.
#pragma once

#include "runtime/arena.h"
#include "runtime/value.h"

#include <QStringView>
#include <cstdint>

// The order in which texts and atoms came into being is counted here.
inline std::uint32_t lastTextOrder = 0;
inline std::uint32_t nextTextOrder() { return ++lastTextOrder; }

// Characters that texts share: those from `first` up to `used`. Texts that start or end there may be extended
// in place.
struct ESTextBuffer {
    std::uint32_t first;
    std::uint32_t used;
    std::uint32_t capacity;
    char16_t characters[1];
};

class ESText {
public:
    static constexpr std::uint32_t maxLength = 0x3FFFFFFF; // code units

    std::uint32_t length() const { return length_; }

    // Position in the order in which texts came into being; an atom made of the text inherits it.
    std::uint32_t order() const { return order_; }

    bool isFlat() const { return characters_ != nullptr; }

    // The characters, which stay where they are until the text's arena goes. Flattens a concatenation, for
    // which it may throw std::bad_alloc.
    const char16_t* characters() const {
        if (characters_ == nullptr) [[unlikely]] {
            flatten();
        }
        return characters_;
    }
    QStringView view() const { return QStringView(characters(), static_cast<qsizetype>(length_)); }
    // The characters without flattening: those of a concatenation are written to `room`, of length().
    QStringView peek(char16_t* room) const;

    // The atom of this text if one has been made from it already, else null.
    ESAtom knownAtom() const { return characters_ == nullptr ? nullptr : atom_; }
    void rememberAtom(ESAtom atom) const { atom_ = atom; }

    // A text of its own: copies the characters into the arena.
    static const ESText* make(ESArena& arena, QStringView characters);
    // A text over characters that outlive it; nothing is copied.
    static const ESText* makeView(ESArena& arena, const char16_t* characters, std::uint32_t length);
    // A part of another text, sharing its characters. from + length must lie within it.
    static const ESText* makePart(ESArena& arena, const ESText& whole, std::uint32_t from,
                                  std::uint32_t length);
    // left followed by right. The sum of the lengths must not pass maxLength.
    static const ESText* concatenate(ESArena& arena, const ESText& left, const ESText& right);
    // A text followed by (or behind) a few characters, which are copied.
    static const ESText* append(ESArena& arena, const ESText& left, QStringView right);
    static const ESText* prepend(ESArena& arena, QStringView left, const ESText& right);
    // The end of a text that nobody else knows: its memory serves again if it was made last.
    static void release(ESArena& arena, const ESText* text);

private:
    friend class ESAtomTable;
    ESText() = default;
    void flatten() const;
    void copyParts(char16_t* end) const;
    static ESText* newText(void* memory, const char16_t* characters, std::uint32_t length);
    static const ESText* makeOf(ESArena& arena, QStringView left, QStringView right);
    const ESText* extended(ESArena& arena, const char16_t* characters, std::uint32_t length) const;

    std::uint32_t length_;
    std::uint32_t order_;
    mutable const char16_t* characters_; // null in a concatenation that nobody has looked at
    union {
        mutable ESTextBuffer* buffer_; // flat: where the characters lie if they can be extended, or null
        mutable const ESText* left_;
    };
    union {
        mutable ESAtom atom_; // flat: the atom of this text, or null
        mutable const ESText* right_;
    };
};
static_assert(sizeof(ESText) == 32);

// The arena of a concatenation is needed again when it is flattened; texts of all contexts share this one.
inline ESArena& textArena() {
    static constinit ESArena arena;
    return arena;
}

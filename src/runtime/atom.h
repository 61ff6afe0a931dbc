// Interned strings: one entry for each distinct text, compared by pointer. One table serves the process and
// outlives every context. Compiled code refers to atoms by an index, which only texts that were compiled
// have; the order of first interning, which `for in` shows, is a number of its own.
#pragma once

#include "runtime/text.h"

#include <QString>
#include <QStringView>

constexpr std::uint32_t notAnIndex = 0xFFFFFFFF;

struct ESAtomEntry {
    mutable std::int32_t index;  // position among the compiled atoms, -1 while there is none
    mutable std::uint32_t order; // ascending with the time of first interning; final once settled
    std::uint32_t hash;
    std::uint32_t
        arrayIndex; // the number whose canonical decimal text this is (0 to 0x7FFFFFFE), or notAnIndex
    ESText text;
    mutable bool settled;

    QStringView view() const { return text.view(); }
    QString toString() const { return text.view().toString(); }
};

// The atom of a text; never fails but for memory.
ESAtom intern(QStringView text);
inline ESAtom intern(const QString& text) { return intern(QStringView(text)); }
ESAtom intern(const char* latin1);
// The atom of a text value's characters; remembered in the text.
ESAtom internText(const ESText& text);
// The atom of a text if there is one already, else null.
ESAtom findAtom(QStringView text);

// The atom of the decimal text of a number. Below 100 an array read.
ESAtom indexAtom(std::uint32_t number);
// The string of one character.
ESAtom characterAtom(char16_t character);

// Brings the order up to what is known of all texts made before. Throws std::bad_alloc.
void settleOrder(ESAtom atom);

// The index by which compiled code refers to an atom, given out on first use, and back.
std::int32_t compiledIndex(ESAtom atom);
ESAtom atomAt(std::int32_t index);

// An element of a dense vector has no atom until one is asked for, yet its name counts as interned from the
// moment when it was first used. These keep that order.
inline std::uint32_t indexNameWatermark = 100; // all names below count as interned
void noteNewIndexName(std::uint32_t index);    // index is at the watermark or above
inline void noteIndexName(std::uint32_t index) {
    if (index >= indexNameWatermark) {
        noteNewIndexName(index);
    }
}
void noteIndexNames(std::uint32_t count); // 0 to count - 1, in order

// Puts the process's texts back as they were at its start: what forgetAllRuns() of the machine needs.
void forgetTexts();

// The words that the engine compares against.
struct WellKnownAtoms {
    ESAtom length, prototype, null_, true_, false_, eval, arguments, callee, constructor, index;
    ESAtom empty, message, name, valueOf, toString;
};
extern WellKnownAtoms wellKnownAtoms;
void internWellKnownAtoms();
// The second line of them, whose place in the order of first interning comes later: after the set-up of
// Error.
void internSecondaryAtoms();

#include "runtime/atom.h"

#include "runtime/arena.h"
#include "runtime/text_hash.h"
#include "runtime/text_log.h"

#include <QLatin1String>
#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <vector>

WellKnownAtoms wellKnownAtoms;

namespace {

// The half that tables take their places from.
std::uint32_t placeOf(QStringView text) { return static_cast<std::uint32_t>(hashOf(text) >> 32); }

// The number whose canonical decimal text this is, if it can index an array.
std::uint32_t parseArrayIndex(QStringView text) {
    const qsizetype length = text.size();
    if (length == 0 || length > 10 || (length > 1 && text[0] == u'0')) {
        return notAnIndex;
    }
    std::uint64_t number = 0;
    for (const QChar c : text) {
        if (c < u'0' || c > u'9') {
            return notAnIndex;
        }
        number = number * 10 + static_cast<std::uint64_t>(c.unicode() - u'0');
    }
    return number < 0x7FFFFFFF ? static_cast<std::uint32_t>(number) : notAnIndex;
}

} // namespace

// The process's table: open addressing over pointers to entries that never move.
class ESAtomTable {
public:
    ESAtomTable();

    // order 0: the next. A text that lasts as long as the table lends its characters.
    ESAtom intern(QStringView text, std::uint32_t order, bool lasting = false);
    ESAtom find(QStringView text) const;

    ESArena arena;
    std::vector<ESAtom> compiled; // by compiled index
    std::array<ESAtom, 100> smallNumbers;
    std::array<ESAtom, 256> characters{};

    // Index names up to the watermark count as interned; each run gives consecutive names consecutive orders.
    struct NameRun {
        std::uint32_t firstIndex;
        std::uint32_t firstOrder;
    };
    std::vector<NameRun> runs;

    std::uint32_t orderInRuns(std::uint32_t index) const;

private:
    std::size_t slotOf(QStringView text, std::uint32_t hash) const;
    void grow();

    std::vector<ESAtom> slots_;
    std::size_t used_ = 0;
};

namespace {

// Made on first use and not before main, where nobody could say that memory ran out.
ESAtomTable& atoms() {
    static ESAtomTable table;
    return table;
}

// The decimal digits of a number, at the end of a buffer.
QStringView decimalText(std::uint32_t number, std::array<char16_t, 10>& buffer) {
    char16_t* end = buffer.data() + buffer.size();
    char16_t* begin = end;
    do {
        *--begin = static_cast<char16_t>(u'0' + number % 10);
        number /= 10;
    } while (number != 0);
    return QStringView(begin, end);
}

} // namespace

ESAtomTable::ESAtomTable() : slots_(1024) {
    std::array<char16_t, 10> buffer;
    for (std::uint32_t i = 0; i < 100; ++i) {
        smallNumbers[i] = intern(decimalText(i, buffer), ++lastTextOrder);
    }
}

std::size_t ESAtomTable::slotOf(QStringView text, std::uint32_t hash) const {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = hash & mask;
    for (std::size_t step = 1; const ESAtom atom = slots_[slot]; ++step) {
        if (atom->hash == hash && atom->text.length() == static_cast<std::size_t>(text.size()) &&
            std::memcmp(atom->text.characters(), text.utf16(), static_cast<std::size_t>(text.size()) * 2) ==
                0) {
            break;
        }
        slot =
            (slot + step) & mask; // ever further, so that no cluster grows; meets each slot of a power of two
    }
    return slot;
}

ESAtom ESAtomTable::find(QStringView text) const { return slots_[slotOf(text, placeOf(text))]; }

ESAtom ESAtomTable::intern(QStringView text, std::uint32_t order, bool lasting) {
    const std::uint32_t hash = placeOf(text);
    std::size_t slot = slotOf(text, hash);
    if (slots_[slot] != nullptr) {
        return slots_[slot];
    }
    if ((used_ + 1) * 2 > slots_.size()) {
        grow();
        slot = slotOf(text, hash);
    }
    auto* entry = static_cast<ESAtomEntry*>(arena.allocate(sizeof(ESAtomEntry)));
    const char16_t* kept = text.utf16();
    if (!lasting) {
        auto* copy =
            arena.allocateArray<char16_t>(std::max<std::size_t>(static_cast<std::size_t>(text.size()), 1));
        std::memcpy(copy, kept, static_cast<std::size_t>(text.size()) * sizeof(char16_t));
        kept = copy;
    }
    entry->index = -1;
    entry->hash = hash;
    entry->arrayIndex = parseArrayIndex(text);
    // A name that was used as an element counts from then on.
    const bool counted = entry->arrayIndex >= 100 && entry->arrayIndex < indexNameWatermark;
    order = order != 0 ? order : ++lastTextOrder;
    entry->order = counted ? std::min(order, orderInRuns(entry->arrayIndex)) : order;
    entry->settled = false;
    entry->text.length_ = static_cast<std::uint32_t>(text.size());
    entry->text.order_ = entry->order;
    entry->text.characters_ = kept;
    entry->text.buffer_ = nullptr;
    entry->text.atom_ = entry;
    slots_[slot] = entry;
    ++used_;
    return entry;
}

void ESAtomTable::grow() {
    std::vector<ESAtom> old(slots_.size() * 2);
    old.swap(slots_);
    const std::size_t mask = slots_.size() - 1;
    for (const ESAtom atom : old) {
        if (atom != nullptr) {
            std::size_t slot = atom->hash & mask;
            for (std::size_t step = 1; slots_[slot] != nullptr; ++step) {
                slot = (slot + step) & mask;
            }
            slots_[slot] = atom;
        }
    }
}

std::uint32_t ESAtomTable::orderInRuns(std::uint32_t index) const {
    auto run = std::upper_bound(runs.begin(), runs.end(), index,
                                [](std::uint32_t i, const NameRun& r) { return i < r.firstIndex; });
    --run;
    return run->firstOrder + (index - run->firstIndex);
}

ESAtom intern(QStringView text) {
    return atoms().intern(text.isEmpty() ? QStringView(u"", qsizetype{0}) : text, 0); // with an address
}

ESAtom intern(const char* latin1) {
    char16_t buffer[128];
    const std::size_t length = std::strlen(latin1);
    if (length > std::size(buffer)) {
        return intern(QString::fromLatin1(latin1));
    }
    std::copy(latin1, latin1 + length, buffer);
    return intern(QStringView(buffer, static_cast<qsizetype>(length)));
}

ESAtom internText(const ESText& text) {
    if (const ESAtom known = text.knownAtom()) {
        return known;
    }
    const ESAtom atom = atoms().intern(text.view(), text.order(), true);
    text.rememberAtom(atom);
    return atom;
}

ESAtom findAtom(QStringView text) { return text.isEmpty() ? intern(text) : atoms().find(text); }

ESAtom indexAtom(std::uint32_t number) {
    if (number < 100) {
        return atoms().smallNumbers[number]; // cppcheck-suppress CastIntegerToAddressAtReturn
    }
    std::array<char16_t, 10> buffer;
    return intern(decimalText(number, buffer));
}

ESAtom characterAtom(char16_t character) {
    ESAtomTable& table = atoms();
    if (character > 255) {
        return intern(QStringView(&character, 1));
    }
    ESAtom& known = table.characters[character];
    if (known == nullptr) {
        known = intern(QStringView(&character, 1));
    }
    return known;
}

std::int32_t compiledIndex(ESAtom atom) {
    if (atom->index < 0) {
        ESAtomTable& table = atoms();
        table.compiled.push_back(atom);
        atom->index = static_cast<std::int32_t>(table.compiled.size()) - 1;
    }
    return atom->index;
}

ESAtom atomAt(std::int32_t index) { return atoms().compiled[static_cast<std::size_t>(index)]; }

void noteNewIndexName(std::uint32_t index) {
    ESAtomTable& table = atoms();
    if (index > indexNameWatermark) {
        indexAtom(index);
        return;
    }
    const std::uint32_t order = ++lastTextOrder;
    if (table.runs.empty() ||
        table.runs.back().firstOrder + (index - table.runs.back().firstIndex) != order) {
        table.runs.push_back({index, order});
    }
    indexNameWatermark = index + 1;
}

void noteIndexNames(std::uint32_t count) {
    if (count <= indexNameWatermark) {
        return;
    }
    noteIndexName(indexNameWatermark);
    lastTextOrder += count - indexNameWatermark;
    indexNameWatermark = count;
}

void settleOrder(ESAtom atom) {
    if (!atom->settled) {
        atom->order = textLog.firstOrder(atom->view(), atom->order);
        atom->settled = true;
    }
}

void forgetTexts() {
    ESAtomTable& table = atoms();
    std::destroy_at(&table);
    std::destroy_at(&textArena());
    std::construct_at(&textArena());
    textLog = ESTextLog();
    lastTextOrder = 0;
    indexNameWatermark = 100;
    std::construct_at(&table);
}

void internWellKnownAtoms() {
    WellKnownAtoms& w = wellKnownAtoms;
    w.length = intern("length");
    w.prototype = intern("prototype");
    w.null_ = intern("null");
    w.true_ = intern("true");
    w.false_ = intern("false");
    w.eval = intern("eval");
    w.arguments = intern("arguments");
    w.callee = intern("callee");
    w.constructor = intern("constructor");
    w.index = intern("index");
}

void internSecondaryAtoms() {
    WellKnownAtoms& w = wellKnownAtoms;
    w.empty = intern("");
    w.message = intern("message");
    w.name = intern("name");
    w.valueOf = intern("valueOf");
    w.toString = intern("toString");
}

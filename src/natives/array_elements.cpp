#include "natives/array_elements.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace {

#ifdef QUORVANE_TINY_LIMITS
constexpr std::uint32_t countedFreely = 4;
#else
constexpr std::uint32_t countedFreely = 4096; // a range up to this long is walked index by index
#endif

// The number that a name stands for, also beyond the indexes of arrays, or notAnIndex.
std::uint32_t indexOfName(ESAtom atom) {
    if (atom->arrayIndex != notAnIndex) {
        return atom->arrayIndex;
    }
    const QStringView text = atom->view();
    if (text.size() != 10 || text.front() == u'0') {
        return notAnIndex; // all that arrayIndex leaves out has ten digits
    }
    std::uint64_t number = 0;
    for (const QChar c : text) {
        if (c < u'0' || c > u'9') {
            return notAnIndex;
        }
        number = number * 10 + static_cast<std::uint64_t>(c.unicode() - u'0');
    }
    return number < notAnIndex ? static_cast<std::uint32_t>(number) : notAnIndex;
}

bool mayNameIndexes(const ESObject* obj, std::uint32_t to) {
    return obj->properties.hasIndexNames || to > maxArrayIndex;
}

template <typename Visit>
void visitNamedIndexes(const ESObject* obj, std::uint32_t from, std::uint32_t to, Visit visit) {
    if (!mayNameIndexes(obj, to)) {
        return;
    }
    for (std::uint32_t i = 0; i < obj->properties.count(); ++i) {
        if (const ESAtom atom = obj->properties.at(i).atom) {
            const std::uint32_t index = indexOfName(atom);
            if (index != notAnIndex && index >= from && index < to) {
                visit(index);
            }
        }
    }
}

} // namespace

void noteNames(std::uint32_t from, std::uint32_t to) {
    const std::uint32_t end = from + std::min(to - from, mostNamesNoted);
    if (from <= indexNameWatermark) {
        noteIndexNames(end);
        return;
    }
    for (std::uint32_t i = from; i < end; ++i) {
        noteIndexName(i);
    }
}

std::uint32_t lengthOf(ESContext& ctx, ESObject* obj) {
    if (obj->nativeClass == ctx.arrays) {
        if (const ESProperty* slot = arrayLengthSlot(obj)) [[likely]] {
            return static_cast<std::uint32_t>(slot->number);
        }
    }
    return ctx.toUint32(ctx.get(obj, wellKnownAtoms.length));
}

void storeLength(ESContext& ctx, ESObject* array, std::uint32_t length) {
    ESProperty* slot = arrayLengthSlot(array);
    if (slot != nullptr && (slot->attributes & ReadOnly) == 0) [[likely]] {
        slot->setValue(numberValue(length));
    } else {
        array->nativeClass->ESClass::put(ctx, array, wellKnownAtoms.length, numberValue(length));
    }
}

bool prototypesHaveNoIndexes(const ESObject* obj) {
    for (const ESObject* o = obj->prototype; o != nullptr; o = o->prototype) {
        if (o->elements.count() != 0 || o->properties.hasIndexNames) {
            return false;
        }
    }
    return true;
}

bool isPlainVector(const ESObject* obj) {
    return obj->nativeClass->ordinaryGet && !obj->properties.hasIndexNames && prototypesHaveNoIndexes(obj);
}

void trimHoles(ESElements& elements) {
    std::uint32_t count = elements.count();
    while (count != 0 && elements.data()[count - 1].tag == ESTagHole) {
        --count;
    }
    elements.resize(count);
}

bool isSparse(const ESObject* obj, std::uint32_t from, std::uint32_t to) {
    if (!obj->nativeClass->ordinaryGet || to - from <= countedFreely) {
        return false;
    }
    std::uint64_t most = 0;
    for (const ESObject* o = obj; o != nullptr; o = o->prototype) {
        most += o->elements.count();
        most += mayNameIndexes(o, to) ? o->properties.count() : 0;
    }
    return most < (to - from) / 2;
}

std::vector<std::uint32_t> presentIndexes(const ESObject* obj, std::uint32_t from, std::uint32_t to) {
    std::vector<std::uint32_t> present;
    for (const ESObject* o = obj; o != nullptr; o = o->prototype) {
        for (std::uint32_t i = from; i < std::min(to, o->elements.count()); ++i) {
            if (o->elements.data()[i].tag != ESTagHole) {
                present.push_back(i);
            }
        }
        visitNamedIndexes(o, from, to, [&](std::uint32_t index) { present.push_back(index); });
    }
    if (!std::is_sorted(present.begin(), present.end())) {
        std::sort(present.begin(), present.end());
    }
    present.erase(std::unique(present.begin(), present.end()), present.end());
    return present;
}

std::int64_t lastPresentIndex(const ESObject* obj, std::int64_t limit) {
    std::int64_t last = -1;
    if (limit < 0) {
        return last;
    }
    const auto end = static_cast<std::uint32_t>(std::min<std::int64_t>(limit, notAnIndex - 1)) + 1;
    for (const ESObject* o = obj; o != nullptr; o = o->prototype) {
        for (std::int64_t i = std::min(o->elements.count(), end); --i > last;) {
            if (o->elements.data()[i].tag != ESTagHole) {
                last = i;
            }
        }
        visitNamedIndexes(o, 0, end,
                          [&](std::uint32_t index) { last = std::max<std::int64_t>(last, index); });
    }
    return last;
}

void deleteRange(ESContext& ctx, ESObject* obj, std::uint32_t from, std::uint32_t to) {
    noteNames(from, to);
    ESElements& elements = obj->elements;
    if (elements.count() > from) {
        std::fill(elements.data() + from, elements.data() + std::min(to, elements.count()), hole());
        elements.noteHoles();
        trimHoles(elements);
    }
    if (!mayNameIndexes(obj, to)) {
        return;
    }
    if (to - from <= obj->properties.count()) {
        for (std::uint32_t i = from; i < to; ++i) {
            deleteIndexed(ctx, obj, i);
        }
        return;
    }
    std::vector<ESAtom> names;
    visitNamedIndexes(obj, from, to, [&](std::uint32_t index) { names.push_back(indexAtom(index)); });
    for (const ESAtom name : names) {
        ctx.deleteProperty(obj, name);
    }
}

ESIndexWalk::ESIndexWalk(const ESObject* obj, std::uint32_t from, std::uint32_t to)
    : object_(obj), next_(from), end_(to), listed_(isSparse(obj, from, to)) {
    refresh();
}

void ESIndexWalk::refresh() {
    if (listed_) {
        list_ = presentIndexes(object_, next_, end_);
        position_ = 0;
    }
}

bool ESIndexWalk::next(std::uint32_t& index) {
    if (listed_) {
        const bool ends = position_ == list_.size();
        index = ends ? end_ - 1 : list_[position_++];
        const std::uint32_t noted = std::min(index - next_ + 1, toNote_);
        noteNames(next_, next_ + noted);
        toNote_ -= noted;
        next_ = index + 1;
        return !ends;
    }
    index = next_;
    return next_ < end_ && ++next_ != 0;
}

void ESTextBuilder::makeRoom(std::uint64_t characters) {
    if (text_.size() + characters > ESText::maxLength) {
        ctx_.raiseRangeError("length too large");
    }
}

void ESTextBuilder::add(QStringView characters) {
    makeRoom(static_cast<std::uint64_t>(characters.size()));
    text_.append(characters.utf16(), static_cast<std::size_t>(characters.size()));
}

void ESTextBuilder::addRepeated(QStringView characters, std::uint32_t times) {
    const std::uint64_t total = static_cast<std::uint64_t>(characters.size()) * times;
    makeRoom(total);
    if (total == 0) {
        return;
    }
    // Doubles what it has, so that long runs go at the speed of copying.
    const std::size_t begin = text_.size();
    const std::size_t end = begin + total;
    text_.reserve(end);
    add(characters);
    while (text_.size() < end) {
        text_.append(text_, begin, std::min(text_.size() - begin, end - text_.size()));
    }
}

void ESTextBuilder::addValue(const ESValue& value) {
    // Numbers are written here and now: a string value would stay until the end of the run.
    if (value.isNumber()) {
        const double number = value.number;
        if (std::fabs(number) < 1e15 && std::trunc(number) == number) {
            std::array<char, 20> digits;
            const auto integer = static_cast<std::int64_t>(number);
            const char* end = std::to_chars(digits.data(), digits.data() + digits.size(), integer).ptr;
            makeRoom(static_cast<std::uint64_t>(end - digits.data()));
            text_.append(static_cast<const char*>(digits.data()), end);
        } else {
            add(ctx_.toString(value));
        }
    } else {
        add(ESContext::viewOf(ctx_.toStringValue(value)));
    }
}

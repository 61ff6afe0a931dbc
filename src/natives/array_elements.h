// How the members of Array.prototype reach the elements of any object: by 32-bit index, whether the class
// stores it as an element or as a name, and without visiting long stretches that are empty.
#pragma once

#include "runtime/context.h"

#include <string>
#include <vector>

// The largest number that counts as an index of an array. Larger ones are ordinary names.
constexpr std::uint32_t maxArrayIndex = 0x7FFFFFFE;

inline ESValue getIndexed(ESContext& ctx, ESObject* obj, std::uint32_t index) {
    return index <= maxArrayIndex ? ctx.getElement(obj, index) : ctx.get(obj, indexAtom(index));
}
inline void putIndexed(ESContext& ctx, ESObject* obj, std::uint32_t index, const ESValue& value) {
    if (index <= maxArrayIndex) {
        ctx.putElement(obj, index, value);
    } else {
        ctx.put(obj, indexAtom(index), value);
    }
}
inline bool hasIndexed(ESContext& ctx, ESObject* obj, std::uint32_t index) {
    return index <= maxArrayIndex ? ctx.hasElement(obj, index) : ctx.hasProperty(obj, indexAtom(index));
}
inline void deleteIndexed(ESContext& ctx, ESObject* obj, std::uint32_t index) {
    if (index <= maxArrayIndex) {
        ctx.deleteIndexProperty(obj, index);
    } else {
        ctx.deleteProperty(obj, indexAtom(index));
    }
}
// A member that moves values leaves the places of undefined ones empty.
inline void putOrDelete(ESContext& ctx, ESObject* obj, std::uint32_t index, const ESValue& value) {
    if (value.isUndefined()) {
        deleteIndexed(ctx, obj, index);
    } else {
        putIndexed(ctx, obj, index, value);
    }
}

// Where an array's own `length` lies: newArray puts it first. Null when a script has deleted it. Else it
// holds a number, 0 to 0xFFFFFFFF, since the class's put stores nothing else.
inline ESProperty* arrayLengthSlot(ESObject* array) {
    ESPropertyTable& properties = array->properties;
    if (properties.count() != 0 && properties.at(0).atom == wellKnownAtoms.length) [[likely]] {
        return &properties.at(0);
    }
    return properties.find(wellKnownAtoms.length);
}
// The `length` of any object, through its class and toUint32. May run script (a valueOf).
std::uint32_t lengthOf(ESContext& ctx, ESObject* obj);
// Stores an array's `length` and nothing else: elements behind it stay.
void storeLength(ESContext& ctx, ESObject* array, std::uint32_t length);

// Nothing but the object's own vector answers for its indexes, and a write to an existing one only stores:
// the vector may then be worked on directly, as long as no script runs.
bool isPlainVector(const ESObject* obj);
// Nothing but an object's own elements and names answers for its indexes.
bool prototypesHaveNoIndexes(const ESObject* obj);
// After places of the vector were emptied directly: a vector doesn't end in holes.
void trimHoles(ESElements& elements);
inline ESValue hole() {
    ESValue v = undefinedValue();
    v.tag = ESTagHole;
    return v;
}

// True when so few of the indexes from `from` up to `to` can be present that a list of them beats counting.
bool isSparse(const ESObject* obj, std::uint32_t from, std::uint32_t to);
// Names beyond this many in one stretch aren't noted: nobody would wait for that many look-ups.
constexpr std::uint32_t mostNamesNoted = 1u << 16;
// All indexes of the range count as named from now on, in ascending order. to isn't below from.
void noteNames(std::uint32_t from, std::uint32_t to);
// The present indexes of the range on the object and its prototypes, ascending, each once.
std::vector<std::uint32_t> presentIndexes(const ESObject* obj, std::uint32_t from, std::uint32_t to);
// The last present index that isn't above `limit`, or -1.
std::int64_t lastPresentIndex(const ESObject* obj, std::int64_t limit);
// Deletes the elements from `from` up to `to`, in ascending order.
void deleteRange(ESContext& ctx, ESObject* obj, std::uint32_t from, std::uint32_t to);

// Visits a range in ascending order, leaving out only indexes at which a read finds nothing. These count as
// named nevertheless.
class ESIndexWalk {
public:
    // The object must outlive the walk.
    ESIndexWalk(const ESObject* obj, std::uint32_t from, std::uint32_t to);
    // False at the end.
    bool next(std::uint32_t& index);
    // To be called when script may have run since next().
    void refresh();

private:
    const ESObject* object_;
    std::uint32_t next_;
    std::uint32_t end_;
    bool listed_;
    std::uint32_t toNote_ = mostNamesNoted;
    std::vector<std::uint32_t> list_;
    std::size_t position_ = 0;
};

// Puts a text together from many values. Past ESText::maxLength everything raises RangeError "length too
// large".
class ESTextBuilder {
public:
    explicit ESTextBuilder(ESContext& ctx) : ctx_(ctx) {}
    std::size_t length() const { return text_.size(); }
    const char16_t* characters() const { return text_.data(); }
    void add(QStringView characters);
    // The value's toString, which for an object runs script.
    void addValue(const ESValue& value);
    void addRepeated(QStringView characters, std::uint32_t times);
    ESValue finish() { return ctx_.newString(QStringView(text_)); }
    ESValue finishUnseen() const { return textValue(ESText::make(textArena(), QStringView(text_))); }

private:
    void makeRoom(std::uint64_t characters);

    ESContext& ctx_;
    std::u16string text_;
};

#include "natives/array.h"

#include "natives/array_elements.h"
#include "natives/array_sort.h"
#include "runtime/context.h"

#include <algorithm>
#include <utility>

namespace {

enum Member : std::int32_t {
    Constructor = 0,
    ToString = 2,
    ToLocaleString,
    Concat,
    Join,
    Pop,
    Push,
    Reverse,
    Shift,
    Slice,
    Sort,
};

constexpr ESMember constructor = {"Array", 0, Constructor};
constexpr ESMember members[] = {
    {"toString", 0, ToString}, {"toLocaleString", 0, ToLocaleString},
    {"concat", 0, Concat},     {"join", 1, Join},
    {"pop", 0, Pop},           {"push", 0, Push},
    {"reverse", 0, Reverse},   {"shift", 0, Shift},
    {"slice", 2, Slice},       {"sort", 1, Sort},
};

// A member that would have to store this many elements that aren't there yet gives up at once.
constexpr std::uint32_t mostElementsMade = 1u << 27;

[[noreturn]] void lengthTooLarge(ESContext& ctx) { ctx.raiseRangeError("length too large"); }

ESObject* makeArray(ESContext& ctx, std::int32_t argc, const ESValue* argv) {
    if (argc != 1 || !argv[0].isNumber()) {
        return ctx.newArray(static_cast<std::uint32_t>(argc), argv);
    }
    const std::uint32_t length = ctx.toUint32(argv[0]);
    if (static_cast<double>(length) != argv[0].number) {
        ctx.raiseRangeError("bad length in array constructor");
    }
    ESObject* array = ctx.newArray(0, nullptr);
    storeLength(ctx, array, length);
    return array;
}

// Empty places count as undefined, and only null has no text: not what join makes of them.
ESValue listText(ESContext& ctx, ESObject* self) {
    if (!ctx.isArrayObject(self)) {
        ctx.raiseTypeError("Array.prototype.toString requires an array");
    }
    const std::uint32_t length = lengthOf(ctx, self);
    ESTextBuilder text(ctx);
    std::uint32_t done = 0; // indexes that are in the text
    const auto addEmpty = [&](std::uint32_t end) {
        if (done == 0 && end != 0) {
            text.add(u"undefined");
            ++done;
        }
        text.addRepeated(u",undefined", end - done);
        done = end;
    };
    ESIndexWalk walk(self, 0, length);
    for (std::uint32_t i; walk.next(i);) {
        addEmpty(i);
        const ESValue element = getIndexed(ctx, self, i);
        if (i != 0) {
            text.add(u",");
        }
        if (!element.isNull()) {
            text.addValue(element);
        }
        done = i + 1;
        if (element.isObject()) {
            walk.refresh();
        }
    }
    addEmpty(length);
    return text.finish();
}

ESValue join(ESContext& ctx, ESObject* self, const ESValue& separatorArgument) {
    // 1. The length; of nothing, the separator isn't converted.
    const std::uint32_t length = lengthOf(ctx, self);
    if (length == 0) {
        return atomValue(wellKnownAtoms.empty);
    }
    // 2. The separator.
    const ESValue separatorText =
        separatorArgument.isUndefined() ? ctx.characterString(u',') : ctx.toStringValue(separatorArgument);
    const QStringView separator = ESContext::viewOf(separatorText);
    // 3. The elements. One that is undefined or null is passed over, its separator included.
    ESTextBuilder text(ctx);
    ESIndexWalk walk(self, 0, length);
    for (std::uint32_t i; walk.next(i);) {
        const ESValue element = getIndexed(ctx, self, i);
        if (element.isUndefined() || element.isNull()) {
            continue;
        }
        if (i != 0) {
            text.add(separator);
        }
        text.addValue(element);
        if (element.isObject()) {
            walk.refresh();
        }
    }
    return text.finish();
}

// Appends behind the last element of an array that no script has seen, whose length is stored at the end.
void appendDefined(ESContext& ctx, ESObject* result, ESObject* item) {
    ESElements& target = result->elements;
    const auto append = [&](const ESValue& v) {
        if (target.count() > maxArrayIndex) {
            lengthTooLarge(ctx);
        }
        noteIndexName(target.count());
        target.append(v);
    };
    const std::uint32_t length = lengthOf(ctx, item);
    if (isPlainVector(item)) {
        const std::uint32_t end = std::min(length, item->elements.count());
        for (std::uint32_t i = 0; i < end; ++i) {
            const ESValue& v = item->elements.data()[i];
            if (v.tag != ESTagHole && !v.isUndefined()) {
                append(v);
            }
        }
        noteNames(end, length);
        return;
    }
    ESIndexWalk walk(item, 0, length);
    for (std::uint32_t i; walk.next(i);) {
        const ESValue v = getIndexed(ctx, item, i);
        if (!v.isUndefined()) {
            append(v);
        }
    }
}

ESObject* concat(ESContext& ctx, ESObject* self, std::int32_t argc, const ESValue* argv) {
    ESObject* result = ctx.newArray(0, nullptr);
    for (std::int32_t i = -1; i < argc; ++i) {
        const ESValue item = i < 0 ? objectValue(self) : argv[i];
        if (item.isObject() && ctx.isArrayObject(item.object)) {
            appendDefined(ctx, result, item.object);
        } else {
            noteIndexName(result->elements.count());
            result->elements.append(item);
        }
    }
    storeLength(ctx, result, result->elements.count());
    return result;
}

ESValue pop(ESContext& ctx, ESObject* self) {
    const std::uint32_t length = lengthOf(ctx, self);
    if (length == 0) {
        ctx.put(self, wellKnownAtoms.length, numberValue(0));
        return undefinedValue();
    }
    const std::uint32_t last = length - 1;
    const ESValue result = getIndexed(ctx, self, last);
    deleteIndexed(ctx, self, last);
    ctx.put(self, wellKnownAtoms.length, numberValue(last));
    return result;
}

// Leaves `length` alone: an array's own put keeps it.
double push(ESContext& ctx, ESObject* self, std::int32_t argc, const ESValue* argv) {
    const std::uint32_t length = lengthOf(ctx, self);
    for (std::int32_t i = 0; i < argc; ++i) {
        putIndexed(ctx, self, length + static_cast<std::uint32_t>(i), argv[i]);
    }
    return length + static_cast<std::uint32_t>(argc);
}

void swapPlaces(ESContext& ctx, ESObject* self, std::uint32_t lower, std::uint32_t upper) {
    const ESValue lowerValue = getIndexed(ctx, self, lower);
    const ESValue upperValue = getIndexed(ctx, self, upper);
    putOrDelete(ctx, self, lower, upperValue);
    putOrDelete(ctx, self, upper, lowerValue);
}

// What moves as undefined leaves its new place empty; an element in the middle doesn't move.
void reverseVector(ESElements& elements) {
    ESValue* lower = elements.data();
    ESValue* upper = lower + elements.count();
    elements.noteHoles();
    while (upper - lower > 1) {
        --upper;
        std::swap(*lower, *upper);
        for (ESValue* moved : {lower, upper}) {
            if (moved->isUndefined()) {
                *moved = hole();
            }
        }
        ++lower;
    }
    trimHoles(elements);
}

void reverse(ESContext& ctx, ESObject* self) {
    const std::uint32_t length = lengthOf(ctx, self);
    if (self->elements.count() == length && isPlainVector(self)) {
        reverseVector(self->elements);
        return;
    }
    if (!isSparse(self, 0, length)) {
        for (std::uint32_t lower = 0; lower < length / 2; ++lower) {
            swapPlaces(ctx, self, lower, length - 1 - lower);
        }
        return;
    }
    std::vector<std::uint32_t> lowers;
    for (std::uint32_t lower = 0; lower < std::min(length / 2, mostNamesNoted); ++lower) {
        noteIndexName(lower);
        noteIndexName(length - 1 - lower);
    }
    for (const std::uint32_t index : presentIndexes(self, 0, length)) {
        const std::uint32_t lower = std::min(index, length - 1 - index);
        if (lower < length / 2) {
            lowers.push_back(lower);
        }
    }
    std::sort(lowers.begin(), lowers.end());
    lowers.erase(std::unique(lowers.begin(), lowers.end()), lowers.end());
    for (const std::uint32_t lower : lowers) {
        swapPlaces(ctx, self, lower, length - 1 - lower);
    }
}

ESValue shift(ESContext& ctx, ESObject* self) {
    const std::uint32_t length = lengthOf(ctx, self);
    if (length == 0) {
        ctx.put(self, wellKnownAtoms.length, numberValue(0));
        return undefinedValue();
    }
    if (ctx.isArrayObject(self) && self->elements.count() == length && !self->elements.hasHoles()) {
        const ESValue first = self->elements.data()[0];
        self->elements.removeFirst();
        storeLength(ctx, self, length - 1);
        return first;
    }
    // An empty place moves as undefined, so that afterwards no place is empty.
    if (length > mostElementsMade && isSparse(self, 0, length)) {
        lengthTooLarge(ctx);
    }
    const ESValue first = getIndexed(ctx, self, 0);
    for (std::uint32_t k = 1; k < length; ++k) {
        putIndexed(ctx, self, k - 1, getIndexed(ctx, self, k));
    }
    deleteIndexed(ctx, self, length - 1);
    ctx.put(self, wellKnownAtoms.length, numberValue(length - 1));
    return first;
}

// A negative position counts from the end.
std::uint32_t clampPosition(std::int32_t position, std::uint32_t length) {
    const std::int64_t fromStart = position < 0 ? std::int64_t{position} + length : position;
    return static_cast<std::uint32_t>(std::clamp<std::int64_t>(fromStart, 0, length));
}

ESObject* slice(ESContext& ctx, ESObject* self, const ESValue& startArgument, const ESValue& endArgument) {
    // 1. length, 2. start, 3. end
    const std::uint32_t length = lengthOf(ctx, self);
    const std::uint32_t start = clampPosition(ctx.toInt32(startArgument), length);
    const std::uint32_t end =
        endArgument.isUndefined() ? length : clampPosition(ctx.toInt32(endArgument), length);
    ESObject* result = ctx.newArray(0, nullptr);
    if (start >= end) {
        return result;
    }
    // 4. The elements that exist. Empty places stay empty, and those at the end don't count.
    if (isPlainVector(self)) {
        const ESElements& source = self->elements;
        const std::uint32_t stop = std::min(end, source.count());
        noteNames(start, end);
        if (start < stop) {
            ESElements& target = result->elements;
            target.resize(stop - start);
            std::copy(source.data() + start, source.data() + stop, target.data());
            trimHoles(target);
            storeLength(ctx, result, target.count());
        }
        return result;
    }
    ESIndexWalk walk(self, start, end);
    for (std::uint32_t i; walk.next(i);) {
        if (hasIndexed(ctx, self, i)) {
            putIndexed(ctx, result, i - start, getIndexed(ctx, self, i));
        }
    }
    return result;
}

void putLength(ESContext& ctx, ESObject* array, const ESValue& value) {
    // 1. The old length, 2. the new one, whose conversion may run script, 3. the elements between them.
    const std::uint32_t oldLength = lengthOf(ctx, array);
    const std::uint32_t newLength = ctx.toUint32(value);
    if (newLength < oldLength) {
        deleteRange(ctx, array, newLength, oldLength);
    }
    storeLength(ctx, array, newLength);
}

} // namespace

ESNativeArray::ESNativeArray() : ESClass("Array") { ordinaryPut = false; }

void ESNativeArray::setUp(ESContext& ctx) {
    defineConstructor(ctx, constructor, intern(name), ctx.arrayPrototype, this);
    ctx.putProperty(ctx.arrayPrototype, DontEnum | DontDelete, wellKnownAtoms.length, numberValue(0));
    defineMembers(ctx, ctx.arrayPrototype, members, this, name, ESMemberNaming::Prototype);
}

void ESNativeArray::put(ESContext& ctx, ESObject* obj, ESAtom atom, const ESValue& value) {
    if (atom == wellKnownAtoms.length) {
        putLength(ctx, obj, value);
    } else if (atom->arrayIndex != notAnIndex) {
        ESNativeArray::putElement(ctx, obj, atom->arrayIndex, value);
    } else {
        ESClass::put(ctx, obj, atom, value);
    }
}

void ESNativeArray::putElement(ESContext& ctx, ESObject* obj, std::uint32_t index, const ESValue& value) {
    if (index == obj->elements.count() && !obj->properties.hasIndexNames) [[likely]] {
        noteIndexName(index);
        obj->elements.append(value);
    } else {
        ESClass::putElement(ctx, obj, index, value);
    }
    if (index >= lengthOf(ctx, obj)) {
        storeLength(ctx, obj, index + 1);
    }
}

void ESNativeArray::call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc,
                         ESValue* argv) {
    switch (fn->memberIndex) {
    case Constructor:
        argv[0] = objectValue(makeArray(ctx, argc, argv));
        break;
    case ToString:
    case ToLocaleString:
        argv[0] = listText(ctx, thisObject);
        break;
    case Concat:
        argv[0] = objectValue(concat(ctx, thisObject, argc, argv));
        break;
    case Join:
        argv[0] = join(ctx, thisObject, argv[0]);
        break;
    case Pop:
        argv[0] = pop(ctx, thisObject);
        break;
    case Push:
        argv[0] = numberValue(push(ctx, thisObject, argc, argv));
        break;
    case Reverse:
        reverse(ctx, thisObject);
        argv[0] = objectValue(thisObject);
        break;
    case Shift:
        argv[0] = shift(ctx, thisObject);
        break;
    case Slice:
        argv[0] = objectValue(slice(ctx, thisObject, argv[0], argv[1]));
        break;
    case Sort:
        sortElements(ctx, thisObject, argv[0]);
        argv[0] = objectValue(thisObject);
        break;
    default:
        badCall(ctx);
    }
}

ESObject* ESNativeArray::construct(ESContext& ctx, ESObject* fn, std::int32_t argc, const ESValue* argv) {
    if (fn->memberIndex != Constructor) {
        badConstruct(ctx);
    }
    return makeArray(ctx, argc, argv);
}

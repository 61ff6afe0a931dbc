// ESValue, the one form in which script values travel: a tag and eight bytes, copied by assignment. Next:
// text.h and atom.h for strings, object.h for objects, context.h for everything that converts a value.
#pragma once

#include <cstdint>
#include <limits>

struct ESAtomEntry;
struct ESObject;
class ESText;

// Equal texts have the same entry, so atoms compare by pointer. The null pointer is no atom.
using ESAtom = const ESAtomEntry*;

enum ESValueTag : std::uint32_t {
    ESTagUndefined = 0, // all-zero memory is this value
    ESTagNull = 1,
    ESTagBoolean = 2, // number holds 0.0 or 1.0, so that converting to a number changes the tag alone
    ESTagNumber = 3,
    ESTagString = 4, // a text outside the atom table
    ESTagObject = 5,
    ESTagAny = 6,  // a hint of toPrimitive, never a value
    ESTagAtom = 7, // a text of the atom table
    ESTagHole = 8, // an absent element of a dense vector, never seen outside ESElements
};

struct ESValue {
    std::uint32_t tag;
    union {
        double number;
        const ESText* text;
        ESObject* object;
        ESAtom atom;
        std::uint64_t bits;
    };

    bool isUndefined() const { return tag == ESTagUndefined; }
    bool isNull() const { return tag == ESTagNull; }
    bool isBoolean() const { return tag == ESTagBoolean; }
    bool isNumber() const { return tag == ESTagNumber; }
    bool isObject() const { return tag == ESTagObject; }
    bool isString() const { return tag == ESTagString || tag == ESTagAtom; }
};
static_assert(sizeof(ESValue) == 16);

inline ESValue numberValue(double number) {
    ESValue v;
    v.tag = ESTagNumber;
    v.number = number;
    return v;
}
inline ESValue booleanValue(bool b) {
    ESValue v;
    v.tag = ESTagBoolean;
    v.number = b ? 1.0 : 0.0;
    return v;
}
inline ESValue objectValue(ESObject* object) {
    ESValue v;
    v.tag = ESTagObject;
    v.object = object;
    return v;
}
inline ESValue atomValue(ESAtom atom) {
    ESValue v;
    v.tag = ESTagAtom;
    v.atom = atom;
    return v;
}
inline ESValue textValue(const ESText* text) {
    ESValue v;
    v.tag = ESTagString;
    v.text = text;
    return v;
}
inline ESValue undefinedValue() {
    ESValue v;
    v.tag = ESTagUndefined;
    v.bits = 0;
    return v;
}
inline ESValue nullValue() {
    ESValue v;
    v.tag = ESTagNull;
    v.bits = 0;
    return v;
}

constexpr double esNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double esInfinity = std::numeric_limits<double>::infinity();

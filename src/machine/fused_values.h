// Values as the fused loop handles them: written in pieces, numbers first, an element of a dense vector found
// by one look.
#pragma once

#include "machine/instructions.h"
#include "runtime/context.h"

#include <cmath>

inline void setNumber(ESValue& to, double n) {
    to.tag = ESTagNumber;
    to.number = n;
}
inline void setBoolean(ESValue& to, bool b) {
    to.tag = ESTagBoolean;
    to.number = b ? 1.0 : 0.0;
}
// Tag and payload apart: a value written as two pieces is not read back as one.
inline void copyValue(ESValue& to, const ESValue& from) {
    const std::uint32_t tag = from.tag;
    const std::uint64_t bits = from.bits;
    to.tag = tag;
    to.bits = bits;
}
inline void copyValue(ESValue& to, const ESProperty& from) {
    to.tag = from.tag;
    to.bits = from.bits;
}
inline void copyValue(ESProperty& to, const ESValue& from) {
    to.tag = from.tag;
    to.bits = from.bits;
}

inline bool bothNumbers(const ESValue& a, const ESValue& b) {
    return a.tag == ESTagNumber && b.tag == ESTagNumber;
}

inline bool isTrue(ESContext& ctx, const ESValue& v) {
    return v.tag == ESTagBoolean || v.tag == ESTagNumber ? v.number != 0.0 : ctx.toBoolean(v);
}

// For numbers of more than 32 bits and fractions.
double largeRemainder(double a, double b);

// The remainder of two numbers; whole ones need no library.
inline double remainderOf(double a, double b) {
    const auto wholeA = ESContext::doubleToInt32(a);
    const auto wholeB = ESContext::doubleToInt32(b);
    if (wholeA >= 0 && wholeB > 0 && wholeA == a && wholeB == b && (wholeA != 0 || !std::signbit(a))) {
        return wholeA % wholeB;
    }
    return largeRemainder(a, b);
}

// An element of a dense vector by a number as key; null when it isn't one.
inline ESValue* denseElement(ESObject* object, const ESValue& key) {
    if (key.tag != ESTagNumber) {
        return nullptr;
    }
    const std::int32_t index = ESContext::doubleToInt32(key.number);
    if (static_cast<std::uint32_t>(index) >= object->elements.count() || index != key.number) {
        return nullptr;
    }
    ESValue* element = object->elements.data() + index;
    return element->tag == ESTagHole ? nullptr : element;
}

// Appends to an array what comes right behind its last element. False when there is more to it than that.
inline bool appendElement(ESContext& ctx, ESObject* array, const ESValue& key, const ESValue& v) {
    ESElements& elements = array->elements;
    if (array->nativeClass != ctx.arrays || key.tag != ESTagNumber || key.number != elements.count() ||
        elements.count() >= indexNameWatermark || array->properties.hasIndexNames) {
        return false;
    }
    ESProperty& length = array->properties.at(0);
    if (length.atom != wellKnownAtoms.length || length.tag != ESTagNumber || length.attributes != 0) {
        return false;
    }
    elements.append(v);
    if (length.number < elements.count()) {
        length.number = elements.count();
    }
    return true;
}

inline double steppedNumber(double n, ESOpcode op) {
    return op == OP_PREINCE || op == OP_POSTINCE ? n + 1.0 : n - 1.0;
}
inline bool givesOld(ESOpcode op) { return op == OP_POSTINCE || op == OP_POSTDECE; }

// The operator on two numbers, for compound assignment to a property.
inline bool numberOperator(ESOpcode op, double a, double b, double& result) {
    switch (op) {
    case OP_ADD:
        result = a + b;
        return true;
    case OP_SUB:
        result = a - b;
        return true;
    case OP_MUL:
        result = a * b;
        return true;
    case OP_DIV:
        result = a / b;
        return true;
    case OP_BITAND:
        result = ESContext::doubleToInt32(a) & ESContext::doubleToInt32(b);
        return true;
    case OP_BITOR:
        result = ESContext::doubleToInt32(a) | ESContext::doubleToInt32(b);
        return true;
    case OP_BITXOR:
        result = ESContext::doubleToInt32(a) ^ ESContext::doubleToInt32(b);
        return true;
    default:
        return false;
    }
}

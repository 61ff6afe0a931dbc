// How a value turns into another type. The rules differ from the published language in places: the empty
// string is NaN, NaN is true, and a number with a fraction prints six significant digits.
#include "runtime/context.h"

#include <QStringView>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace {

[[noreturn]] void badTag(const char* text) { throw ESFatalError{QString::fromLatin1(text)}; }

int hexDigit(char16_t c) {
    return c >= u'0' && c <= u'9'   ? c - u'0'
           : c >= u'a' && c <= u'f' ? c - u'a' + 10
           : c >= u'A' && c <= u'F' ? c - u'A' + 10
                                    : -1;
}

double textToNumber(QStringView text) {
    // The common case first: a few decimal digits and nothing else.
    const qsizetype size = text.size();
    if (size > 0 && size <= 15) {
        double number = 0;
        qsizetype i = 0;
        while (i < size && text[i] >= u'0' && text[i] <= u'9') {
            number = number * 10 + (text[i].unicode() - u'0');
            ++i;
        }
        if (i == size) {
            return number;
        }
    }
    text = text.trimmed();
    if (text.isEmpty()) {
        return esNaN;
    }
    if (text.size() >= 2 && text[0] == u'0' && (text[1] == u'x' || text[1] == u'X')) {
        // By hand, since Qt would take a sign, blanks and one more 0x there.
        double number = text.size() > 2 ? 0 : esNaN;
        for (const QChar c : text.mid(2)) {
            const int digit = hexDigit(c.unicode());
            number = digit >= 0 ? number * 16 + digit : esNaN;
        }
        return number <= 0xFFFFFFFF ? number : esNaN;
    }
    bool ok = false;
    const double number = text.toDouble(&ok);
    return ok ? number : esNaN;
}

// Digits of an integral number, written backwards: room for the largest double in radix 2 and a sign.
using DigitBuffer = std::array<char, 1100>;

// x is integral and not zero. Below 2^63 a negative number in a radix other than 10 prints as the 64 bits of
// its two's complement; beyond, and in radix 10, the digits are exact behind a sign.
std::string_view integralText(double x, std::int32_t radix, DigitBuffer& buffer) {
    constexpr double limit = 9223372036854775808.0; // 2^63
    char* const end = buffer.data() + buffer.size();
    char* begin = end;
    const auto digit = [](std::uint64_t d) { return "0123456789abcdefghijklmnopqrstuvwxyz"[d]; };
    const auto base = static_cast<std::uint64_t>(radix);
    if (std::fabs(x) < limit) {
        const auto integer = static_cast<std::int64_t>(x);
        const bool sign = integer < 0 && radix == 10;
        auto rest = static_cast<std::uint64_t>(integer);
        rest = sign ? 0 - rest : rest;
        do {
            *--begin = digit(rest % base);
            rest /= base;
        } while (rest != 0);
        if (sign) {
            *--begin = '-';
        }
    } else {
        // The mantissa as limbs of 32 bits, low ones first, shifted by the exponent and divided digit by
        // digit.
        int exponent;
        const auto mantissa = static_cast<std::uint64_t>(std::ldexp(std::frexp(std::fabs(x), &exponent), 53));
        const auto shift = static_cast<unsigned>(exponent - 53);
        std::array<std::uint32_t, 34> limbs{};
        for (unsigned bit = 0; bit < 53; ++bit) {
            const unsigned place = bit + shift;
            limbs[place / 32] |= static_cast<std::uint32_t>(mantissa >> bit & 1) << place % 32;
        }
        for (std::size_t used = limbs.size(); used != 0;) {
            std::uint64_t rest = 0;
            for (std::size_t i = used; i-- != 0;) {
                rest = rest << 32 | limbs[i];
                limbs[i] = static_cast<std::uint32_t>(rest / base);
                rest %= base;
            }
            *--begin = digit(rest);
            while (used != 0 && limbs[used - 1] == 0) {
                --used;
            }
        }
        if (x < 0) {
            *--begin = '-';
        }
    }
    return {begin, static_cast<std::size_t>(end - begin)};
}

std::string_view fractionText(double x, DigitBuffer& buffer) {
    const auto result =
        std::to_chars(buffer.data(), buffer.data() + buffer.size(), x, std::chars_format::general, 6);
    return {buffer.data(), static_cast<std::size_t>(result.ptr - buffer.data())};
}

std::string_view numberText(double x, std::int32_t radix, DigitBuffer& buffer) {
    if (std::isnan(x)) {
        return "NaN";
    }
    if (x == 0) {
        return "0";
    }
    if (std::isinf(x)) {
        return x > 0 ? "Infinity" : "-Infinity";
    }
    double whole;
    if (x == ESContext::doubleToInt32(x) || std::modf(x, &whole) == 0) {
        return integralText(x, radix, buffer);
    }
    return fractionText(x, buffer);
}

} // namespace

bool ESContext::toBoolean(const ESValue& v) {
    switch (v.tag) {
    case ESTagUndefined:
    case ESTagNull:
        return false;
    case ESTagBoolean:
    case ESTagNumber:
        return v.number != 0.0; // NaN is unequal to 0, and so true
    case ESTagString:
    case ESTagAtom:
        return textOf(v).length() != 0;
    case ESTagObject:
        return true;
    default:
        badTag("bad type in toBoolean");
    }
}

void ESContext::toNumber(ESValue& v) {
    switch (v.tag) {
    case ESTagUndefined:
        v = numberValue(esNaN);
        return;
    case ESTagNull:
        v = numberValue(0.0);
        return;
    case ESTagBoolean:
    case ESTagNumber:
        v.tag = ESTagNumber;
        return;
    case ESTagString:
    case ESTagAtom:
        v = numberValue(textToNumber(viewOf(v)));
        return;
    case ESTagObject:
        toPrimitive(v, ESTagNumber);
        if (!v.isNumber()) {
            toNumber(v);
        }
        return;
    default:
        badTag("bad type in toNumber");
    }
}

double ESContext::toDoubleSlow(const ESValue& v) {
    ESValue copy = v;
    toNumber(copy);
    return copy.number;
}

double ESContext::toInteger(const ESValue& v) {
    const double d = toDouble(v);
    return std::isnan(d) ? 0.0 : std::trunc(d);
}

std::int32_t ESContext::doubleToInt32Slow(double d) {
    if (!std::isfinite(d)) {
        return 0;
    }
    const double r = std::fmod(std::trunc(d), 4294967296.0);
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::int64_t>(r)));
}

ESValue ESContext::toStringValue(const ESValue& v) {
    switch (v.tag) {
    case ESTagUndefined:
        return newString("undefined");
    case ESTagNull:
        return atomValue(wellKnownAtoms.null_);
    case ESTagBoolean:
        return atomValue(v.number == 0.0 ? wellKnownAtoms.false_ : wellKnownAtoms.true_);
    case ESTagNumber: {
        if (v.number >= 0 && v.number < 100 && std::floor(v.number) == v.number) {
            return atomValue(indexAtom(static_cast<std::uint32_t>(v.number)));
        }
        DigitBuffer buffer;
        const std::string_view text = numberText(v.number, 10, buffer);
        std::array<char16_t, 32> wide;
        if (text.size() > wide.size()) {
            const QString latin1 = QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
            return textValue(ESText::make(textArena(), latin1));
        }
        std::copy(text.begin(), text.end(), wide.begin());
        return textValue(
            ESText::make(textArena(), QStringView(wide.data(), static_cast<qsizetype>(text.size()))));
    }
    case ESTagString:
    case ESTagAtom:
        return v;
    case ESTagObject: {
        ESValue copy = v;
        toPrimitive(copy, ESTagString);
        return toStringValue(copy);
    }
    default:
        badTag("unknown type in toString");
    }
}

ESValue ESContext::concatenateNumber(const ESValue& left, const ESValue& right) {
    const bool numberFirst = left.isNumber();
    ESValue text = numberFirst ? right : left;
    if (!text.isString()) {
        text = toStringValue(text);
    }
    if (textOf(text).length() == 0) {
        return newStringOf(numberFirst ? left : right);
    }
    DigitBuffer buffer;
    const std::string_view digits = numberText(numberFirst ? left.number : right.number, 10, buffer);
    std::array<char16_t, 32> wide;
    if (digits.size() > wide.size()) {
        return concatenate(toStringValue(left), toStringValue(right));
    }
    std::copy(digits.begin(), digits.end(), wide.begin());
    const QStringView number(wide.data(), static_cast<qsizetype>(digits.size()));
    const ESText& other = textOf(text);
    if (other.length() + digits.size() > ESText::maxLength) {
        raiseRangeError("length too large");
    }
    return noted(numberFirst ? ESText::prepend(textArena(), number, other)
                             : ESText::append(textArena(), other, number));
}

ESValue ESContext::newStringOf(const ESValue& v) {
    const ESValue text = toStringValue(v);
    return text.tag == ESTagString ? noted(text.text) : text;
}

QString ESContext::toString(const ESValue& v, std::int32_t radix) {
    if (v.isNumber()) {
        DigitBuffer buffer;
        const std::string_view text = numberText(v.number, radix, buffer);
        return QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
    }
    return viewOf(toStringValue(v)).toString();
}

ESAtom ESContext::toAtom(const ESValue& v) {
    if (v.tag == ESTagAtom) {
        return v.atom;
    }
    if (v.tag == ESTagString) {
        return internText(*v.text);
    }
    const std::uint32_t index = arrayIndexOf(v);
    if (index != notAnIndex) {
        noteIndexName(index);
        return indexAtom(index);
    }
    const ESValue text = toStringValue(v);
    return text.tag == ESTagAtom ? text.atom : internText(*text.text);
}

void ESContext::toPrimitive(ESValue& v, ESValueTag hint) {
    if (v.object == globalObject) {
        v = newString("[object global]");
        return;
    }
    defaultValue(v.object, hint, v);
    if (v.isObject()) {
        badTag("bad type in toPrimitive");
    }
}

namespace {

// True when a String object converts as it was born: its own members decide, and nobody has replaced them.
bool convertsAsText(ESContext& ctx, const ESObject* object) {
    if (object->nativeClass != ctx.strings || object->prototype != ctx.stringPrototype ||
        object->properties.count() != 0) {
        return false;
    }
    const auto native = [&](ESAtom name) {
        const ESProperty* slot = ctx.stringPrototype->properties.find(name);
        return slot != nullptr && slot->tag == ESTagObject && slot->object->nativeClass == ctx.strings &&
               slot->object->callClosure != nullptr && slot->object->value.tag == ESTagAtom &&
               slot->object->value.atom->view().endsWith(name->view());
    };
    return native(wellKnownAtoms.toString) && native(wellKnownAtoms.valueOf);
}

} // namespace

void ESContext::defaultValue(ESObject* object, ESValueTag hint, ESValue& out) {
    if (convertsAsText(*this, object)) {
        out = object->value;
        return;
    }
    const bool textFirst = hint == ESTagString || (hint == ESTagAny && object->nativeClass == dates);
    const ESAtom first = textFirst ? wellKnownAtoms.toString : wellKnownAtoms.valueOf;
    const ESAtom second = textFirst ? wellKnownAtoms.valueOf : wellKnownAtoms.toString;
    for (const ESAtom name : {first, second}) {
        const ESValue method = get(object, name);
        if (method.isObject() && method.object->callClosure != nullptr) {
            ESValue result = undefinedValue();
            callFunction(method.object, object, 0, nullptr, result);
            if (!result.isUndefined() && !result.isObject()) {
                out = result;
                return;
            }
        }
    }
    raiseTypeError("type error: no default value");
}

void ESContext::toObject(ESValue& v) {
    switch (v.tag) {
    case ESTagUndefined:
        raiseTypeError("can't convert undefined to an object");
    case ESTagNull:
        raiseTypeError("can't convert null to an object");
    case ESTagBoolean:
        v = booleanValue(v.number != 0.0);
        wrapPrimitive(v);
        return;
    case ESTagNumber:
    case ESTagString:
    case ESTagAtom:
        wrapPrimitive(v);
        return;
    case ESTagObject:
        return;
    default:
        badTag("unknown type in toObject");
    }
}

ESObject* ESContext::objectOf(const ESValue& v) {
    ESValue copy = v;
    toObject(copy);
    return copy.object;
}

void ESContext::wrapPrimitive(ESValue& v) {
    ESObject* wrapper;
    switch (v.tag) {
    case ESTagBoolean:
        wrapper = newObject(booleanPrototype, booleans);
        break;
    case ESTagNumber:
        wrapper = newObject(numberPrototype, numbers);
        break;
    case ESTagString:
    case ESTagAtom:
        wrapper = newObject(stringPrototype, strings);
        break;
    default:
        v.tag = ESTagObject;
        return;
    }
    wrapper->value = v;
    v = objectValue(wrapper);
}

ESObject* ESContext::objectFromValue(std::int32_t argc, const ESValue* argv) {
    ESValue v = getArgument(argc, argv, 0);
    switch (v.tag) {
    case ESTagUndefined:
    case ESTagNull:
        return newPlainObject();
    case ESTagBoolean:
    case ESTagNumber:
    case ESTagString:
    case ESTagAtom:
        wrapPrimitive(v);
        return v.object;
    case ESTagObject:
        return v.object;
    default:
        raiseBaseError("unknown type in Object constructor");
    }
}

ESObject* ESContext::newArray(std::uint32_t count, const ESValue* values) {
    ESObject* array = newObject(arrayPrototype, arrays);
    array->properties.reserve(arena_, 1);
    array->properties.append(arena_, wellKnownAtoms.length, 0, numberValue(count));
    if (count != 0) {
        noteIndexNames(count);
        array->elements.reserve(count);
        for (std::uint32_t i = 0; i < count; ++i) {
            array->elements.append(values[i]);
        }
    }
    return array;
}

ESValue ESContext::bytesToArray(const std::uint8_t* bytes, std::size_t count) {
    ESObject* array = newArray(0, nullptr);
    const auto length = static_cast<std::uint32_t>(count);
    noteIndexNames(length);
    array->elements.reserve(length);
    for (std::uint32_t i = 0; i < length; ++i) {
        array->elements.append(numberValue(bytes[i]));
    }
    array->properties.at(0).setValue(numberValue(length));
    return objectValue(array);
}

std::vector<std::uint8_t> ESContext::arrayToBytes(const ESValue& v) {
    constexpr std::uint32_t mostBytes = 0x40000000;
    if (!v.isObject() || v.object->nativeClass != arrays) {
        raiseBaseError("array argument expected");
    }
    ESObject* array = v.object;
    const std::uint32_t count = toUint32(get(array, wellKnownAtoms.length));
    if (count > mostBytes) {
        raiseRangeError("length too large");
    }
    std::vector<std::uint8_t> bytes(count);
    std::uint8_t* const out = bytes.data(); // whose bounds nobody needs to check for each
    for (std::uint32_t i = 0; i < count; ++i) {
        // An element's valueOf may change the array, so its vector is looked at anew each time.
        if (i < array->elements.count() && array->elements.data()[i].isNumber()) [[likely]] {
            out[i] = static_cast<std::uint8_t>(doubleToInt32(array->elements.data()[i].number));
        } else {
            out[i] = static_cast<std::uint8_t>(toInt32(getElement(array, i)));
        }
    }
    return bytes;
}

// String values: making them, putting them together, comparing them.
#include "runtime/context.h"

#include <algorithm>
#include <cstring>

ESValue ESContext::newString(QStringView characters) {
    if (characters.size() <= 1) {
        return characters.isEmpty() ? atomValue(wellKnownAtoms.empty)
                                    : characterString(characters.front().unicode());
    }
    if (characters.size() > static_cast<qsizetype>(ESText::maxLength)) {
        raiseRangeError("length too large");
    }
    return noted(ESText::make(textArena(), characters));
}

ESValue ESContext::newString(QByteArrayView latin1) {
    if (latin1.size() <= 1) {
        return newString(QString::fromLatin1(latin1));
    }
    if (latin1.size() > static_cast<qsizetype>(ESText::maxLength)) {
        raiseRangeError("length too large");
    }
    const auto length = static_cast<std::uint32_t>(latin1.size());
    auto* characters = textArena().allocateArray<char16_t>(length);
    std::transform(latin1.begin(), latin1.end(), characters, [](char c) { return static_cast<uchar>(c); });
    return noted(ESText::makeView(textArena(), characters, length));
}

ESValue ESContext::characterString(char16_t character) {
    if (character < 256) [[likely]] {
        return atomValue(characterAtom(character));
    }
    return noted(ESText::make(textArena(), QStringView(&character, 1)));
}

ESValue ESContext::substring(const ESValue& string, std::uint32_t from, std::uint32_t length) {
    const ESText& whole = textOf(string);
    if (length <= 1) {
        return length == 0 ? atomValue(wellKnownAtoms.empty) : characterString(whole.characters()[from]);
    }
    if (length == whole.length()) {
        return string;
    }
    return noted(ESText::makePart(textArena(), whole, from, length));
}

ESValue ESContext::concatenate(const ESValue& left, const ESValue& right) {
    const ESText& a = textOf(left);
    const ESText& b = textOf(right);
    if (b.length() == 0) {
        return left;
    }
    if (a.length() == 0) {
        return right;
    }
    if (a.length() + b.length() > ESText::maxLength) {
        raiseRangeError("length too large");
    }
    return noted(ESText::concatenate(textArena(), a, b));
}

bool ESContext::sameText(const ESValue& a, const ESValue& b) {
    if (a.tag == ESTagAtom && b.tag == ESTagAtom) {
        return a.atom == b.atom;
    }
    const ESText& x = textOf(a);
    const ESText& y = textOf(b);
    return x.length() == y.length() &&
           std::memcmp(x.characters(), y.characters(), std::size_t{x.length()} * sizeof(char16_t)) == 0;
}

int ESContext::compareText(const ESValue& a, const ESValue& b) {
    const ESText& x = textOf(a);
    const ESText& y = textOf(b);
    const char16_t* p = x.characters();
    const char16_t* q = y.characters();
    const std::uint32_t common = x.length() < y.length() ? x.length() : y.length();
    for (std::uint32_t i = 0; i < common; ++i) {
        if (p[i] != q[i]) {
            return p[i] < q[i] ? -1 : 1;
        }
    }
    return x.length() == y.length() ? 0 : x.length() < y.length() ? -1 : 1;
}

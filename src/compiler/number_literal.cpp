#include "compiler/number_literal.h"

#include "compiler/character_class.h"
#include "runtime/value.h"

#include <clocale>
#include <cstdlib>
#include <string>

namespace {

// In doubles throughout: a long constant loses precision and doesn't fail.
double readRadix(const char16_t*& at, const char16_t* end, unsigned radix, ESCharacterClass digits) {
    if (at == end || !hasClass(*at, digits)) {
        return esNaN;
    }
    double value = 0.0;
    for (; at != end && hasClass(*at, digits); ++at) {
        value = value * radix + digitValue(*at);
    }
    return value;
}

void skipDigits(const char16_t*& at, const char16_t* end) {
    while (at != end && isDigit(*at)) {
        ++at;
    }
}

// The C locale's point, whatever the locale of the process.
double convert(const char16_t* start, const char16_t* stop) {
    static const locale_t cLocale = newlocale(LC_ALL_MASK, "C", nullptr);
    std::string text;
    text.reserve(static_cast<std::size_t>(stop - start));
    for (; start != stop; ++start) {
        text += static_cast<char>(*start);
    }
    return strtod_l(text.c_str(), nullptr, cLocale);
}

// Up to 15 digits are exact in a double.
bool isShortInteger(const char16_t* start, const char16_t* stop) { return stop - start <= 15; }

double shortInteger(const char16_t* start, const char16_t* stop) {
    double value = 0.0;
    for (; start != stop; ++start) {
        value = value * 10 + digitValue(*start);
    }
    return value;
}

double readDecimal(const char16_t*& at, const char16_t* end) {
    const char16_t* const start = at;
    skipDigits(at, end);
    const bool pointFollows = at != end && *at == u'.';
    const bool exponentFollows = at != end && isExponentLetter(*at);
    if (!pointFollows && !exponentFollows && isShortInteger(start, at)) {
        return shortInteger(start, at);
    }
    if (pointFollows) {
        ++at;
        skipDigits(at, end);
    }
    const char16_t* stop = at;
    if (at != end && isExponentLetter(*at)) {
        ++at;
        if (at != end && isSign(*at)) {
            ++at;
        }
        const char16_t* const digits = at;
        skipDigits(at, end);
        if (at != digits) {
            stop = at;
        }
    }
    return convert(start, stop);
}

} // namespace

double readNumberLiteral(const char16_t*& at, const char16_t* end) {
    const char16_t* const second = at + 1;
    if (*at != u'0' || second == end || *second == u'.') {
        return readDecimal(at, end);
    }
    if (*second == u'x' || *second == u'X') {
        at += 2;
        return readRadix(at, end, 16, HexDigitClass);
    }
    return readRadix(at, end, 8, OctalDigitClass);
}

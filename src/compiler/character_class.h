// What each of the first 256 characters may be part of. Characters above them are part of nothing.
#pragma once

#include <array>
#include <cstdint>

enum ESCharacterClass : std::uint8_t {
    LowerClass = 1,
    UpperClass = 2,
    OtherNameStartClass = 4, // $ and _
    DigitClass = 8,
    SignClass = 16,
    ExponentClass = 32,
    HexDigitClass = 64,
    OctalDigitClass = 128,
};

constexpr std::array<std::uint8_t, 256> characterClasses = [] {
    std::array<std::uint8_t, 256> classes{};
    const auto add = [&](unsigned first, unsigned last, ESCharacterClass flag) {
        for (unsigned c = first; c <= last; ++c) {
            classes[c] = static_cast<std::uint8_t>(classes[c] | flag);
        }
    };
    add('a', 'z', LowerClass);
    add('A', 'Z', UpperClass);
    add('$', '$', OtherNameStartClass);
    add('_', '_', OtherNameStartClass);
    add('0', '9', DigitClass);
    add('+', '+', SignClass);
    add('-', '-', SignClass);
    add('e', 'e', ExponentClass);
    add('E', 'E', ExponentClass);
    add('0', '9', HexDigitClass);
    add('a', 'f', HexDigitClass);
    add('A', 'F', HexDigitClass);
    add('0', '7', OctalDigitClass);
    return classes;
}();

constexpr bool hasClass(char16_t c, unsigned flags) { return c < 256 && (characterClasses[c] & flags) != 0; }

constexpr bool isNameStart(char16_t c) { return hasClass(c, LowerClass | UpperClass | OtherNameStartClass); }
constexpr bool isNamePart(char16_t c) {
    return hasClass(c, LowerClass | UpperClass | OtherNameStartClass | DigitClass);
}
constexpr bool isDigit(char16_t c) { return hasClass(c, DigitClass); }
constexpr bool isSign(char16_t c) { return hasClass(c, SignClass); }
constexpr bool isExponentLetter(char16_t c) { return hasClass(c, ExponentClass); }
constexpr bool isHexDigit(char16_t c) { return hasClass(c, HexDigitClass); }
constexpr bool isOctalDigit(char16_t c) { return hasClass(c, OctalDigitClass); }

// The value of a hex digit.
constexpr unsigned digitValue(char16_t c) {
    return isDigit(c) ? unsigned{c} - '0' : (unsigned{c} | 0x20u) - 'a' + 10;
}

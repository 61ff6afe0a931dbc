#include "compiler/token.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

constexpr std::size_t wordSlots = 128;
constexpr std::size_t shortestWord = 2;
constexpr std::size_t longestWord = 8;
constexpr std::uint8_t noRow = 0xFF;

constexpr std::size_t wordSlot(std::size_t first, std::size_t second, std::size_t last, std::size_t length) {
    return (first * 5 + second * 17 + last * 3 + length) % wordSlots;
}

// Open addressing over the reserved words: rows of tokenTable by slot.
constexpr std::array<std::uint8_t, wordSlots> makeWordIndex() {
    std::array<std::uint8_t, wordSlots> index{};
    index.fill(noRow);
    for (std::size_t row = 0; row < std::size(tokenTable); ++row) {
        if (tokenTable[row].role == ESTokenRole::Named) {
            continue;
        }
        const std::string_view word = tokenTable[row].text;
        const auto code = [&](std::size_t i) { return static_cast<std::size_t>(word[i]); };
        std::size_t slot = wordSlot(code(0), code(1), code(word.size() - 1), word.size());
        while (index[slot] != noRow) {
            slot = (slot + 1) % wordSlots;
        }
        index[slot] = static_cast<std::uint8_t>(row);
    }
    return index;
}

constexpr std::array<std::uint8_t, wordSlots> wordIndex = makeWordIndex();

} // namespace

QString tokenName(std::int32_t kind) {
    if (kind < TokenEnd) {
        return QString(QChar(static_cast<char16_t>(kind)));
    }
    for (const ESTokenRow& row : tokenTable) {
        if (row.kind == kind && row.role != ESTokenRole::UnprintedWord) {
            return QString::fromLatin1(row.text);
        }
    }
    return QStringLiteral("token<%1>").arg(kind);
}

std::int32_t wordKind(const char16_t* characters, std::size_t length) {
    if (length < shortestWord || length > longestWord) {
        return TokenIdentifier;
    }
    std::size_t slot = wordSlot(characters[0], characters[1], characters[length - 1], length);
    for (; wordIndex[slot] != noRow; slot = (slot + 1) % wordSlots) {
        const ESTokenRow& row = tokenTable[wordIndex[slot]];
        const std::string_view word = row.text;
        if (std::equal(word.begin(), word.end(), characters, characters + length,
                       [](char a, char16_t b) { return static_cast<char16_t>(a) == b; })) {
            return row.kind;
        }
    }
    return TokenIdentifier;
}

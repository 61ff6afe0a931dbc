#include "runtime/text.h"

#include "runtime/arena.h"
#include "runtime/atom.h"
#include "runtime/text_log.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <vector>

namespace {

// Up to this many code units a concatenation is simply copied.
constexpr std::uint32_t copyLimit = 24;

void copyCharacters(char16_t* to, const char16_t* from, std::uint32_t count) {
    if (count != 0) { // an empty view may have no address
        std::memcpy(to, from, std::size_t{count} * sizeof(char16_t));
    }
}

ESTextBuffer* newBuffer(ESArena& arena, std::uint32_t capacity) {
    const std::size_t bytes = offsetof(ESTextBuffer, characters) + std::size_t{capacity} * sizeof(char16_t);
    auto* buffer = static_cast<ESTextBuffer*>(arena.allocate(std::max(bytes, sizeof(ESTextBuffer))));
    buffer->used = 0;
    buffer->capacity = capacity;
    return buffer;
}

} // namespace

ESText* ESText::newText(void* memory, const char16_t* characters, std::uint32_t length) {
    auto* text = static_cast<ESText*>(memory);
    text->length_ = length;
    text->order_ = nextTextOrder();
    text->characters_ = characters;
    text->buffer_ = nullptr;
    text->atom_ = nullptr;
    return text;
}

// A text with its characters right behind it: two parts, put together.
const ESText* ESText::makeOf(ESArena& arena, QStringView left, QStringView right) {
    const auto length = static_cast<std::uint32_t>(left.size() + right.size());
    auto* memory =
        static_cast<std::byte*>(arena.allocate(sizeof(ESText) + std::size_t{length} * sizeof(char16_t)));
    auto* copy = reinterpret_cast<char16_t*>(memory + sizeof(ESText));
    copyCharacters(copy, left.utf16(), static_cast<std::uint32_t>(left.size()));
    copyCharacters(copy + left.size(), right.utf16(), static_cast<std::uint32_t>(right.size()));
    return newText(memory, copy, length);
}

const ESText* ESText::makeView(ESArena& arena, const char16_t* characters, std::uint32_t length) {
    return newText(arena.allocate(sizeof(ESText)), characters, length);
}

const ESText* ESText::make(ESArena& arena, QStringView characters) { return makeOf(arena, characters, {}); }

const ESText* ESText::makePart(ESArena& arena, const ESText& whole, std::uint32_t from,
                               std::uint32_t length) {
    return makeView(arena, whole.characters() + from, length);
}

// This text with more characters behind it, in place; null where its buffer has no room or goes on otherwise.
const ESText* ESText::extended(ESArena& arena, const char16_t* characters, std::uint32_t length) const {
    if (!isFlat() || buffer_ == nullptr || characters_ + length_ != buffer_->characters + buffer_->used ||
        buffer_->capacity - buffer_->used < length) {
        return nullptr;
    }
    ESText* text = newText(arena.allocate(sizeof(ESText)), characters_, length_ + length);
    copyCharacters(buffer_->characters + buffer_->used, characters, length);
    buffer_->used += length;
    text->buffer_ = buffer_;
    return text;
}

const ESText* ESText::concatenate(ESArena& arena, const ESText& left, const ESText& right) {
    if (right.isFlat()) {
        if (const ESText* text = left.extended(arena, right.characters_, right.length_)) {
            return text;
        }
    }
    const std::uint32_t length = left.length_ + right.length_;
    if (length <= copyLimit) {
        return makeOf(arena, left.view(), right.view());
    }
    ESText* text = newText(arena.allocate(sizeof(ESText)), nullptr, length);
    text->left_ = &left;
    text->right_ = &right;
    return text;
}

const ESText* ESText::append(ESArena& arena, const ESText& left, QStringView right) {
    const auto length = static_cast<std::uint32_t>(right.size());
    if (const ESText* text = left.extended(arena, right.utf16(), length)) {
        return text;
    }
    return left.length_ + length <= copyLimit ? makeOf(arena, left.view(), right)
                                              : concatenate(arena, left, *make(arena, right));
}

const ESText* ESText::prepend(ESArena& arena, QStringView left, const ESText& right) {
    return static_cast<std::uint32_t>(left.size()) + right.length_ <= copyLimit
               ? makeOf(arena, left, right.view())
               : concatenate(arena, *make(arena, left), right);
}

void ESText::release(ESArena& arena, const ESText* text) {
    const auto* own = reinterpret_cast<const char16_t*>(text + 1);
    if (text->characters_ == own) {
        textLog.forget(text);
        arena.takeBack(const_cast<ESText*>(text),
                       sizeof(ESText) + std::size_t{text->length_} * sizeof(char16_t));
    }
}

// Walks the halves from the right end to the left without recursion, since a text that was appended to
// 200,000 times is that deep on its left side. Where the leftmost part has room behind it, it stays in place.
void ESText::flatten() const {
    const ESText* leftmost = left_;
    while (!leftmost->isFlat()) {
        leftmost = leftmost->left_;
    }
    ESTextBuffer* buffer = leftmost->buffer_;
    const bool inPlace = buffer != nullptr &&
                         leftmost->characters_ + leftmost->length_ == buffer->characters + buffer->used &&
                         buffer->capacity - buffer->used >= length_ - leftmost->length_;
    char16_t* start;
    if (inPlace) {
        start = const_cast<char16_t*>(leftmost->characters_);
        buffer->used += length_ - leftmost->length_;
    } else {
        // A text that grew by appending will go on growing: leave room.
        const bool grows = right_->length_ < left_->length_;
        const std::uint32_t room = grows ? length_ / 2 + 16 : 0;
        buffer = newBuffer(textArena(), length_ + room);
        buffer->used = length_;
        start = buffer->characters;
    }
    copyParts(start + length_);
    characters_ = start;
    buffer_ = buffer;
    atom_ = nullptr;
}

// Writes a concatenation's characters in front of `end`. What lies there already is left.
void ESText::copyParts(char16_t* end) const {
    std::vector<const ESText*> pending{left_, right_};
    while (!pending.empty()) {
        const ESText* part = pending.back();
        pending.pop_back();
        if (!part->isFlat()) {
            pending.push_back(part->left_);
            pending.push_back(part->right_);
            continue;
        }
        end -= part->length_;
        if (end != part->characters_) {
            copyCharacters(end, part->characters_, part->length_);
        }
    }
}

QStringView ESText::peek(char16_t* room) const {
    if (!isFlat()) {
        copyParts(room + length_);
    }
    return QStringView(isFlat() ? characters_ : room, static_cast<qsizetype>(length_));
}

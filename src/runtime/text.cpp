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

// Without recursion, since a text that was appended to 200,000 times is that deep on its left side. Where the
// leftmost part has room behind it, or the rightmost in front, that part stays in place.
void ESText::flatten() const {
    const ESText* leftmost = left_;
    while (!leftmost->isFlat()) {
        leftmost = leftmost->left_;
    }
    const ESText* rightmost = right_;
    while (!rightmost->isFlat()) {
        rightmost = rightmost->right_;
    }
    const std::uint32_t behind = length_ - leftmost->length_;
    const std::uint32_t before = length_ - rightmost->length_;
    ESTextBuffer* buffer = leftmost->buffer_;
    if (buffer != nullptr && leftmost->characters_ + leftmost->length_ == buffer->characters + buffer->used &&
        buffer->capacity - buffer->used >= behind) {
        copyParts(buffer->characters + buffer->used + behind);
        buffer->used += behind;
        characters_ = leftmost->characters_;
    } else if (buffer = rightmost->buffer_; buffer != nullptr && buffer->first >= before &&
                                            rightmost->characters_ == buffer->characters + buffer->first) {
        copyParts(buffer->characters + buffer->first + rightmost->length_);
        buffer->first -= before;
        characters_ = buffer->characters + buffer->first;
    } else {
        // A text that grew at an end will go on growing there: leave room.
        const std::uint32_t room = left_->length_ != right_->length_ ? length_ / 2 + 16 : 0;
        buffer = newBuffer(textArena(), length_ + room);
        buffer->first = left_->length_ < right_->length_ ? room : 0;
        buffer->used = buffer->first + length_;
        copyParts(buffer->characters + buffer->used);
        characters_ = buffer->characters + buffer->first;
    }
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

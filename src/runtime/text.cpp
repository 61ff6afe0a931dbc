#include "runtime/text.h"

#include "runtime/arena.h"
#include "runtime/atom.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

// Up to this many code units a concatenation is simply copied.
constexpr std::uint32_t copyLimit = 24;

void copyCharacters(char16_t* to, const char16_t* from, std::uint32_t count) {
    std::memcpy(to, from, std::size_t{count} * sizeof(char16_t));
}

ESTextBuffer* newBuffer(ESArena& arena, std::uint32_t capacity) {
    const std::size_t bytes = offsetof(ESTextBuffer, characters) + std::size_t{capacity} * sizeof(char16_t);
    auto* buffer = static_cast<ESTextBuffer*>(arena.allocate(std::max(bytes, sizeof(ESTextBuffer))));
    buffer->used = 0;
    buffer->capacity = capacity;
    return buffer;
}

} // namespace

ESArena& textArena() {
    static ESArena arena;
    return arena;
}

const ESText* ESText::makeView(ESArena& arena, const char16_t* characters, std::uint32_t length) {
    auto* text = static_cast<ESText*>(arena.allocate(sizeof(ESText)));
    text->length_ = length;
    text->order_ = nextTextOrder();
    text->characters_ = characters;
    text->buffer_ = nullptr;
    text->atom_ = nullptr;
    return text;
}

const ESText* ESText::make(ESArena& arena, QStringView characters) {
    const auto length = static_cast<std::uint32_t>(characters.size());
    auto* copy = arena.allocateArray<char16_t>(std::max(length, 1u));
    copyCharacters(copy, characters.utf16(), length);
    return makeView(arena, copy, length);
}

const ESText* ESText::makePart(ESArena& arena, const ESText& whole, std::uint32_t from, std::uint32_t length) {
    return makeView(arena, whole.characters() + from, length);
}

const ESText* ESText::concatenate(ESArena& arena, const ESText& left, const ESText& right) {
    const std::uint32_t length = left.length_ + right.length_;
    if (left.isFlat() && left.buffer_ != nullptr && right.isFlat()) {
        ESTextBuffer* buffer = left.buffer_;
        const bool atEnd = left.characters_ + left.length_ == buffer->characters + buffer->used;
        if (atEnd && buffer->capacity - buffer->used >= right.length_) {
            copyCharacters(buffer->characters + buffer->used, right.characters_, right.length_);
            buffer->used += right.length_;
            auto* text = const_cast<ESText*>(makeView(arena, left.characters_, length));
            text->buffer_ = buffer;
            return text;
        }
    }
    if (length <= copyLimit) {
        auto* copy = arena.allocateArray<char16_t>(std::max(length, 1u));
        copyCharacters(copy, left.characters(), left.length_);
        copyCharacters(copy + left.length_, right.characters(), right.length_);
        return makeView(arena, copy, length);
    }
    auto* text = const_cast<ESText*>(makeView(arena, nullptr, length));
    text->left_ = &left;
    text->right_ = &right;
    return text;
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
    std::vector<const ESText*> pending{left_, right_};
    char16_t* end = start + length_;
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
    characters_ = start;
    buffer_ = buffer;
    atom_ = nullptr;
}

#include "runtime/object.h"

#include "runtime/arena.h"

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

#ifdef QUORVANE_TINY_LIMITS
constexpr std::uint32_t indexedFrom = 2;
#else
constexpr std::uint32_t indexedFrom = 8; // up to this many slots a scan is as fast as an index
#endif

std::uint32_t nextCapacity(std::uint32_t capacity) {
#ifdef QUORVANE_TINY_LIMITS
    if (capacity < 64) { // not above: the arena keeps what a large table leaves behind
        return capacity + 1;
    }
#endif
    return capacity == 0 ? 1 : capacity < 4 ? capacity * 2 : capacity + capacity / 2 + (capacity & 1);
}

} // namespace

ESProperty& ESPropertyTable::append(ESArena& arena, ESAtom atom, std::uint32_t attributes,
                                    const ESValue& value) {
    if (count_ == capacity_) {
        grow(arena, nextCapacity(capacity_));
    }
    if (atom != nullptr) {
        if (index_ != nullptr) {
            if ((count_ + 1) * 2 > indexSize_) {
                rebuildIndex(arena);
            }
            enterIndex(atom, count_);
        }
        mask_ |= maskBit(atom);
        hasIndexNames = hasIndexNames || atom->arrayIndex != notAnIndex;
    }
    appended_ = pinned_;
    ESProperty& slot = slots_[count_];
    slot.atom = atom;
    slot.attributes = attributes;
    slot.setValue(value);
    ++count_;
    if (index_ == nullptr && count_ > indexedFrom) {
        rebuildIndex(arena);
    }
    return slot;
}

void ESPropertyTable::erase(ESProperty& slot) {
    slot.atom = nullptr;
    slot.attributes = 0;
    slot.setValue(undefinedValue());
    ++dead_;
}

void ESPropertyTable::reserve(ESArena& arena, std::uint32_t capacity) {
    if (capacity > capacity_) {
        grow(arena, capacity);
    }
}

void ESPropertyTable::adopt(ESProperty* piece, std::uint32_t count, std::uint64_t mask) {
    slots_ = piece;
    count_ = capacity_ = count;
    mask_ = mask;
    pinned_ = true;
}

// Nobody can tell positions apart but those who pinned them, so a table that is half empty is compacted
// instead of growing.
void ESPropertyTable::grow(ESArena& arena, std::uint32_t capacity) {
    const bool compact = !pinned_ && dead_ > count_ / 2;
    if (compact) {
        ESProperty* end =
            std::remove_if(slots_, slots_ + count_, [](const ESProperty& s) { return s.atom == nullptr; });
        count_ = static_cast<std::uint32_t>(end - slots_);
        dead_ = 0;
    } else {
        auto* moved =
            static_cast<ESProperty*>(arena.allocateBlock(std::size_t{capacity} * sizeof(ESProperty)));
        if (count_ != 0) {
            std::memcpy(static_cast<void*>(moved), slots_, std::size_t{count_} * sizeof(ESProperty));
        }
        if (!pinned_) { // an activation's slots lie in one piece with it
            arena.releaseBlock(slots_, std::size_t{capacity_} * sizeof(ESProperty));
        }
        slots_ = moved;
        capacity_ = capacity;
    }
    if (compact && index_ != nullptr) {
        rebuildIndex(arena);
    }
}

void ESPropertyTable::rebuildIndex(ESArena& arena) {
    const std::uint32_t size = std::bit_ceil(count_ * 2 + 2);
    if (index_ == nullptr || size > indexSize_) {
        auto* index =
            static_cast<std::uint32_t*>(arena.allocateBlock(std::size_t{size} * sizeof(std::uint32_t)));
        arena.releaseBlock(index_, std::size_t{indexSize_} * sizeof(std::uint32_t));
        index_ = index;
        indexSize_ = size;
    }
    std::memset(index_, 0, std::size_t{indexSize_} * sizeof(std::uint32_t));
    for (std::uint32_t i = 0; i < count_; ++i) {
        if (slots_[i].atom != nullptr) {
            enterIndex(slots_[i].atom, i);
        }
    }
}

// An entry of an erased slot stays in the index until it serves again; its slot has no atom, so the search
// passes over it.
void ESPropertyTable::enterIndex(ESAtom atom, std::uint32_t position) {
    std::uint32_t entry = atom->hash & (indexSize_ - 1);
    while (index_[entry] != 0 && slots_[index_[entry] - 1].atom != nullptr) {
        entry = (entry + 1) & (indexSize_ - 1);
    }
    index_[entry] = position + 1;
}

ESProperty* ESPropertyTable::findIndexed(ESAtom atom) {
    std::uint32_t entry = atom->hash & (indexSize_ - 1);
    while (const std::uint32_t found = index_[entry]) {
        if (slots_[found - 1].atom == atom) {
            return &slots_[found - 1];
        }
        entry = (entry + 1) & (indexSize_ - 1);
    }
    return nullptr;
}

// What removeFirst() left in front counts as room again.
void ESElements::reserve(std::uint32_t capacity) {
    if (capacity <= capacity_) {
        return;
    }
    ESValue* const base = data_ - removed_;
    if (removed_ != 0) {
        std::memmove(static_cast<void*>(base), data_, std::size_t{count_} * sizeof(ESValue));
        data_ = base;
        capacity_ += removed_;
        removed_ = 0;
        if (capacity <= capacity_) {
            return;
        }
    }
    auto* data = static_cast<ESValue*>(
        std::realloc(static_cast<void*>(base), std::size_t{capacity} * sizeof(ESValue)));
    if (data == nullptr) {
        throw std::bad_alloc();
    }
    data_ = data;
    capacity_ = capacity;
}

// Entries are moved to the front only where at least half of the memory is free by that.
void ESElements::makeRoom() {
    reserve(removed_ > count_ ? count_ + 1 : removed_ + std::max(count_ + count_ / 2, 4u));
}

void ESElements::resize(std::uint32_t count) {
    if (count > count_) {
        reserve(count > capacity_ ? std::max(count, capacity_ + capacity_ / 2) : count);
        ESValue hole = undefinedValue();
        hole.tag = ESTagHole;
        std::fill(data_ + count_, data_ + count, hole);
        mayHaveHoles_ = true;
    }
    count_ = count;
}

void ESElements::removeFirst() {
    ++data_;
    --count_;
    --capacity_;
    ++removed_;
}

bool ESElements::hasHoles() const {
    mayHaveHoles_ = mayHaveHoles_ &&
                    std::any_of(data_, data_ + count_, [](const ESValue& v) { return v.tag == ESTagHole; });
    return mayHaveHoles_;
}

void ESElements::release() {
    std::free(data_ - removed_);
    data_ = nullptr;
    count_ = capacity_ = removed_ = 0;
}

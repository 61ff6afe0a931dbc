#include "runtime/text_log.h"

#include "runtime/atom.h"
#include "runtime/text_hash.h"

#include <algorithm>
#include <array>
#include <bit>
#include <new>

namespace {

#ifdef QUORVANE_TINY_LIMITS
constexpr int firstBits = 2;
#else
constexpr int firstBits = 10;
#endif
constexpr int mostBits = 20; // two such tables hold all

} // namespace

void ESTextLog::noteSlow(const ESText* text) {
    if (internsEvery_) {
        internText(*text);
        return;
    }
    const auto count = static_cast<std::uint32_t>(next_ - pending_.get());
    if (noted_ + count >= mostTexts) {
        return;
    }
    capacity_ = std::max(capacity_ * 2, 1024u);
    const ESText** const old = pending_.release();
    auto* grown = static_cast<const ESText**>(std::realloc(old, capacity_ * sizeof(void*)));
    pending_.reset(grown != nullptr ? grown : old);
    next_ = pending_.get() + count;
    if (grown == nullptr) {
        capacity_ = count;
        end_ = next_;
        throw std::bad_alloc();
    }
    end_ = grown + std::min(capacity_, mostTexts - noted_);
    *next_++ = text;
}

ESTextLog::Sighting& ESTextLog::Table::slotOf(std::uint64_t hash) {
    const std::size_t mask = slots.size() - 1;
    const auto tag = static_cast<std::uint32_t>(hash);
    std::size_t slot = hash >> (64 - bits);
    for (std::size_t step = 1; slots[slot].order != 0 && slots[slot].tag != tag; ++step) {
        slot = (slot + step) & mask;
    }
    return slots[slot];
}

void ESTextLog::enter(const ESText& text, std::uint32_t expected) {
    if (const ESAtom atom = text.knownAtom(); atom != nullptr && atom->order <= text.order()) {
        return;
    }
    std::array<char16_t, mostUnits> buffer;
    const std::uint64_t hash = hashOf(text.peek(buffer.data()));
    for (Table& table : tables_) {
        if (table.slotOf(hash).order != 0) {
            return;
        }
    }
    if (tables_.empty() || tables_.back().used * 4 >= tables_.back().slots.size() * 3) {
        const auto wanted = static_cast<int>(std::bit_width(expected + expected / 3));
        const int bits =
            std::min(std::max(wanted, tables_.empty() ? firstBits : tables_.back().bits + 2), mostBits);
        tables_.push_back({bits, 0, std::vector<Sighting>(std::size_t{1} << bits)});
    }
    ++tables_.back().used;
    tables_.back().slotOf(hash) = {static_cast<std::uint32_t>(hash), text.order()};
}

void ESTextLog::sortOut(std::uint32_t order) {
    const auto count = static_cast<std::uint32_t>(next_ - pending_.get());
    for (; sorted_ < count && pending_[sorted_]->order() < order; ++sorted_) {
        enter(*pending_[sorted_], count - sorted_);
    }
    if (sorted_ == count) {
        noted_ += count;
        sorted_ = 0;
        next_ = pending_.get();
        end_ = next_ + std::min(capacity_, mostTexts - noted_);
    }
}

std::uint32_t ESTextLog::firstOrder(QStringView characters, std::uint32_t order) {
    sortOut(order);
    if (characters.size() > static_cast<qsizetype>(mostUnits) || tables_.empty()) {
        return order;
    }
    const std::uint64_t hash = hashOf(characters);
    for (Table& table : tables_) {
        if (const std::uint32_t first = table.slotOf(hash).order; first != 0) {
            return std::min(first, order);
        }
    }
    return order;
}

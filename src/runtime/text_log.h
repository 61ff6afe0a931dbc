// When texts were first made. A name takes its place in `for in` from the first text with its characters,
// though nobody knows then that it will become a name. Interning every text would cost too much: each is
// noted by its address, and its characters are looked at only when a `for in` meets a name that may be older
// than its atom.
#pragma once

#include "runtime/text.h"

#include <cstdlib>
#include <memory>
#include <vector>

class ESTextLog {
public:
    static constexpr std::uint32_t mostTexts = 1'000'000; // later ones aren't noted
    static constexpr std::uint32_t mostUnits = 256;       // nor are longer ones

    // A script gets this text. Throws std::bad_alloc.
    void note(const ESText* text) {
        if (text->length() <= mostUnits) {
            if (next_ == end_) [[unlikely]] {
                noteSlow(text);
                return;
            }
            *next_++ = text;
        }
    }
    // The memory of the text made last serves again.
    void forget(const ESText* text) {
        if (next_ != pending_.get() && next_[-1] == text) {
            --next_;
        }
    }
    // Keeps the noted texts that are older than `order` by their hashes, and no longer by their addresses: to
    // be called with UINT32_MAX before any text's memory is given back. Throws std::bad_alloc.
    void sortOut(std::uint32_t order);
    // The order of the first noted text with these characters if it is older than `order`, else `order`.
    std::uint32_t firstOrder(QStringView characters, std::uint32_t order);

    // Makes an atom of each text at once, the slow way to the same order. Only tests call it, before any run.
    void internEveryText() { internsEvery_ = true; }

private:
    // First sightings lie in tables of ever larger size, none of which grows, so that 8 bytes are enough for
    // each: more of the hash lies in its place. Slots are empty where order is 0.
    struct Sighting {
        std::uint32_t tag;
        std::uint32_t order;
    };
    struct Table {
        int bits;
        std::uint32_t used;
        std::vector<Sighting> slots;
        Sighting& slotOf(std::uint64_t hash);
    };

    void noteSlow(const ESText* text);
    void enter(const ESText& text, std::uint32_t expected);

    struct Free {
        void operator()(void* memory) const { std::free(memory); }
    };
    std::unique_ptr<const ESText*[], Free> pending_; // up to next_; grows by realloc
    std::uint32_t capacity_ = 0;
    const ESText** next_ = nullptr;
    const ESText** end_ = nullptr;
    std::uint32_t sorted_ = 0;  // of the pending ones
    std::uint32_t noted_ = 0;   // before those that are pending
    std::vector<Table> tables_; // the last one takes what comes
    bool internsEvery_ = false;
};

inline ESTextLog textLog;

// The program as its processor sees it: which addresses of one address space the file holds bytes for. Where
// program headers overlap, the last in the file decides, which is settled once here so that reading a range
// of any length takes time in proportion to what is read.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

// Bytes of the image at consecutive addresses. Addresses are 32-bit; `end` may be 2^32.
struct AddressRun {
    std::uint64_t start;
    std::uint64_t end;
    std::uint8_t* data;
};

class AddressMap {
public:
    AddressMap() = default;
    // The runs in the order of the program headers, overlapping or not. What passes 2^32 is cut off.
    explicit AddressMap(std::vector<AddressRun> programs);

    // Calls onBytes(span) and onGap(length) in turn so that they make up the range from `address` on.
    template <typename OnBytes, typename OnGap>
    void forEachPiece(std::uint32_t address, std::uint64_t length, OnBytes onBytes, OnGap onGap) const {
        std::uint64_t position = address;
        const std::uint64_t end = position + length;
        auto run = std::upper_bound(runs_.begin(), runs_.end(), position,
                                    [](std::uint64_t at, const AddressRun& r) { return at < r.end; });
        while (position < end) {
            const std::uint64_t runStart = run == runs_.end() ? end : std::min(end, run->start);
            if (position < runStart) {
                onGap(runStart - position);
                position = runStart;
                continue;
            }
            const std::uint64_t runEnd = std::min(end, run->end);
            onBytes(std::span<const std::uint8_t>(run->data + (position - run->start), runEnd - position));
            position = runEnd;
            ++run;
        }
    }

    // The bytes of the range if they lie in one piece.
    std::optional<std::span<std::uint8_t>> piece(std::uint32_t address, std::uint64_t length) const;

private:
    void append(std::uint64_t start, std::uint64_t end, const AddressRun& program);

    std::vector<AddressRun> runs_; // ascending, apart from each other or of different data
};

// Which program header holds a range whole: the first in the file that does, as patches want it.
class ProgramFinder {
public:
    ProgramFinder() = default;
    // The runs in the order of the program headers.
    explicit ProgramFinder(const std::vector<AddressRun>& programs);

    // The number of the first run with start <= `start` and `end` <= end. An empty range may lie at a run's
    // end.
    std::optional<std::size_t> find(std::uint64_t start, std::uint64_t end) const;

private:
    struct Entry {
        std::uint64_t end;
        std::size_t first; // of the runs of this entry and those before it
    };

    // A Fenwick tree over the runs by their start; a node has its runs from the one that ends last downwards.
    std::vector<std::uint64_t> starts_;
    std::vector<std::vector<Entry>> nodes_;
};

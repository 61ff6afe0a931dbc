#include "elf/address_map.h"

#include <functional>
#include <set>

namespace {

constexpr std::uint64_t addressLimit = std::uint64_t{1} << 32;

struct Edge {
    std::uint64_t position;
    std::size_t program;
    bool isStart;
};

} // namespace

AddressMap::AddressMap(std::vector<AddressRun> programs) {
    std::vector<Edge> edges;
    for (std::size_t i = 0; i < programs.size(); ++i) {
        AddressRun& program = programs[i];
        program.end = std::min(program.end, addressLimit);
        if (program.start < program.end) {
            edges.push_back({program.start, i, true});
            edges.push_back({program.end, i, false});
        }
    }
    std::sort(edges.begin(), edges.end(),
              [](const Edge& a, const Edge& b) { return a.position < b.position; });

    std::set<std::size_t, std::greater<>> open; // the programs at the current position, the last one first
    std::uint64_t position = 0;
    for (const Edge& edge : edges) {
        if (!open.empty() && position < edge.position) {
            append(position, edge.position, programs[*open.begin()]);
        }
        position = edge.position;
        if (edge.isStart) {
            open.insert(edge.program);
        } else {
            open.erase(edge.program);
        }
    }
}

std::optional<std::span<std::uint8_t>> AddressMap::piece(std::uint32_t address, std::uint64_t length) const {
    const auto run = std::upper_bound(runs_.begin(), runs_.end(), std::uint64_t{address},
                                      [](std::uint64_t at, const AddressRun& r) { return at < r.end; });
    if (run == runs_.end() || address < run->start || address + length > run->end) {
        return std::nullopt;
    }
    return std::span(run->data + (address - run->start), length);
}

void AddressMap::append(std::uint64_t start, std::uint64_t end, const AddressRun& program) {
    std::uint8_t* data = program.data + (start - program.start);
    if (!runs_.empty() && runs_.back().end == start &&
        runs_.back().data + (start - runs_.back().start) == data) {
        runs_.back().end = end;
    } else {
        runs_.push_back({start, end, data});
    }
}

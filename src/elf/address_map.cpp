#include "elf/address_map.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <numeric>
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

ProgramFinder::ProgramFinder(const std::vector<AddressRun>& programs) : nodes_(programs.size() + 1) {
    std::vector<std::size_t> order(programs.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(),
              [&](std::size_t a, std::size_t b) { return programs[a].start < programs[b].start; });
    for (std::size_t i = 0; i < order.size(); ++i) {
        starts_.push_back(programs[order[i]].start);
        for (std::size_t node = i + 1; node < nodes_.size(); node += node & -node) {
            nodes_[node].push_back({programs[order[i]].end, order[i]});
        }
    }
    for (std::vector<Entry>& node : nodes_) {
        std::sort(node.begin(), node.end(), [](const Entry& a, const Entry& b) { return a.end > b.end; });
        for (std::size_t i = 1; i < node.size(); ++i) {
            node[i].first = std::min(node[i].first, node[i - 1].first);
        }
    }
}

std::optional<std::size_t> ProgramFinder::find(std::uint64_t start, std::uint64_t end) const {
    std::size_t first = starts_.size();
    const auto behind = std::upper_bound(starts_.begin(), starts_.end(), start);
    for (auto node = static_cast<std::size_t>(behind - starts_.begin()); node > 0; node -= node & -node) {
        const std::vector<Entry>& entries = nodes_[node];
        const auto below = std::partition_point(entries.begin(), entries.end(),
                                                [end](const Entry& entry) { return entry.end >= end; });
        if (below != entries.begin()) {
            first = std::min(first, std::prev(below)->first);
        }
    }
    return first == starts_.size() ? std::nullopt : std::optional(first);
}

// Finds symbols by their demangled names without demangling them all: 200,000 C++ names take a third of a
// second, which a script that asks for three of them shouldn't wait for. The index files every symbol under
// something that the asked name must contain (name_keys.h) and demangles what is left over. When lookups
// have cost a good part of demangling everything, the index becomes complete: all names are demangled, kept,
// and filed under their text. Symbols that share an entry of the string table with an earlier one are in no
// index: they can't be the answer, and a hostile file may have all its symbols share a name that costs much.
#pragma once

#include "elf/symbol_table.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

class SymbolIndex {
public:
    // Looks at the table as long as it lives. `complete` starts with everything demangled, as it always is in
    // the ARM style.
    explicit SymbolIndex(const SymbolTable& table, bool complete = false);

    // The first symbol in the order of the file that has this demangled name. Names that are empty or begin
    // with "$" are no one's: they mark what kind of bytes follow.
    std::optional<std::uint32_t> find(std::string_view name);

    // How many symbols it has filed; one may count twice.
    std::size_t size() const { return postings_.size(); }

private:
    static constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();

    struct Posting {
        std::uint32_t key;
        std::uint32_t symbol;
    };
    enum class KeyKind : std::uint32_t { Name, Identifier };

    static std::uint32_t hashed(std::string_view text, KeyKind kind);
    void file(std::uint32_t symbol);
    void fileText(std::uint32_t symbol, std::string_view name, std::size_t limit);
    bool hasName(std::uint32_t symbol, std::string_view name) const;
    void build();
    void becomeComplete();
    template <typename Visitor>
    void visit(std::uint32_t key, Visitor visitor) const;
    std::uint32_t lookUp(std::string_view name);
    std::uint32_t lookUpOnce(std::string_view name);
    std::uint32_t firstOfIdentifiers(std::string_view name, std::uint32_t before);
    std::uint32_t firstStillMangled(std::string_view name, std::uint32_t before);

    const SymbolTable& table_;
    bool complete_;
    // Postings by the top bits of their keys, in the order of the file within a bucket.
    std::vector<std::uint32_t> bucketStart_;
    std::vector<Posting> postings_;
    std::vector<Posting> filed_; // while it is built, in the order of the file
    int bucketShift_ = 0;
    // While it isn't complete:
    std::vector<std::uint32_t> mangled_; // symbols filed under an identifier
    std::unordered_map<std::string, std::uint32_t> answers_;
    std::uint64_t work_ = 0; // what lookups have cost, in looks at a candidate
    // When it is: the demangled names one after the other, symbol i's from textStart_[i] on. An empty one
    // stands for a name that isn't kept, or that an earlier symbol has.
    std::string texts_;
    std::vector<std::size_t> textStart_;
};

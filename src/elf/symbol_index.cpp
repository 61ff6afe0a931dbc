#include "elf/symbol_index.h"

#include "elf/name_keys.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

namespace {

constexpr std::size_t hashedLength = 256;    // names that differ later only share a bucket
constexpr std::size_t keptLength = 1024;     // so that a hostile file can't fill the memory with names
constexpr std::uint64_t demanglingWork = 16; // against a look at a candidate

// Words of a name that a symbol must have in its mangled form too.
class RequiredWords {
public:
    explicit RequiredWords(std::string_view name) {
        std::size_t position = 0;
        for (auto word = nextWord(name, position); !word.empty() && count_ < words_.size();
             word = nextWord(name, position)) {
            if (const std::string_view part = requiredPart(word); !part.empty()) {
                words_[count_++] = part;
            }
        }
    }

    bool areIn(std::string_view mangled) const {
        return std::all_of(words_.begin(), words_.begin() + count_, [&](std::string_view word) {
            return mangled.find(word) != std::string_view::npos;
        });
    }

private:
    std::array<std::string_view, 8> words_; // more say little more
    std::size_t count_ = 0;
};

} // namespace

SymbolIndex::SymbolIndex(const SymbolTable& table, bool complete)
    : table_(table), complete_(complete || table.style() == NameStyle::Arm) {
    build();
}

// Eight bytes a step; what matters is that it is quick on some hundred thousand short texts.
std::uint32_t SymbolIndex::hashed(std::string_view text, KeyKind kind) {
    constexpr std::uint64_t multiplier = 0x9E3779B97F4A7C15;
    text = text.substr(0, hashedLength);
    std::uint64_t hash = text.size() + (static_cast<std::uint64_t>(kind) << 32);
    std::uint64_t piece = 0;
    for (; text.size() >= sizeof(piece); text.remove_prefix(sizeof(piece))) {
        std::memcpy(&piece, text.data(), sizeof(piece));
        hash = std::rotl((hash ^ piece) * multiplier, 29);
    }
    piece = 0;
    text.copy(reinterpret_cast<char*>(&piece), text.size());
    hash = (hash ^ piece) * multiplier;
    return static_cast<std::uint32_t>((hash ^ (hash >> 29)) * multiplier >> 32);
}

std::uint32_t SymbolIndex::keyOfSymbol(std::uint32_t symbol) {
    const std::string_view name = withoutExtraUnderscore(table_.shortName(symbol));
    if (complete_) {
        const std::string text = demangle(name, table_.style());
        textStart_.push_back(texts_.size());
        texts_.append(text.size() <= keptLength ? text : std::string());
        return hashed(text, KeyKind::Name);
    }
    const NameKey key = keyOfName(name);
    if (key.kind == NameKind::Mangled) {
        mangled_.push_back(symbol);
        return hashed(key.text, KeyKind::Identifier);
    }
    return hashed(key.kind == NameKind::Plain ? std::string(name) : demangle(name, table_.style()),
                  KeyKind::Name);
}

bool SymbolIndex::hasName(std::uint32_t symbol, std::string_view name) const {
    if (complete_ && textStart_[symbol + 1] > textStart_[symbol]) {
        return std::string_view(texts_).substr(textStart_[symbol],
                                               textStart_[symbol + 1] - textStart_[symbol]) == name;
    }
    return table_.hasName(symbol, name);
}

void SymbolIndex::build() {
    const std::uint32_t count = table_.count();
    // Some eight to a bucket, so that filling the buckets stays within the nearer caches.
    const int bucketBits = std::max(1, static_cast<int>(std::bit_width(count)) - 4);
    bucketShift_ = 32 - bucketBits;
    std::vector<std::uint32_t> keys(count);
    std::vector<std::uint32_t> ends((std::size_t{1} << bucketBits) + 1);
    for (std::uint32_t symbol = 0; symbol < count; ++symbol) {
        keys[symbol] = keyOfSymbol(symbol);
        ++ends[(keys[symbol] >> bucketShift_) + 1];
    }
    textStart_.push_back(texts_.size());
    for (std::size_t bucket = 1; bucket < ends.size(); ++bucket) {
        ends[bucket] += ends[bucket - 1];
    }
    bucketStart_ = ends;
    postings_.resize(count);
    for (std::uint32_t symbol = 0; symbol < count; ++symbol) {
        postings_[ends[keys[symbol] >> bucketShift_]++] = {keys[symbol], symbol};
    }
}

// Goes through the symbols of a key in the order of the file until the visitor returns true.
template <typename Visitor>
void SymbolIndex::visit(std::uint32_t key, Visitor visitor) const {
    const std::size_t bucket = key >> bucketShift_;
    for (std::size_t i = bucketStart_[bucket]; i < bucketStart_[bucket + 1]; ++i) {
        if (postings_[i].key == key && visitor(postings_[i].symbol)) {
            return;
        }
    }
}

std::optional<std::uint32_t> SymbolIndex::find(std::string_view name) {
    if (name.empty() || name.front() == '$') {
        return std::nullopt;
    }
    const std::uint32_t symbol = complete_ ? lookUp(name) : lookUpOnce(name);
    return symbol == none ? std::nullopt : std::optional(symbol);
}

std::uint32_t SymbolIndex::lookUpOnce(std::string_view name) {
    const auto [answer, isNew] = answers_.try_emplace(std::string(name), none);
    if (!isNew) {
        return answer->second;
    }
    const std::uint32_t symbol = answer->second = lookUp(name);
    if (work_ / demanglingWork > table_.count() / 8) {
        becomeComplete();
    }
    return symbol;
}

void SymbolIndex::becomeComplete() {
    complete_ = true;
    mangled_ = {};
    answers_ = {};
    textStart_.clear();
    build();
}

std::uint32_t SymbolIndex::lookUp(std::string_view name) {
    std::uint32_t first = none;
    visit(hashed(name, KeyKind::Name), [&](std::uint32_t symbol) {
        if (hasName(symbol, name)) {
            first = symbol;
        }
        return first != none;
    });
    if (!complete_) {
        first = firstOfIdentifiers(name, first);
        if (name.starts_with("_Z")) {
            first = firstStillMangled(name, first);
        }
    }
    return first;
}

// Among the symbols with a mangled name, the first one that has this name and stands before the given one,
// which is the result otherwise.
std::uint32_t SymbolIndex::firstOfIdentifiers(std::string_view name, std::uint32_t before) {
    const RequiredWords required(name);
    std::size_t position = 0;
    for (auto word = nextWord(name, position); !word.empty(); word = nextWord(name, position)) {
        visit(hashed(word, KeyKind::Identifier), [&](std::uint32_t symbol) {
            if (symbol >= before) {
                return true;
            }
            ++work_;
            if (!required.areIn(table_.shortName(symbol))) {
                return false;
            }
            work_ += demanglingWork;
            if (!table_.hasName(symbol, name)) {
                return false;
            }
            before = symbol;
            return true;
        });
    }
    return before;
}

// A name can look mangled and not be: then it stays as it is.
std::uint32_t SymbolIndex::firstStillMangled(std::string_view name, std::uint32_t before) {
    for (const std::uint32_t symbol : mangled_) {
        if (symbol >= before) {
            break;
        }
        ++work_;
        if (withoutExtraUnderscore(table_.shortName(symbol)) == name && table_.hasName(symbol, name)) {
            return symbol;
        }
    }
    return before;
}

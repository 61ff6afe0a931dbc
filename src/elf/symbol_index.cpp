#include "elf/symbol_index.h"

#include "elf/name_keys.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <numeric>

namespace {

constexpr std::size_t hashedLength = 256;    // names that differ later only share a bucket
constexpr std::size_t keptLength = 1024;     // so that a hostile file can't fill the memory with names,
constexpr std::size_t keptInAll = 64 << 20;  // of one nor of many
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

void SymbolIndex::file(std::uint32_t symbol) {
    const std::string_view name = withoutExtraUnderscore(table_.shortName(symbol));
    if (complete_) {
        return fileText(symbol, name, keptLength);
    }
    const NameKey key = keyOfName(name);
    switch (key.kind) {
    case NameKind::Mangled:
        mangled_.push_back(symbol);
        filed_.push_back({hashed(key.text, KeyKind::Identifier), symbol});
        break;
    case NameKind::Plain:
        filed_.push_back({hashed(name, KeyKind::Name), symbol});
        break;
    case NameKind::Unclear:
        fileText(symbol, name, hashedLength);
    }
}

// Under the beginning of the text, and as the name is if that may yet turn out to count.
void SymbolIndex::fileText(std::uint32_t symbol, std::string_view name, std::size_t limit) {
    const TextStart start = startOfDemangled(name, table_.style(), limit);
    filed_.push_back({hashed(start.text, KeyKind::Name), symbol});
    if (!start.isWhole) {
        filed_.push_back({hashed(name, KeyKind::Name), symbol});
    } else if (complete_ && start.text.size() <= keptLength && texts_.size() < keptInAll) {
        texts_ += start.text;
    }
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
    filed_.reserve(count);
    std::vector<bool> isKnown(table_.stringsSize());
    for (std::uint32_t symbol = 0; symbol < count; ++symbol) {
        if (complete_) {
            textStart_.push_back(texts_.size());
        }
        const std::uint32_t start = table_.entry(symbol).st_name;
        if (start < isKnown.size() && !isKnown[start]) {
            isKnown[start] = true;
            file(symbol);
        }
    }
    textStart_.push_back(texts_.size());

    // Some eight to a bucket, so that filling the buckets stays within the nearer caches.
    const int bucketBits = std::max(1, static_cast<int>(std::bit_width(filed_.size())) - 4);
    bucketShift_ = 32 - bucketBits;
    bucketStart_.assign((std::size_t{1} << bucketBits) + 1, 0);
    for (const Posting& posting : filed_) {
        ++bucketStart_[(posting.key >> bucketShift_) + 1];
    }
    std::partial_sum(bucketStart_.begin(), bucketStart_.end(), bucketStart_.begin());
    std::vector<std::uint32_t> ends = bucketStart_;
    postings_.resize(filed_.size());
    for (const Posting& posting : filed_) {
        postings_[ends[posting.key >> bucketShift_]++] = posting;
    }
    filed_ = {};
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

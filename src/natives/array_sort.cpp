#include "natives/array_sort.h"

#include "natives/array_elements.h"

#include <algorithm>
#include <string_view>
#include <vector>

namespace {

// The algorithm proper, over a store with
//   get(i), put(i, item), and putLast(i, item), which leaves the place of an undefined item empty;
//   after(x, y): whether x belongs behind y;
//   candidate(i, gap): the last place from i down at which the pass with this gap can find work, or a
//   number below the gap.
template <typename Store>
void shellSort(Store& store, std::uint32_t count) {
    const std::int64_t n = count;
    for (std::int64_t gap = (n + 3) / 5; gap > 0; gap = (gap + 1) / 3) {
        for (std::int64_t i = store.candidate(n - 1, gap); i >= gap; i = store.candidate(i - 1, gap)) {
            const auto x = store.get(i - gap);
            std::int64_t free = -1;
            for (std::int64_t j = i; j < n; j += gap) {
                const auto y = store.get(j);
                if (!store.after(x, y)) {
                    break;
                }
                store.put(j - gap, y);
                free = j;
            }
            if (free >= 0) {
                store.putLast(free, x);
            }
        }
    }
}

// Works on the object itself: script may run at every comparison, so nothing is kept from one step to the
// next.
class ObjectStore {
public:
    ObjectStore(ESContext& ctx, ESObject* obj, std::uint32_t count, const ESValue& comparator)
        : ctx_(ctx), object_(obj), comparator_(comparator.isUndefined() ? nullptr : comparator.object),
          sparse_(isSparse(obj, 0, count)) {}

    ESValue get(std::int64_t i) { return getIndexed(ctx_, object_, static_cast<std::uint32_t>(i)); }
    void put(std::int64_t i, const ESValue& v) {
        putIndexed(ctx_, object_, static_cast<std::uint32_t>(i), v);
    }
    void putLast(std::int64_t i, const ESValue& v) {
        putOrDelete(ctx_, object_, static_cast<std::uint32_t>(i), v);
    }

    bool after(const ESValue& x, const ESValue& y) {
        if (x.isUndefined() || y.isUndefined()) {
            return x.isUndefined() && !y.isUndefined();
        }
        if (comparator_ == nullptr) {
            const ESValue xText = ctx_.toStringValue(x);
            const ESValue yText = ctx_.toStringValue(y);
            return ESContext::compareText(xText, yText) > 0;
        }
        const ESValue arguments[] = {x, y};
        ESValue result = undefinedValue();
        ctx_.callFunction(comparator_, object_, 2, arguments, result);
        return !(ctx_.toDouble(result) <= 0); // NaN counts as behind
    }

    // Two empty places never change.
    std::int64_t candidate(std::int64_t i, std::int64_t gap) {
        if (!sparse_) {
            return i;
        }
        const std::int64_t upper = lastPresentIndex(object_, i);
        const std::int64_t lower = lastPresentIndex(object_, i - gap);
        return std::max(upper, lower < 0 ? -1 : lower + gap);
    }

private:
    ESContext& ctx_;
    ESObject* const object_;
    ESObject* const comparator_; // null: order of the texts
    const bool sparse_;
};

// Without a comparator and with primitives alone no script runs, so each text is made once, the sorting is
// done aside, and only the places that it wrote go back.
class TextStore {
public:
    struct Item {
        std::uint64_t prefix; // decides most comparisons: the first code units, high ones first
        const char16_t* text; // null for undefined
        std::uint32_t length;
        std::uint32_t source; // position of the value

        std::u16string_view view() const { return {text, length}; }
    };

    // False when an element is an object.
    bool read(ESContext& ctx, ESObject* obj, std::uint32_t count);
    void writeBack(ESContext& ctx, ESObject* obj) const;

    const Item& get(std::int64_t i) const { return items_[static_cast<std::size_t>(i)]; }
    void put(std::int64_t i, const Item& item) {
        items_[static_cast<std::size_t>(i)] = item;
        written_[static_cast<std::size_t>(i)] = true;
    }
    void putLast(std::int64_t i, const Item& item) { put(i, item); }
    static bool after(const Item& x, const Item& y) {
        if (x.text == nullptr || y.text == nullptr) {
            return x.text == nullptr && y.text != nullptr;
        }
        return x.prefix != y.prefix ? x.prefix > y.prefix : x.view() > y.view();
    }
    static std::int64_t candidate(std::int64_t i, std::int64_t) { return i; }

private:
    void makePrefixes();

    std::vector<Item> items_;
    std::vector<ESValue> values_;
    std::vector<bool> written_;
    std::u16string madeTexts_; // of the elements that aren't strings
};

bool TextStore::read(ESContext& ctx, ESObject* obj, std::uint32_t count) {
    ESTextBuilder made(ctx);
    values_.reserve(count);
    items_.reserve(count);
    for (std::uint32_t i = 0; i < count; ++i) {
        const ESValue value = getIndexed(ctx, obj, i);
        if (value.isObject()) {
            return false;
        }
        Item item = {0, nullptr, 0, i};
        if (value.isString()) {
            const ESText& text = ESContext::textOf(value);
            item.text = text.characters();
            item.length = text.length();
        } else if (!value.isUndefined()) {
            const std::size_t begin = made.length();
            made.addValue(value);
            item.length = static_cast<std::uint32_t>(made.length() - begin);
        }
        items_.push_back(item);
        values_.push_back(value);
    }
    // Only now do the made texts stay where they are.
    madeTexts_.assign(made.characters(), made.length());
    const char16_t* next = madeTexts_.data();
    for (Item& item : items_) {
        if (item.text == nullptr && item.length != 0) {
            item.text = next;
            next += item.length;
        }
    }
    makePrefixes();
    written_.resize(count);
    return true;
}

// Eight code units fit when all of them are below 256, else four. Behind the end of a text stand zeros, which
// no code unit is below: a tie is decided by the whole texts.
void TextStore::makePrefixes() {
    const bool narrow = std::all_of(items_.begin(), items_.end(), [](const Item& item) {
        const std::u16string_view start = item.view().substr(0, 8);
        return std::all_of(start.begin(), start.end(), [](char16_t c) { return c < 256; });
    });
    const std::size_t units = narrow ? 8 : 4;
    for (Item& item : items_) {
        for (std::size_t i = 0; i < units; ++i) {
            item.prefix = item.prefix << (64 / units) | (i < item.length ? item.text[i] : 0u);
        }
    }
}

void TextStore::writeBack(ESContext& ctx, ESObject* obj) const {
    for (std::size_t i = 0; i < items_.size(); ++i) {
        if (written_[i]) {
            putOrDelete(ctx, obj, static_cast<std::uint32_t>(i), values_[items_[i].source]);
        }
    }
}

// Names the indexes as the first pass of the sort meets them; later passes meet no others.
void noteFirstPass(std::uint32_t count) {
    const std::uint32_t gap = static_cast<std::uint32_t>((std::uint64_t{count} + 3) / 5);
    const std::uint32_t last = count - std::min(count - gap, mostNamesNoted);
    for (std::uint32_t i = count; count > indexNameWatermark && i-- > last;) {
        noteIndexName(i - gap);
        noteIndexName(i);
    }
}

bool sortTexts(ESContext& ctx, ESObject* obj, std::uint32_t count) {
    const ESClass* cls = obj->nativeClass;
    const bool storesOnly = cls->ordinaryGet && (cls->ordinaryPut || ctx.isArrayObject(obj));
    if (!storesOnly || !prototypesHaveNoIndexes(obj) || isSparse(obj, 0, count)) {
        return false;
    }
    TextStore store;
    if (!store.read(ctx, obj, count)) {
        return false;
    }
    shellSort(store, count);
    store.writeBack(ctx, obj);
    return true;
}

} // namespace

void sortElements(ESContext& ctx, ESObject* obj, const ESValue& comparator) {
    // 1. The length.
    const std::uint32_t count = lengthOf(ctx, obj);
    // 2. The comparator, which isn't called for a sort of nothing but is looked at.
    if (!comparator.isUndefined() && (!comparator.isObject() || comparator.object->callClosure == nullptr)) {
        ctx.raiseBaseError("Array.prototype.sort argument is not a function");
    }
    // 3. The elements.
    if (comparator.isUndefined() || isSparse(obj, 0, count)) {
        noteFirstPass(count);
    }
    if (comparator.isUndefined() && sortTexts(ctx, obj, count)) {
        return;
    }
    ObjectStore store(ctx, obj, count, comparator);
    shellSort(store, count);
}

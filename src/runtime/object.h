// ESObject, the one record for objects, functions and scope nodes, with its named properties and its dense
// elements. What an object can do is told by its class (native_class.h); how it is made, by ESContext.
#pragma once

#include "runtime/atom.h"
#include "runtime/value.h"

#include <cstdint>

class ESArena;
class ESClass;
class ESCodeBlock;

enum ESAttribute : std::uint32_t {
    ReadOnly = 1,      // put on the property is ignored
    DontEnum = 2,      // enumeration passes over it
    DontDelete = 4,    // deleteProperty refuses
    ParameterSlot = 8, // only in the variable table of a code block: a formal parameter
};

// One named property. The value's tag and payload lie around the attributes to keep a slot at 24 bytes.
struct ESProperty {
    ESAtom atom; // null in a deleted slot
    std::uint32_t tag;
    std::uint32_t attributes;
    union {
        double number;
        std::uint64_t bits;
        ESObject* object;
    };

    ESValue value() const {
        ESValue v;
        v.tag = tag;
        v.bits = bits;
        return v;
    }
    void setValue(const ESValue& v) {
        tag = v.tag;
        bits = v.bits;
    }
};
static_assert(sizeof(ESProperty) == 24);

// The named properties of one object. A slot found once stays at its position, unless the table may be
// compacted (tables with pinned positions never are), so a remembered position needs only its atom checked.
class ESPropertyTable {
public:
    std::uint32_t count() const { return count_; } // slots, the deleted ones included
    ESProperty& at(std::uint32_t position) { return slots_[position]; }
    const ESProperty& at(std::uint32_t position) const { return slots_[position]; }

    // The live slot of an atom, or null.
    ESProperty* find(ESAtom atom) {
        if ((mask_ & maskBit(atom)) == 0) {
            return nullptr;
        }
        if (index_ == nullptr) {
            for (std::uint32_t i = 0; i < count_; ++i) {
                if (slots_[i].atom == atom) {
                    return &slots_[i];
                }
            }
            return nullptr;
        }
        return findIndexed(atom);
    }
    const ESProperty* find(ESAtom atom) const { return const_cast<ESPropertyTable*>(this)->find(atom); }

    // Adds a slot at the end; the atom must not be there yet, or may be null for a slot that no name reaches.
    ESProperty& append(ESArena& arena, ESAtom atom, std::uint32_t attributes, const ESValue& value);
    // Empties the slot; its place stays.
    void erase(ESProperty& slot);
    void reserve(ESArena& arena, std::uint32_t capacity);
    // From now on positions never change.
    void pin() { pinned_ = true; }
    // Takes over the `count` slots at `piece`, which the arena owns; only for an empty table (activations).
    void adopt(ESProperty* piece, std::uint32_t count, std::uint64_t mask);
    // Whether a pinned table has only the slots that it adopted.
    bool isAsAdopted() const { return !appended_; }

    static std::uint64_t maskBit(ESAtom atom) { return std::uint64_t{1} << (atom->hash >> 26); }
    std::uint64_t mask() const { return mask_; }

private:
    ESProperty* findIndexed(ESAtom atom);
    void grow(ESArena& arena, std::uint32_t capacity);
    void rebuildIndex(ESArena& arena);
    void enterIndex(ESAtom atom, std::uint32_t position);

    ESProperty* slots_ = nullptr;
    std::uint32_t count_ = 0;
    std::uint32_t capacity_ = 0;
    std::uint32_t* index_ = nullptr; // open addressing, position + 1 by hash; only for many slots
    std::uint64_t mask_ = 0;         // which atoms may be here, a bit each of 64
    std::uint32_t indexSize_ = 0;    // entries of index_, a power of two
    std::uint32_t dead_ : 29 = 0;    // erased slots
    bool pinned_ : 1 = false;
    bool appended_ : 1 = false; // to a pinned table

public:
    bool hasIndexNames : 1 = false; // some slot is named by an array index
};

// Elements 0 to count-1 in one vector of values. An absent one is a hole (ESTagHole).
class ESElements {
public:
    std::uint32_t count() const { return count_; }
    ESValue* data() { return data_; }
    const ESValue* data() const { return data_; }

    void append(const ESValue& value) {
        if (count_ == capacity_) [[unlikely]] {
            makeRoom();
        }
        data_[count_++] = value;
    }
    // Throws std::bad_alloc. Never shrinks.
    void reserve(std::uint32_t capacity);
    // Cuts off the elements from count on, or adds holes.
    void resize(std::uint32_t count);
    void removeFirst(); // in constant time
    void release();     // gives the memory back; the owner's destructor

    // To be called when an element has been made a hole directly.
    void noteHoles() { mayHaveHoles_ = true; }
    bool hasHoles() const;

private:
    void makeRoom();

    ESValue* data_ = nullptr; // from malloc, so that a large vector grows in place
    std::uint32_t count_ = 0;
    std::uint32_t capacity_ = 0;
    std::uint32_t removed_ = 0;         // entries in front of data_ that removeFirst() left
    mutable bool mayHaveHoles_ = false; // false: surely none
};

// What a function object calls. A native's record has argCount alone: its declared length.
struct ESClosure {
    std::int32_t argCount = 0;
    std::int32_t localCount = 0;
    ESCodeBlock* block = nullptr;
    ESObject* scope = nullptr; // the scope chain at the moment when the closure was made
};

// Lives as long as its context. In a scope node nativeClass is null, prototype is the next node, and value
// holds the object that this level of the chain searches.
struct ESObject {
    ESObject* prototype = nullptr;
    ESClass* nativeClass = nullptr;
    ESValue value = undefinedValue();      // by class: the wrapped primitive, a time value, a function's name
    ESClosure* callClosure = nullptr;      // set on everything callable
    ESClosure* constructClosure = nullptr; // set on everything usable with new; may be the same record
    ESPropertyTable properties;
    ESElements elements;
    std::int32_t memberIndex = -1; // a native function's member of its class, -1 for everything else
};
static_assert(sizeof(ESObject) <= 120);

// What an instruction of the fused form remembers of its last run, and how a guess is verified: the position
// of a property on the object or up its prototype chain, the place of a name along the scope chain.
#pragma once

#include "machine/fused_code.h"
#include "runtime/context.h"

// The object's own property of this name if it lies at that position, else null.
inline ESProperty* guessedOwn(ESObject* object, ESAtom atom, std::uint32_t position) {
    ESPropertyTable& properties = object->properties;
    if (position < properties.count() && properties.at(position).atom == atom) {
        return &properties.at(position);
    }
    return nullptr;
}

inline bool surelyLacks(const ESObject* object, ESAtom atom) {
    return (object->properties.mask() & ESPropertyTable::maskBit(atom)) == 0;
}

// The slot of a name that isn't an index, on the object or along its chain, by the site's memory in `cell`;
// null when the memory doesn't fit.
inline const ESProperty* guessedField(ESObject* object, ESAtom atom, const ESCell& cell) {
    std::uint32_t depth = cell.operand.high;
    if (depth == 0) {
        return guessedOwn(object, atom, cell.operand.low);
    }
    do {
        if (!surelyLacks(object, atom) && object->properties.find(atom) != nullptr) {
            return nullptr;
        }
        object = object->prototype;
        if (object == nullptr) {
            return nullptr;
        }
    } while (--depth != 0);
    return guessedOwn(object, atom, cell.operand.low);
}

// Reads a property and remembers where it was, unless its class has a say in it.
ESValue findField(ESContext& ctx, ESObject* object, ESAtom atom, ESCell& cell);
// Writes one, the same way.
void storeField(ESContext& ctx, ESObject* object, ESAtom atom, const ESValue& v, ESCell& cell);

// Where a compound assignment or a step found its property.
void rememberOwn(const ESValue& base, ESAtom atom, ESCell& cell);

// The slot of a name in an activation some nodes up the scope chain, by the site's memory in `cell`: how
// many nodes, and the position; null when it doesn't fit. `passed` has the number of slots of the nodes
// passed on the way, 16 bits for each: with more slots, one of them may have the name now.
inline ESProperty* guessedName(const ESContext& ctx, ESAtom atom, const ESCell& cell, std::uint32_t passed) {
    const ESObject* node = ctx.scope;
    for (std::uint32_t hops = cell.operand.low; hops != 0; --hops) {
        if (node->value.object->properties.count() != (passed & 0xFFFF)) {
            return nullptr;
        }
        passed >>= 16;
        node = node->prototype;
    }
    return guessedOwn(node->value.object, atom, cell.operand.high);
}
// Finds out what there is to remember for a name, after the search has found it.
void rememberName(const ESContext& ctx, ESAtom atom, ESCell& cell, std::uint32_t& passed);

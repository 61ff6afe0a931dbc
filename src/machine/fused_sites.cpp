#include "machine/fused_sites.h"

ESValue findField(ESContext& ctx, ESObject* object, ESAtom atom, ESCell& cell) {
    if (atom == wellKnownAtoms.length && !object->nativeClass->ordinaryGet) {
        return ctx.get(object, atom);
    }
    std::uint32_t depth = 0;
    for (ESObject* holder = object; holder != nullptr; holder = holder->prototype, ++depth) {
        if (const ESProperty* slot = holder->properties.find(atom)) {
            // A class that works out a length must be asked each time; an own slot speaks for itself.
            if (atom != wellKnownAtoms.length || depth == 0) {
                cell.operand.low = static_cast<std::uint32_t>(slot - &holder->properties.at(0));
                cell.operand.high = depth;
            }
            return slot->value();
        }
    }
    return ctx.get(object, atom);
}

void storeField(ESContext& ctx, ESObject* object, ESAtom atom, const ESValue& v, ESCell& cell) {
    ctx.put(object, atom, v);
    if (atom == wellKnownAtoms.length || atom->arrayIndex != notAnIndex) {
        return;
    }
    if (const ESProperty* slot = object->properties.find(atom)) {
        cell.operand.low = static_cast<std::uint32_t>(slot - &object->properties.at(0));
    }
}

void rememberName(const ESContext& ctx, ESAtom atom, ESCell& cell, std::uint32_t& passed) {
    constexpr std::uint32_t mostHops = 2;
    std::uint32_t slots = 0;
    std::uint32_t hops = 0;
    for (const ESObject* node = ctx.scope; node != nullptr; node = node->prototype, ++hops) {
        const ESObject* searched = node->value.object;
        const ESPropertyTable& properties = searched->properties;
        if (searched->nativeClass != ctx.activationClass) {
            return;
        }
        if (const ESProperty* slot = properties.find(atom)) {
            cell.operand = {hops, static_cast<std::uint32_t>(slot - &properties.at(0))};
            passed = slots;
            return;
        }
        // Another call's activation may have come to as many slots by other names.
        if (hops == mostHops || !properties.isAsAdopted() || properties.count() > 0xFFFF) {
            return;
        }
        slots |= properties.count() << (16 * hops);
    }
}

void rememberOwn(const ESValue& base, ESAtom atom, ESCell& cell) {
    if (base.isObject() && atom != wellKnownAtoms.length) {
        if (const ESProperty* slot = base.object->properties.find(atom)) {
            cell.operand.low = static_cast<std::uint32_t>(slot - &base.object->properties.at(0));
        }
    }
}

// Properties and elements of objects, whatever their class says: the operations that act on slots directly.
#include "runtime/context.h"

#include <algorithm>

ESValue ESContext::getKey(ESObject* obj, const ESValue& key) {
    const std::uint32_t index = arrayIndexOf(key);
    return index != notAnIndex ? getElement(obj, index) : get(obj, toAtom(key));
}

void ESContext::putKey(ESObject* obj, const ESValue& key, const ESValue& v) {
    const std::uint32_t index = arrayIndexOf(key);
    if (index != notAnIndex) {
        putElement(obj, index, v);
    } else {
        put(obj, toAtom(key), v);
    }
}

namespace {

bool hasOwnElement(const ESObject* obj, std::uint32_t index) {
    return index < obj->elements.count() && obj->elements.data()[index].tag != ESTagHole;
}

} // namespace

bool ESContext::hasOwnProperty(ESObject* obj, ESAtom atom) {
    return hasOwnElement(obj, atom->arrayIndex) || obj->properties.find(atom) != nullptr;
}

bool ESContext::hasProperty(ESObject* obj, ESAtom atom) {
    for (; obj != nullptr; obj = obj->prototype) {
        if (hasOwnProperty(obj, atom)) {
            return true;
        }
    }
    return false;
}

bool ESContext::hasElement(ESObject* obj, std::uint32_t index) {
    noteIndexName(index);
    for (; obj != nullptr; obj = obj->prototype) {
        if (hasOwnElement(obj, index) ||
            (obj->properties.hasIndexNames && obj->properties.find(indexAtom(index)) != nullptr)) {
            return true;
        }
    }
    return false;
}

bool ESContext::propertyIsEnumerable(ESObject* obj, ESAtom atom) {
    if (const ESProperty* slot = obj->properties.find(atom)) {
        return (slot->attributes & DontEnum) == 0;
    }
    return hasOwnElement(obj, atom->arrayIndex);
}

bool ESContext::deleteProperty(ESObject* obj, ESAtom atom) {
    if (hasOwnElement(obj, atom->arrayIndex)) {
        return deleteIndexProperty(obj, atom->arrayIndex);
    }
    ESProperty* slot = obj->properties.find(atom);
    if (slot == nullptr) {
        return true;
    }
    if ((slot->attributes & DontDelete) != 0) {
        return false;
    }
    obj->properties.erase(*slot);
    if (obj->nativeClass == arrays && atom == wellKnownAtoms.length) {
        // Elements in the vector are stored to without a look at the length; the next store has to make it
        // anew.
        for (std::uint32_t i = 0; i < obj->elements.count(); ++i) {
            if (hasOwnElement(obj, i)) {
                obj->properties.append(arena_, indexAtom(i), 0, obj->elements.data()[i]);
            }
        }
        obj->elements.resize(0);
    }
    return true;
}

bool ESContext::deleteIndexProperty(ESObject* obj, std::uint32_t index) {
    noteIndexName(index);
    ESElements& elements = obj->elements;
    if (hasOwnElement(obj, index)) {
        elements.data()[index].tag = ESTagHole;
        elements.noteHoles();
        std::uint32_t count = elements.count();
        while (count != 0 && elements.data()[count - 1].tag == ESTagHole) {
            --count;
        }
        elements.resize(count);
        return true;
    }
    return !obj->properties.hasIndexNames || deleteProperty(obj, indexAtom(index));
}

void ESContext::putProperty(ESObject* obj, std::uint32_t attributes, ESAtom atom, const ESValue& v) {
    put(obj, atom, v);
    if (attributes != 0 && hasOwnElement(obj, atom->arrayIndex)) {
        // An element with attributes has to stand among the named properties.
        const ESValue value = obj->elements.data()[atom->arrayIndex];
        deleteIndexProperty(obj, atom->arrayIndex);
        obj->properties.append(arena_, atom, attributes, value);
        return;
    }
    if (ESProperty* slot = obj->properties.find(atom)) {
        slot->attributes = attributes;
    }
}

std::vector<ESAtom> ESContext::enumerableNames(ESObject* obj) {
    std::vector<ESAtom> names;
    for (; obj != nullptr; obj = obj->prototype) {
        for (std::uint32_t i = 0; i < obj->properties.count(); ++i) {
            const ESProperty& slot = obj->properties.at(i);
            if (slot.atom != nullptr && (slot.attributes & DontEnum) == 0) {
                names.push_back(slot.atom);
            }
        }
        for (std::uint32_t i = 0; i < obj->elements.count(); ++i) {
            if (obj->elements.data()[i].tag != ESTagHole) {
                names.push_back(indexAtom(i));
            }
        }
    }
    if (names.size() < 2) {
        return names;
    }
    std::for_each(names.begin(), names.end(), settleOrder);
    std::sort(names.begin(), names.end(), [](ESAtom a, ESAtom b) { return a->order < b->order; });
    names.erase(std::unique(names.begin(), names.end()), names.end());
    return names;
}

bool ESContext::isStringObject(const ESObject* obj) const { return obj->nativeClass == strings; }
bool ESContext::isNumberObject(const ESObject* obj) const { return obj->nativeClass == numbers; }
bool ESContext::isBooleanObject(const ESObject* obj) const { return obj->nativeClass == booleans; }
bool ESContext::isDateObject(const ESObject* obj) const { return obj->nativeClass == dates; }
bool ESContext::isArrayObject(const ESObject* obj) const { return obj->nativeClass == arrays; }
bool ESContext::isErrorObject(const ESObject* obj) const { return obj->nativeClass == errors; }

bool ESContext::inPrototypeChain(const ESObject* protoObject, const ESValue& v) {
    if (!v.isObject()) {
        return false;
    }
    const ESObject* object = v.object->prototype;
    while (object != nullptr && object != protoObject) {
        object = object->prototype;
    }
    return object != nullptr;
}

ESValue ESContext::primitiveOf(const ESValue& v) {
    if (v.isObject() && (isStringObject(v.object) || isNumberObject(v.object) || isBooleanObject(v.object))) {
        return v.object->value;
    }
    return v;
}

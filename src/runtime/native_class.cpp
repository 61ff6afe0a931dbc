#include "runtime/native_class.h"

#include "runtime/context.h"

#include <algorithm>
#include <cstring>
#include <string>

ESValue ESClass::get(ESContext&, ESObject* obj, ESAtom atom) {
    const std::uint32_t index = atom->arrayIndex; // notAnIndex is beyond every vector
    for (; obj != nullptr; obj = obj->prototype) {
        if (const ESProperty* slot = obj->properties.find(atom)) {
            return slot->value();
        }
        if (index < obj->elements.count() && obj->elements.data()[index].tag != ESTagHole) {
            return obj->elements.data()[index];
        }
    }
    return undefinedValue();
}

ESValue ESClass::getElement(ESContext& ctx, ESObject* obj, std::uint32_t index) {
    if (obj != nullptr && index < obj->elements.count() && obj->elements.data()[index].tag != ESTagHole) {
        return obj->elements.data()[index];
    }
    noteIndexName(index);
    bool named = false;
    for (const ESObject* o = obj; o != nullptr; o = o->prototype) {
        named = named || o->properties.hasIndexNames || index < o->elements.count();
    }
    return named ? ESClass::get(ctx, obj, indexAtom(index)) : undefinedValue();
}

void ESClass::put(ESContext& ctx, ESObject* obj, ESAtom atom, const ESValue& value) {
    if (atom->arrayIndex != notAnIndex) {
        ESClass::putElement(ctx, obj, atom->arrayIndex, value);
        return;
    }
    if (ESProperty* slot = obj->properties.find(atom)) {
        if ((slot->attributes & ReadOnly) == 0) {
            slot->setValue(value);
        }
        return;
    }
    obj->properties.append(ctx.arena(), atom, 0, value);
}

namespace {

// Once this many elements stand among the named properties, a look tells whether a vector holds them better.
constexpr std::uint32_t sparseCheckFrom = 64;

// Moves the elements that stand among the named properties into the vector, holes between them, if at least
// an eighth of the vector would be in use.
void densify(ESObject* obj) {
    std::uint32_t named = 0;
    std::uint32_t end = obj->elements.count();
    for (std::uint32_t i = 0; i < obj->properties.count(); ++i) {
        const ESProperty& slot = obj->properties.at(i);
        if (slot.atom != nullptr && slot.atom->arrayIndex != notAnIndex) {
            if (slot.attributes != 0) {
                return;
            }
            ++named;
            end = std::max(end, slot.atom->arrayIndex + 1);
        }
    }
    if (end / 8 > named + obj->elements.count()) {
        return;
    }
    obj->elements.resize(end);
    for (std::uint32_t i = 0; i < obj->properties.count(); ++i) {
        ESProperty& slot = obj->properties.at(i);
        if (slot.atom != nullptr && slot.atom->arrayIndex != notAnIndex) {
            obj->elements.data()[slot.atom->arrayIndex] = slot.value();
            obj->properties.erase(slot);
        }
    }
    obj->properties.hasIndexNames = false;
}

bool isPowerOfTwo(std::uint32_t n) { return (n & (n - 1)) == 0; }

} // namespace

void ESClass::putElement(ESContext& ctx, ESObject* obj, std::uint32_t index, const ESValue& value) {
    noteIndexName(index);
    ESElements& elements = obj->elements;
    if (index < elements.count() && elements.data()[index].tag != ESTagHole) {
        elements.data()[index] = value;
        return;
    }
    ESPropertyTable& properties = obj->properties;
    const bool named = properties.hasIndexNames;
    if (named) {
        if (ESProperty* slot = properties.find(indexAtom(index))) {
            if ((slot->attributes & ReadOnly) == 0) {
                slot->setValue(value);
            }
            return;
        }
    }
    if (index < elements.count()) {
        elements.data()[index] = value;
    } else if (index == elements.count()) {
        elements.append(value);
    } else {
        properties.append(ctx.arena(), indexAtom(index), 0, value);
        if (properties.count() >= sparseCheckFrom && isPowerOfTwo(properties.count())) {
            densify(obj);
        }
    }
}

bool ESClass::deleteProperty(ESContext& ctx, ESObject* obj, ESAtom atom) {
    return ctx.deleteProperty(obj, atom);
}

void ESClass::call(ESContext&, ESObject*, ESObject*, std::int32_t, ESValue* argv) {
    argv[0] = undefinedValue();
}

ESObject* ESClass::construct(ESContext&, ESObject*, std::int32_t, const ESValue*) { return nullptr; }

ESObject* ESClass::init(ESContext& ctx) {
    ESObject* object = ctx.newPlainObject();
    ctx.putProperty(ctx.globalObject, DontEnum, intern(name), objectValue(object));
    return object;
}

void ESClass::badCall(ESContext& ctx) { ctx.raiseBaseError("bad signature in builtin call"); }

void ESClass::badConstruct(ESContext& ctx) { ctx.raiseBaseError("bad signature in builtin construct"); }

ESObject* defineMember(ESContext& ctx, ESObject* target, const ESMember& member, ESClass* cls,
                       ESAtom fullName) {
    ESClosure* closure = ctx.newClosure();
    closure->argCount = member.length;
    ESObject* fn = ctx.newObject(ctx.functionPrototype, cls);
    fn->callClosure = closure;
    fn->value = atomValue(fullName);
    fn->memberIndex = member.index;
    ctx.put(fn, wellKnownAtoms.length, numberValue(member.length));
    ctx.put(target, intern(member.name), objectValue(fn));
    if (member.help != nullptr) {
        ctx.put(fn, intern("help"), ctx.newString(member.help));
    }
    return fn;
}

void defineMembers(ESContext& ctx, ESObject* target, std::span<const ESMember> members, ESClass* cls,
                   const char* className, ESMemberNaming naming) {
    for (const ESMember& member : members) {
        char fullName[96];
        std::size_t length = 0;
        const auto add = [&](const char* part) {
            const std::size_t size = std::strlen(part);
            std::memcpy(fullName + length, part, size);
            length += size;
        };
        if (naming != ESMemberNaming::Bare) {
            add(className);
            add(naming == ESMemberNaming::Prototype ? ".prototype." : ".");
        }
        add(member.name);
        fullName[length] = '\0';
        defineMember(ctx, target, member, cls, intern(fullName));
    }
}

ESObject* defineConstructor(ESContext& ctx, const ESMember& member, ESAtom fullName,
                            ESObject* prototypeObject, ESClass* cls) {
    ESObject* fn = defineMember(ctx, ctx.globalObject, member, cls, fullName);
    fn->constructClosure = fn->callClosure;
    ctx.put(fn, wellKnownAtoms.prototype, objectValue(prototypeObject));
    ctx.put(prototypeObject, wellKnownAtoms.constructor, objectValue(fn));
    return fn;
}

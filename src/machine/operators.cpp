#include "machine/operators.h"

#include "machine/code_block.h"

#include <cmath>
#include <optional>

namespace {

bool isText(const ESValue& v) { return v.isString(); }

std::uint32_t typeOf(const ESValue& v) { return v.tag == ESTagString ? std::uint32_t{ESTagAtom} : v.tag; }

ESValue add(ESContext& ctx, ESValue left, ESValue right) {
    if (left.isString() && right.isString()) {
        return ctx.concatenate(left, right);
    }
    if (right.isObject()) {
        ctx.toPrimitive(right, ESTagAny);
    }
    if (left.isObject()) {
        ctx.toPrimitive(left, ESTagAny);
    }
    if (isText(left) || isText(right)) {
        if (left.isNumber() || right.isNumber()) {
            return ctx.concatenateNumber(left, right);
        }
        return ctx.concatenate(ctx.toStringValue(left), ctx.toStringValue(right));
    }
    ctx.toNumber(left);
    ctx.toNumber(right);
    return numberValue(left.number + right.number);
}

} // namespace

ESValue binaryOperator(ESContext& ctx, ESOpcode opcode, ESValue left, ESValue right) {
    if (opcode == OP_ADD) {
        return add(ctx, left, right);
    }
    if (opcode >= OP_SHL && opcode <= OP_USHR) {
        const std::int32_t bits = ctx.toInt32(left);
        const int shift = ctx.toInt32(right) & 31;
        const auto pattern = static_cast<std::uint32_t>(bits);
        switch (opcode) {
        case OP_SHL:
            return numberValue(static_cast<std::int32_t>(pattern << shift));
        case OP_SHR:
            return numberValue(bits >> shift);
        default:
            return numberValue(pattern >> shift);
        }
    }
    ctx.toNumber(right);
    ctx.toNumber(left);
    const double a = left.number;
    const double b = right.number;
    switch (opcode) {
    case OP_SUB:
        return numberValue(a - b);
    case OP_MUL:
        return numberValue(a * b);
    case OP_DIV:
        return numberValue(a / b);
    case OP_MOD:
        return numberValue(std::fmod(a, b));
    case OP_BITAND:
        return numberValue(ESContext::doubleToInt32(a) & ESContext::doubleToInt32(b));
    case OP_BITOR:
        return numberValue(ESContext::doubleToInt32(a) | ESContext::doubleToInt32(b));
    default:
        return numberValue(ESContext::doubleToInt32(a) ^ ESContext::doubleToInt32(b));
    }
}

namespace {

// The operands of a comparison as primitives, the right one first.
void toComparable(ESContext& ctx, ESValue& left, ESValue& right) {
    if (right.isObject()) {
        ctx.toPrimitive(right, ESTagNumber);
    }
    if (left.isObject()) {
        ctx.toPrimitive(left, ESTagNumber);
    }
    if (!(isText(left) && isText(right))) {
        ctx.toNumber(left);
        ctx.toNumber(right);
    }
}

} // namespace

bool lessThan(ESContext& ctx, ESValue left, ESValue right) {
    toComparable(ctx, left, right);
    return isText(left) ? ESContext::compareText(left, right) < 0 : left.number < right.number;
}

bool lessOrEqual(ESContext& ctx, ESValue left, ESValue right) {
    toComparable(ctx, left, right);
    return isText(left) ? ESContext::compareText(left, right) <= 0 : left.number <= right.number;
}

bool strictEquals(const ESValue& left, const ESValue& right) {
    if (typeOf(left) != typeOf(right)) {
        return false;
    }
    switch (left.tag) {
    case ESTagBoolean:
    case ESTagNumber:
        return left.number == right.number;
    case ESTagString:
    case ESTagAtom:
        return ESContext::sameText(left, right);
    case ESTagObject:
        return left.object == right.object;
    default:
        return true;
    }
}

bool looseEquals(ESContext& ctx, ESValue left, ESValue right) {
    const auto simple = [](const ESValue& v) { return v.isString() || v.isNumber(); };
    while (typeOf(left) != typeOf(right)) {
        if (right.isNumber() && left.isString()) {
            ctx.toNumber(left);
        } else if (right.isString() && left.isNumber()) {
            ctx.toNumber(right);
        } else if (right.isBoolean()) {
            ctx.toNumber(right);
        } else if (left.isBoolean()) {
            ctx.toNumber(left);
        } else if (left.isObject() && simple(right)) {
            ctx.toPrimitive(left, ESTagAny);
        } else if (right.isObject() && simple(left)) {
            ctx.toPrimitive(right, ESTagAny);
        } else {
            return false; // undefined and null are equal to nothing but themselves
        }
    }
    return strictEquals(left, right);
}

namespace {

struct TypeNames {
    ESAtom undefined = intern("undefined");
    ESAtom boolean = intern("boolean");
    ESAtom number = intern("number");
    ESAtom string = intern("string");
    ESAtom function = intern("function");
    ESAtom object = intern("object");
};

std::optional<TypeNames> typeNames; // interned when a script first asks for one

} // namespace

void forgetTypeNames() { typeNames.reset(); }

ESAtom typeName(const ESValue& v) {
    if (!typeNames) {
        typeNames.emplace();
    }
    switch (v.tag) {
    case ESTagUndefined:
        return typeNames->undefined;
    case ESTagBoolean:
        return typeNames->boolean;
    case ESTagNumber:
        return typeNames->number;
    case ESTagString:
    case ESTagAtom:
        return typeNames->string;
    case ESTagObject:
        return v.object->callClosure != nullptr ? typeNames->function : typeNames->object;
    default:
        return typeNames->object;
    }
}

ESValue sumAsKey(ESContext& ctx, const ESValue& left, const ESValue& right) {
    const ESValue sum = binaryOperator(ctx, OP_ADD, left, right);
    const auto isOther = [&](const ESValue& operand) {
        return operand.isNumber() || (operand.isString() && &ESContext::textOf(operand) != sum.text);
    };
    if (sum.tag != ESTagString || !sum.text->isFlat() || !isOther(left) || !isOther(right)) {
        return sum;
    }
    const ESAtom known = findAtom(sum.text->view());
    if (known == nullptr) {
        return sum;
    }
    ESText::release(textArena(), sum.text);
    return atomValue(known);
}

ESValue getField(ESContext& ctx, const ESValue& base, ESAtom atom) {
    if (base.isString() && atom == wellKnownAtoms.length) {
        return numberValue(ESContext::textOf(base).length());
    }
    return ctx.get(ctx.objectOf(base), atom);
}

ESValue getIndexed(ESContext& ctx, const ESValue& base, const ESValue& key) {
    return ctx.getKey(ctx.objectOf(base), key);
}

void putField(ESContext& ctx, const ESValue& base, ESAtom atom, const ESValue& v) {
    ctx.put(ctx.objectOf(base), atom, v);
}

void putIndexed(ESContext& ctx, const ESValue& base, const ESValue& key, const ESValue& v) {
    ctx.putKey(ctx.objectOf(base), key, v);
}

namespace {

// A key that has been converted once: an element's index or an atom.
struct Key {
    Key(ESContext& ctx, const ESValue& v) : index(ESContext::arrayIndexOf(v)) {
        if (index == notAnIndex) {
            atom = ctx.toAtom(v);
        }
    }
    ESValue get(ESContext& ctx, ESObject* object) const {
        return atom == nullptr ? ctx.getElement(object, index) : ctx.get(object, atom);
    }
    void put(ESContext& ctx, ESObject* object, const ESValue& v) const {
        if (atom == nullptr) {
            ctx.putElement(object, index, v);
        } else {
            ctx.put(object, atom, v);
        }
    }

    std::uint32_t index;
    ESAtom atom = nullptr;
};

} // namespace

ESValue compoundIndexed(ESContext& ctx, ESOpcode opcode, const ESValue& base, const ESValue& key,
                        const ESValue& right) {
    ESObject* object = ctx.objectOf(base);
    const Key place(ctx, key);
    const ESValue old = place.get(ctx, object);
    const ESValue result = binaryOperator(ctx, static_cast<ESOpcode>(opcode - 1), old, right);
    place.put(ctx, object, result);
    return result;
}

ESValue stepElement(ESContext& ctx, ESOpcode opcode, const ESValue& base, const ESValue& key) {
    ESObject* object = ctx.objectOf(base);
    const Key place(ctx, key);
    ESValue old = place.get(ctx, object);
    ctx.toNumber(old);
    const double step = opcode == OP_PREINCE || opcode == OP_POSTINCE ? 1.0 : -1.0;
    const ESValue stepped = numberValue(old.number + step);
    place.put(ctx, object, stepped);
    return opcode == OP_PREINCE || opcode == OP_PREDECE ? stepped : old;
}

bool deleteIndexed(ESContext& ctx, const ESValue& base, const ESValue& key) {
    ESObject* object = ctx.objectOf(base);
    const Key place(ctx, key);
    return place.atom == nullptr ? ctx.deleteIndexProperty(object, place.index)
                                 : ctx.deleteProperty(object, place.atom);
}

ESObject* findScope(ESContext& ctx, ESAtom atom) {
    for (const ESObject* node = ctx.scope; node != nullptr; node = node->prototype) {
        if (ctx.hasProperty(node->value.object, atom)) {
            return node->value.object;
        }
    }
    return ctx.globalObject;
}

ESValue getName(ESContext& ctx, ESAtom atom, ESObject** foundIn) {
    ESObject* object = findScope(ctx, atom);
    if (foundIn != nullptr) {
        *foundIn = object;
    }
    return ctx.get(object, atom);
}

void putName(ESContext& ctx, ESAtom atom, const ESValue& v) { ctx.put(findScope(ctx, atom), atom, v); }

bool deleteName(ESContext& ctx, ESAtom atom) {
    for (const ESObject* node = ctx.scope; node != nullptr; node = node->prototype) {
        if (ctx.hasOwnProperty(node->value.object, atom)) {
            return ctx.deleteProperty(node->value.object, atom);
        }
    }
    return false;
}

ESValue stepName(ESContext& ctx, ESOpcode opcode, ESAtom name) {
    ESValue v = getName(ctx, name, nullptr);
    ctx.toNumber(v);
    const double step = opcode == OP_PREINCX || opcode == OP_POSTINCX ? 1.0 : -1.0;
    v.number += step;
    putName(ctx, name, v);
    if (opcode == OP_POSTINCX || opcode == OP_POSTDECX) {
        v.number -= step;
    }
    return v;
}

ESValue newEnumerator(ESContext& ctx, const ESValue& v) {
    const std::vector<ESAtom> names = ctx.enumerableNames(ctx.objectOf(v));
    ESObject* enumerator = ctx.newPlainObject();
    noteIndexNames(static_cast<std::uint32_t>(names.size()));
    enumerator->elements.reserve(static_cast<std::uint32_t>(names.size()));
    for (const ESAtom name : names) {
        enumerator->elements.append(atomValue(name));
    }
    ctx.put(enumerator, wellKnownAtoms.index, numberValue(0));
    ctx.put(enumerator, wellKnownAtoms.length, numberValue(static_cast<double>(names.size())));
    return objectValue(enumerator);
}

bool nextName(ESContext& ctx, const ESValue& enumerator, ESValue& name) {
    if (!enumerator.isObject()) {
        throw ESFatalError{QString::fromLatin1("tos isn't a property object")};
    }
    ESObject* object = enumerator.object;
    const double index = ctx.toDouble(ctx.get(object, wellKnownAtoms.index));
    const double length = ctx.toDouble(ctx.get(object, wellKnownAtoms.length));
    if (!(index < length)) {
        object->elements.release(); // the variable that holds the enumerator lasts
        return false;
    }
    ctx.put(object, wellKnownAtoms.index, numberValue(index + 1));
    name = ctx.getKey(object, numberValue(index));
    return true;
}

ESObject* newFunction(ESContext& ctx, ESCodeBlock* block) {
    ESObject* fn = ctx.newObject(ctx.functionPrototype, ctx.functions);
    ESClosure* closure = ctx.newClosure();
    closure->argCount = block->argCount;
    closure->localCount = block->localCount;
    closure->block = block;
    closure->scope = ctx.scope;
    captureScope(ctx.scope);
    fn->callClosure = closure;
    fn->constructClosure = closure;
    ESObject* prototype = ctx.newPlainObject();
    fn->properties.reserve(ctx.arena(), 2);
    fn->properties.append(ctx.arena(), wellKnownAtoms.length, 0, numberValue(block->argCount));
    fn->properties.append(ctx.arena(), wellKnownAtoms.prototype, 0, objectValue(prototype));
    prototype->properties.reserve(ctx.arena(), 1);
    prototype->properties.append(ctx.arena(), wellKnownAtoms.constructor, 0, objectValue(fn));
    return fn;
}

ESValue arrayLiteral(ESContext& ctx, std::int32_t count, const ESValue* values) {
    // The names of the elements count as used from the last to the first.
    for (auto i = static_cast<std::uint32_t>(count); i-- > 0 && i >= indexNameWatermark;) {
        noteIndexName(i);
    }
    return objectValue(ctx.newArray(static_cast<std::uint32_t>(count), values));
}

namespace {
constexpr std::int32_t capturedNode = -2; // in the memberIndex of a scope node
}

void captureScope(ESObject* scope) {
    for (; scope != nullptr && scope->memberIndex != capturedNode; scope = scope->prototype) {
        scope->memberIndex = capturedNode;
    }
}

bool isCaptured(const ESObject* scopeNode) { return scopeNode->memberIndex == capturedNode; }

void pushActivation(ESContext& ctx, const ESCodeBlock& block, std::int32_t argc, const ESValue* args) {
    const auto formals = static_cast<std::size_t>(block.argCount);
    const auto arguments = static_cast<std::size_t>(argc);
    const std::size_t count = arguments + static_cast<std::size_t>(block.localCount);
    ESObject* activation = ctx.newObject(nullptr, ctx.activationClass);
    auto* slots = ctx.arena().allocateArray<ESProperty>(count);
    std::uint64_t mask = 0;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t variable = i < formals ? i : i - arguments + formals;
        const bool named = i < formals || (i >= arguments && variable < block.variables.size());
        slots[i].atom = named ? block.variables[variable].atom : nullptr;
        slots[i].attributes = named ? block.variables[variable].attributes : std::uint32_t{DontEnum};
        slots[i].setValue(i < arguments ? args[i] : undefinedValue());
        mask |= named ? ESPropertyTable::maskBit(slots[i].atom) : 0;
    }
    activation->properties.adopt(slots, static_cast<std::uint32_t>(count), mask);
    ctx.scope = ctx.newScopeNode(ctx.scope, activation);
}

void notAFunction(ESContext& ctx) { ctx.raiseTypeError("not a function object"); }

void notAConstructor(ESContext& ctx) { ctx.raiseTypeError("new must be given a constructor object"); }

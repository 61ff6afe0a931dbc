// What the operators do beyond two numbers: conversions in their observable order, texts, comparison, scope
// search, enumeration, and the making of objects. Both loops of the machine come here for everything that
// isn't a fast path, so they can't differ.
#pragma once

#include "machine/instructions.h"
#include "runtime/context.h"

// Binary arithmetic, bitwise operators and shifts by opcode (OP_ADD, OP_SUB, ... OP_USHR). Operands convert
// the right one first, but for shifts. May run script.
ESValue binaryOperator(ESContext& ctx, ESOpcode opcode, ESValue left, ESValue right);
// left + right where the sum will only serve as a key: the atom instead of a text that has one already.
ESValue sumAsKey(ESContext& ctx, const ESValue& left, const ESValue& right);
// left < right and left <= right; the right operand converts first. May run script.
bool lessThan(ESContext& ctx, ESValue left, ESValue right);
bool lessOrEqual(ESContext& ctx, ESValue left, ESValue right);
// The language's == . May run script.
bool looseEquals(ESContext& ctx, ESValue left, ESValue right);
// Strict equality; runs nothing.
bool strictEquals(const ESValue& left, const ESValue& right);
ESAtom typeName(const ESValue& v);
// So that typeName() interns its texts anew.
void forgetTypeNames();

// A property of any value: a primitive is wrapped for the occasion. May run script through nothing but keys.
ESValue getField(ESContext& ctx, const ESValue& base, ESAtom atom);
ESValue getIndexed(ESContext& ctx, const ESValue& base, const ESValue& key);
void putField(ESContext& ctx, const ESValue& base, ESAtom atom, const ESValue& v);
void putIndexed(ESContext& ctx, const ESValue& base, const ESValue& key, const ESValue& v);
// base[key] op= right for an X opcode; gives the new value.
ESValue compoundIndexed(ESContext& ctx, ESOpcode opcode, const ESValue& base, const ESValue& key,
                        const ESValue& right);
// base[key]++ and its kin for OP_PREINCE to OP_POSTDECE.
ESValue stepElement(ESContext& ctx, ESOpcode opcode, const ESValue& base, const ESValue& key);
bool deleteIndexed(ESContext& ctx, const ESValue& base, const ESValue& key);

// Search along the scope chain. The object in which the name was found, or the global object.
ESObject* findScope(ESContext& ctx, ESAtom atom);
ESValue getName(ESContext& ctx, ESAtom atom, ESObject** foundIn);
void putName(ESContext& ctx, ESAtom atom, const ESValue& v);
bool deleteName(ESContext& ctx, ESAtom atom);
// OP_PREINCX to OP_POSTDECX.
ESValue stepName(ESContext& ctx, ESOpcode opcode, ESAtom name);

// The enumerator of a value's property names, and its next name; false at the end.
ESValue newEnumerator(ESContext& ctx, const ESValue& v);
bool nextName(ESContext& ctx, const ESValue& enumerator, ESValue& name);

ESObject* newFunction(ESContext& ctx, ESCodeBlock* block);
// count values in order; the elements are stored from the last to the first.
ESValue arrayLiteral(ESContext& ctx, std::int32_t count, const ESValue* values);

// From now on the nodes of this chain outlive the calls that made them.
void captureScope(ESObject* scope);
bool isCaptured(const ESObject* scopeNode);
// To be called before a text is compiled: what it means by a name may depend on the variables of the function
// that runs. See ESRegisterCall.
void showActivation(ESContext& ctx);
// The activation of a call: a scope node in front of ctx.scope, whose object holds the arguments at `args`
// and the locals of the block by position. Becomes ctx.scope.
void pushActivation(ESContext& ctx, const ESCodeBlock& block, std::int32_t argc, const ESValue* args);

[[noreturn]] void notAFunction(ESContext& ctx);
[[noreturn]] void notAConstructor(ESContext& ctx);

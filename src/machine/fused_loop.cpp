// House rules of this loop:
// 1. In locals: pc, the frame of the running function, its code. In the context, always current: scope,
//    thisObject, spSurplus. The context's sp and linePlace are set by SYNC() before anything is called that
//    may raise or run script; acc and frame of the context play no part.
// 2. Operands that are passed on are copied first: what is called may use the stack from the context's sp on.
//    Only the steps have something there, and see to it.
// 3. A script call doesn't recurse: it saves an ESFusedFrame and goes on. Natives recurse through call().
// 4. Nothing is restored after a throw but the depth of frames (FrameGuard); evaluate() does the rest.
// 5. A remembered position is a guess: the slot's atom verifies it, and a miss finds it anew.
// 6. The stack's memory never moves, so a frame may be kept in a pointer across calls; an object's slots and
//    elements may move, so they are fetched again after every call.
#include "machine/fused_calls.h"
#include "machine/fused_sites.h"
#include "machine/fused_values.h"

#include <algorithm>

#if defined(__GNUC__) && !defined(QUORVANE_SWITCH_DISPATCH)
#define ES_COMPUTED_GOTO 1
#pragma GCC diagnostic ignored "-Wpedantic"
#else
#define ES_COMPUTED_GOTO 0
#endif

namespace {

// For a step, which takes nothing from the stack: what runs keeps acc at the context's sp, where the top
// lies.
void toNumberBesideTop(ESContext& ctx, ESValue& v) {
    ctx.acc = ctx.stack[ctx.sp];
    ctx.toNumber(v);
}

const void* const* loop(ESContext* context, ESFusedCode* code);

} // namespace

namespace {

// What runs each instruction: places in the loop, which it alone can name, and gives when it is asked to run nothing.
const void* const* handlerTable() {
    static const void* const* const table = loop(nullptr, nullptr);
    return table;
}

ESFusedCode& codeOf(ESCodeBlock& block) {
    return block.fused != nullptr ? *block.fused : fusedCodeOf(block, handlerTable());
}

} // namespace

void executeFused(ESContext& ctx, ESCodeBlock& block) {
    const FrameGuard guard(ctx);
    loop(&ctx, &codeOf(block));
}

void callFused(ESContext& ctx, const ESClosure& closure, ESObject* receiver, std::int32_t argc) {
    ESFusedCode& code = codeOf(*closure.block);
    ESObject* const savedThis = ctx.thisObject;
    ESObject* const savedScope = ctx.scope;
    const std::int32_t savedSurplus = ctx.spSurplus;
    const std::int32_t base = ctx.sp - argc;
    ctx.sp = base + closure.argCount;
    ctx.spSurplus += argc - closure.argCount - code.uncounted;
    enterFunction(ctx, code, closure, receiver, ctx.stack + base);
    ctx.sp += code.localCount;
    ESObject* const node = ctx.scope;
    const FrameGuard guard(ctx);
    loop(&ctx, &code);
    leaveFunction(code, node);
    ctx.scope = savedScope;
    ctx.thisObject = savedThis;
    ctx.spSurplus = savedSurplus;
    ctx.sp = base;
}

// clang-format off
#define A (pc[1].operand.low)
#define B (pc[1].operand.high)
#define C (pc[2].operand.low)
#define D (pc[2].operand.high)
#define R(offset) (*reinterpret_cast<ESValue*>(reinterpret_cast<char*>(fp) + (offset)))
#define SYNC()                                                                                                   \
    do {                                                                                                         \
        const ESFusedCode::CallOut& callOut = code->callOuts[static_cast<std::size_t>(pc - code->cells.data())]; \
        ctx.sp = static_cast<std::int32_t>(fp - ctx.stack) + callOut.sp;                                         \
        ctx.linePlace = code->block.lines.data() + callOut.offset;                                               \
    } while (false)
#define GOTO(cell) pc = code->cells.data() + (cell)

#if ES_COMPUTED_GOTO
#define CASE(name) L_##name
#define DISPATCH() goto *pc->handler
#define AGAIN() goto *pc->handler
#else
#define CASE(name) case static_cast<std::uint64_t>(ESFusedOp::name)
#define DISPATCH() break
#define AGAIN() continue
#endif
#define NEXT(name)                                                                                               \
    {                                                                                                            \
        pc += fusedCells[static_cast<int>(ESFusedOp::name)];                                                     \
        DISPATCH();                                                                                              \
    }
#define JUMP_IF(condition, target, name)                                                                         \
    {                                                                                                            \
        if (condition) {                                                                                         \
            GOTO(target);                                                                                        \
        } else {                                                                                                 \
            pc += fusedCells[static_cast<int>(ESFusedOp::name)];                                                 \
        }                                                                                                        \
        DISPATCH();                                                                                              \
    }

#define ARITHMETIC(name, opcode, expression)                                                                     \
    CASE(name##RR): {                                                                                            \
        const ESValue& left = R(B);                                                                              \
        const ESValue& right = R(C);                                                                             \
        if (bothNumbers(left, right)) [[likely]] {                                                               \
            const double a = left.number, b = right.number;                                                      \
            setNumber(R(A), expression);                                                                         \
        } else {                                                                                                 \
            SYNC();                                                                                              \
            R(A) = binaryOperator(ctx, opcode, left, right);                                                     \
        }                                                                                                        \
        NEXT(name##RR)                                                                                           \
    }                                                                                                            \
    CASE(name##RN): {                                                                                            \
        const ESValue& left = R(B);                                                                              \
        const double b = pc[2].number;                                                                           \
        if (left.tag == ESTagNumber) [[likely]] {                                                                \
            const double a = left.number;                                                                        \
            setNumber(R(A), expression);                                                                         \
        } else {                                                                                                 \
            SYNC();                                                                                              \
            R(A) = binaryOperator(ctx, opcode, left, numberValue(b));                                            \
        }                                                                                                        \
        NEXT(name##RN)                                                                                           \
    }
#define ARITHMETIC_NR(name, opcode, expression)                                                                  \
    CASE(name##NR): {                                                                                            \
        const double a = pc[2].number;                                                                           \
        const ESValue& right = R(B);                                                                             \
        if (right.tag == ESTagNumber) [[likely]] {                                                               \
            const double b = right.number;                                                                       \
            setNumber(R(A), expression);                                                                         \
        } else {                                                                                                 \
            SYNC();                                                                                              \
            R(A) = binaryOperator(ctx, opcode, numberValue(a), right);                                           \
        }                                                                                                        \
        NEXT(name##NR)                                                                                           \
    }
#define BITWISE(name, opcode, expression)                                                                        \
    CASE(name##RR): {                                                                                            \
        const ESValue& left = R(B);                                                                              \
        const ESValue& right = R(C);                                                                             \
        if (bothNumbers(left, right)) [[likely]] {                                                               \
            const std::int32_t a = ESContext::doubleToInt32(left.number);                                        \
            const std::int32_t b = ESContext::doubleToInt32(right.number);                                       \
            setNumber(R(A), expression);                                                                         \
        } else {                                                                                                 \
            SYNC();                                                                                              \
            R(A) = binaryOperator(ctx, opcode, left, right);                                                     \
        }                                                                                                        \
        NEXT(name##RR)                                                                                           \
    }                                                                                                            \
    CASE(name##RN): {                                                                                            \
        const ESValue& left = R(B);                                                                              \
        const auto b = static_cast<std::int32_t>(C);                                                             \
        if (left.tag == ESTagNumber) [[likely]] {                                                                \
            const std::int32_t a = ESContext::doubleToInt32(left.number);                                        \
            setNumber(R(A), expression);                                                                         \
        } else {                                                                                                 \
            SYNC();                                                                                              \
            R(A) = binaryOperator(ctx, opcode, left, numberValue(b));                                            \
        }                                                                                                        \
        NEXT(name##RN)                                                                                           \
    }
#define COMPARE_AND_JUMP(name, negation, comparison, slow)                                                       \
    CASE(Jump##negation##name##RR): {                                                                            \
        const ESValue& left = R(A);                                                                              \
        const ESValue& right = R(B);                                                                             \
        bool result;                                                                                             \
        if (bothNumbers(left, right)) [[likely]] {                                                               \
            const double a = left.number, b = right.number;                                                      \
            result = comparison;                                                                                 \
        } else {                                                                                                 \
            SYNC();                                                                                              \
            const ESValue a = left, b = right;                                                                   \
            result = slow;                                                                                       \
        }                                                                                                        \
        JUMP_IF(result, C, Jump##negation##name##RR)                                                             \
    }                                                                                                            \
    CASE(Jump##negation##name##RN): {                                                                            \
        const ESValue& left = R(A);                                                                              \
        bool result;                                                                                             \
        if (left.tag == ESTagNumber) [[likely]] {                                                                \
            const double a = left.number, b = pc[2].number;                                                      \
            result = comparison;                                                                                 \
        } else {                                                                                                 \
            SYNC();                                                                                              \
            const ESValue a = left, b = numberValue(pc[2].number);                                               \
            result = slow;                                                                                       \
        }                                                                                                        \
        JUMP_IF(result, B, Jump##negation##name##RN)                                                             \
    }
#define COMPARE_NR_AND_JUMP(name, negation, comparison, slow)                                                    \
    CASE(Jump##negation##name##NR): {                                                                            \
        const ESValue& right = R(A);                                                                             \
        bool result;                                                                                             \
        if (right.tag == ESTagNumber) [[likely]] {                                                               \
            const double a = pc[2].number, b = right.number;                                                     \
            result = comparison;                                                                                 \
        } else {                                                                                                 \
            SYNC();                                                                                              \
            const ESValue a = numberValue(pc[2].number), b = right;                                              \
            result = slow;                                                                                       \
        }                                                                                                        \
        JUMP_IF(result, B, Jump##negation##name##NR)                                                             \
    }
#define COMPARISON(name, comparison, slow)                                                                       \
    CASE(name): {                                                                                                \
        const ESValue& left = R(B);                                                                              \
        const ESValue& right = R(C);                                                                             \
        bool result;                                                                                             \
        if (bothNumbers(left, right)) [[likely]] {                                                               \
            const double a = left.number, b = right.number;                                                      \
            result = comparison;                                                                                 \
        } else {                                                                                                 \
            SYNC();                                                                                              \
            const ESValue a = left, b = right;                                                                   \
            result = slow;                                                                                       \
        }                                                                                                        \
        setBoolean(R(A), result);                                                                                \
        NEXT(name)                                                                                               \
    }
// clang-format on

namespace {

// Runs code until the call that it was entered for ends. Without a context: answers the table of handlers.
const void* const* loop(ESContext* context, ESFusedCode* code) {
#if ES_COMPUTED_GOTO
    static const void* const handlers[] = {
#define ES_FUSED(name, cells) &&L_##name,
#include "machine/fused_ops.def"
    };
    if (context == nullptr) {
        return handlers;
    }
#else
    constexpr const void* const* handlers = nullptr;
    if (context == nullptr) {
        return handlers;
    }
#endif
    ESContext& ctx = *context;
    const std::int32_t entryDepth = ctx.frameDepth;
    const std::int32_t entrySp = ctx.sp;
    ctx.stack[entrySp] = ctx.acc; // as the first push of a block does
    ESValue* fp = ctx.stack + entrySp - code->argCount - code->localCount;
    ESCell* pc = code->cells.data();

    // What enterCall needs: the function, its receiver, its arguments where they lie, where the result goes.
    ESObject* callee;
    ESObject* receiver;
    ESObject* made;
    ESValue* args;
    ESCell* resume;
    std::int32_t argc;
    std::int32_t surplus; // entries that the call counts beyond those in its frame

#if ES_COMPUTED_GOTO
    DISPATCH();
#else
    for (;;) {
        switch (pc->opcode) {
#endif

    CASE(Move) : {
        copyValue(R(A), R(B));
        NEXT(Move)
    }
    CASE(LoadConstant) : {
        ESValue& to = R(A);
        to.tag = B;
        to.bits = pc[2].bits;
        NEXT(LoadConstant)
    }
    CASE(LoadThis) : {
        ESValue& to = R(A);
        to.tag = ESTagObject;
        to.object = ctx.thisObject;
        NEXT(LoadThis)
    }
    CASE(GetGlobal) : {
        copyValue(R(A), ctx.globalObject->properties.at(B));
        NEXT(GetGlobal)
    }
    CASE(PutGlobal) : {
        copyValue(ctx.globalObject->properties.at(A), R(B));
        NEXT(PutGlobal)
    }
    CASE(GetSlot) : {
        copyValue(R(A), ctx.scope->value.object->properties.at(B));
        NEXT(GetSlot)
    }
    CASE(PutSlot) : {
        copyValue(ctx.scope->value.object->properties.at(A), R(B));
        NEXT(PutSlot)
    }
    CASE(GetName) : {
        if (const ESProperty* slot = guessedName(ctx, pc[2].atom, pc[3], B)) [[likely]] {
            copyValue(R(A), *slot);
        } else {
            SYNC();
            R(A) = getName(ctx, pc[2].atom, nullptr);
            rememberName(ctx, pc[2].atom, pc[3], B);
        }
        NEXT(GetName)
    }
    CASE(PutName) : {
        if (ESProperty* slot = guessedName(ctx, pc[2].atom, pc[3], B)) [[likely]] {
            copyValue(*slot, R(A));
        } else {
            SYNC();
            const ESValue v = R(A);
            putName(ctx, pc[2].atom, v);
            rememberName(ctx, pc[2].atom, pc[3], B);
        }
        NEXT(PutName)
    }
    CASE(StepRegister) : {
        ESValue& place = R(A);
        if (place.tag != ESTagNumber) [[unlikely]] {
            SYNC();
            ESValue v = place;
            toNumberBesideTop(ctx, v);
            place = v;
        }
        place.number += static_cast<std::int32_t>(B);
        NEXT(StepRegister)
    }
    CASE(StepGlobal) : {
        if (ctx.globalObject->properties.at(A).tag != ESTagNumber) [[unlikely]] {
            SYNC();
            ESValue v = ctx.globalObject->properties.at(A).value();
            toNumberBesideTop(ctx, v);
            ctx.globalObject->properties.at(A).setValue(v);
        }
        ctx.globalObject->properties.at(A).number += static_cast<std::int32_t>(B);
        NEXT(StepGlobal)
    }
    CASE(StepSlot) : {
        ESObject* activation = ctx.scope->value.object;
        if (activation->properties.at(A).tag != ESTagNumber) [[unlikely]] {
            SYNC();
            ESValue v = activation->properties.at(A).value();
            toNumberBesideTop(ctx, v);
            activation->properties.at(A).setValue(v);
        }
        activation->properties.at(A).number += static_cast<std::int32_t>(B);
        NEXT(StepSlot)
    }
    CASE(StepName) : {
        const auto opcode = static_cast<ESOpcode>(B);
        const ESAtom known = pc[3].atom;
        if (known != nullptr) {
            ESProperty* slot = guessedName(ctx, known, pc[4], C);
            if (slot != nullptr && slot->tag == ESTagNumber && (slot->attributes & ReadOnly) == 0)
                [[likely]] {
                const double by = opcode == OP_PREINCX || opcode == OP_POSTINCX ? 1.0 : -1.0;
                slot->number += by;
                const bool givesNew = opcode == OP_PREINCX || opcode == OP_PREDECX;
                setNumber(R(A), givesNew ? slot->number : slot->number - by);
                NEXT(StepName)
            }
        }
        SYNC();
        const ESValue name = known != nullptr ? atomValue(known) : R(D);
        const ESAtom atom = ctx.toAtom(name);
        const ESValue result = stepName(ctx, opcode, atom);
        rememberName(ctx, atom, pc[4], C);
        R(A) = result;
        NEXT(StepName)
    }

    ARITHMETIC(Add, OP_ADD, a + b)
    ARITHMETIC(Sub, OP_SUB, a - b)
    ARITHMETIC(Mul, OP_MUL, a * b)
    ARITHMETIC(Div, OP_DIV, a / b)
    ARITHMETIC(Mod, OP_MOD, remainderOf(a, b))
    ARITHMETIC_NR(Add, OP_ADD, a + b)
    ARITHMETIC_NR(Sub, OP_SUB, a - b)
    ARITHMETIC_NR(Div, OP_DIV, a / b)
    CASE(AddKey) : {
        const ESValue& left = R(B);
        const ESValue& right = R(C);
        if (bothNumbers(left, right)) {
            setNumber(R(A), left.number + right.number);
        } else {
            SYNC();
            const ESValue leftCopy = left;
            const ESValue rightCopy = right;
            R(A) = sumAsKey(ctx, leftCopy, rightCopy);
        }
        NEXT(AddKey)
    }
    BITWISE(And, OP_BITAND, a & b)
    BITWISE(Or, OP_BITOR, a | b)
    BITWISE(Xor, OP_BITXOR, a ^ b)
    BITWISE(Shl, OP_SHL, static_cast<std::int32_t>(static_cast<std::uint32_t>(a) << (b & 31)))
    BITWISE(Shr, OP_SHR, a >> (b & 31))
    BITWISE(Ushr, OP_USHR, static_cast<std::uint32_t>(a) >> (b & 31))

    COMPARISON(Less, a < b, lessThan(ctx, a, b))
    COMPARISON(LessOrEqual, a <= b, lessOrEqual(ctx, a, b))
    COMPARISON(Equal, a == b, looseEquals(ctx, a, b))
    COMPARISON(NotEqual, a != b, !looseEquals(ctx, a, b))
    COMPARISON(Identical, a == b, strictEquals(a, b))
    CASE(Not) : {
        const bool truth = isTrue(ctx, R(B));
        setBoolean(R(A), !truth);
        NEXT(Not)
    }
    CASE(BitNot) : {
        const ESValue& v = R(B);
        if (v.tag == ESTagNumber) [[likely]] {
            setNumber(R(A), ~ESContext::doubleToInt32(v.number));
        } else {
            SYNC();
            const ESValue copy = v;
            setNumber(R(A), ~ctx.toInt32(copy));
        }
        NEXT(BitNot)
    }
    CASE(ToNumber) : {
        if (R(B).tag == ESTagNumber) {
            setNumber(R(A), R(B).number);
        } else {
            SYNC();
            ESValue v = R(B);
            ctx.toNumber(v);
            setNumber(R(A), v.number);
        }
        NEXT(ToNumber)
    }
    CASE(Negate) : {
        if (R(B).tag == ESTagNumber) [[likely]] {
            setNumber(R(A), -R(B).number);
        } else {
            SYNC();
            ESValue v = R(B);
            ctx.toNumber(v);
            setNumber(R(A), -v.number);
        }
        NEXT(Negate)
    }
    CASE(TypeOf) : {
        const ESAtom name = typeName(R(B));
        R(A) = atomValue(name);
        NEXT(TypeOf)
    }

    CASE(Jump) : {
        GOTO(A);
        DISPATCH();
    }
    // clang-format off
    CASE(JumpTrue) : { JUMP_IF(isTrue(ctx, R(A)), B, JumpTrue) }
    CASE(JumpFalse) : { JUMP_IF(!isTrue(ctx, R(A)), B, JumpFalse) }
    COMPARE_AND_JUMP(Less, , a < b, lessThan(ctx, a, b))
    COMPARE_AND_JUMP(Less, Not, !(a < b), !lessThan(ctx, a, b))
    COMPARE_AND_JUMP(LessOrEqual, , a <= b, lessOrEqual(ctx, a, b))
    COMPARE_AND_JUMP(LessOrEqual, Not, !(a <= b), !lessOrEqual(ctx, a, b))
    COMPARE_NR_AND_JUMP(Less, , a < b, lessThan(ctx, a, b))
    COMPARE_NR_AND_JUMP(Less, Not, !(a < b), !lessThan(ctx, a, b))
    COMPARE_NR_AND_JUMP(LessOrEqual, , a <= b, lessOrEqual(ctx, a, b))
    COMPARE_NR_AND_JUMP(LessOrEqual, Not, !(a <= b), !lessOrEqual(ctx, a, b))
    COMPARE_AND_JUMP(Equal, , a == b, looseEquals(ctx, a, b))
    COMPARE_AND_JUMP(Equal, Not, a != b, !looseEquals(ctx, a, b))
    COMPARE_AND_JUMP(Identical, , a == b, strictEquals(a, b));
    // clang-format on

    CASE(GetField) : {
        const ESValue& base = R(B);
        if (base.tag == ESTagObject) [[likely]] {
            if (const ESProperty* slot = guessedField(base.object, pc[2].atom, pc[3])) [[likely]] {
                copyValue(R(A), *slot);
            } else {
                SYNC();
                R(A) = findField(ctx, base.object, pc[2].atom, pc[3]);
            }
        } else if (base.isString() && pc[2].atom == wellKnownAtoms.length) {
            setNumber(R(A), ESContext::textOf(base).length());
        } else {
            SYNC();
            const ESValue copy = base;
            R(A) = getField(ctx, copy, pc[2].atom);
        }
        NEXT(GetField)
    }
    CASE(GetFieldThis) : {
        if (const ESProperty* slot = guessedField(ctx.thisObject, pc[2].atom, pc[3])) [[likely]] {
            copyValue(R(A), *slot);
        } else {
            SYNC();
            R(A) = findField(ctx, ctx.thisObject, pc[2].atom, pc[3]);
        }
        NEXT(GetFieldThis)
    }
    CASE(PutField) : {
        const ESValue& base = R(A);
        if (base.tag == ESTagObject) [[likely]] {
            ESObject* object = base.object;
            ESProperty* slot = guessedOwn(object, pc[2].atom, pc[3].operand.low);
            if (slot != nullptr && (slot->attributes & ReadOnly) == 0) [[likely]] {
                copyValue(*slot, R(B));
            } else {
                SYNC();
                const ESValue v = R(B);
                storeField(ctx, object, pc[2].atom, v, pc[3]);
            }
        } else {
            SYNC();
            const ESValue copy = base;
            const ESValue v = R(B);
            putField(ctx, copy, pc[2].atom, v);
        }
        NEXT(PutField)
    }
    CASE(PutFieldThis) : {
        ESObject* object = ctx.thisObject;
        ESProperty* slot = guessedOwn(object, pc[2].atom, pc[3].operand.low);
        if (slot != nullptr && (slot->attributes & ReadOnly) == 0) [[likely]] {
            copyValue(*slot, R(B));
        } else if (object->properties.count() == pc[3].operand.low && surelyLacks(object, pc[2].atom) &&
                   object->nativeClass == ctx.plainClass) {
            object->properties.append(ctx.arena(), pc[2].atom, 0, R(B));
        } else {
            SYNC();
            const ESValue v = R(B);
            storeField(ctx, object, pc[2].atom, v, pc[3]);
        }
        NEXT(PutFieldThis)
    }
    CASE(InitField) : {
        ESObject* object = R(A).object;
        if (object->properties.count() == pc[3].operand.low && surelyLacks(object, pc[2].atom) &&
            pc[2].atom->arrayIndex == notAnIndex) [[likely]] {
            object->properties.append(ctx.arena(), pc[2].atom, 0, R(B));
        } else {
            SYNC();
            const ESValue v = R(B);
            storeField(ctx, object, pc[2].atom, v, pc[3]);
        }
        NEXT(InitField)
    }
    CASE(GetIndexed) : {
        const ESValue& base = R(B);
        const ESValue& key = R(C);
        if (base.tag == ESTagObject) [[likely]] {
            if (const ESValue* element = denseElement(base.object, key)) [[likely]] {
                copyValue(R(A), *element);
                NEXT(GetIndexed)
            }
        }
        SYNC();
        const ESValue baseCopy = base;
        const ESValue keyCopy = key;
        R(A) = getIndexed(ctx, baseCopy, keyCopy);
        NEXT(GetIndexed)
    }
    CASE(PutIndexed) : {
        const ESValue& base = R(A);
        const ESValue& key = R(B);
        if (base.tag == ESTagObject) [[likely]] {
            if (ESValue* element = denseElement(base.object, key)) [[likely]] {
                copyValue(*element, R(C));
                NEXT(PutIndexed)
            }
            if (appendElement(ctx, base.object, key, R(C))) {
                NEXT(PutIndexed)
            }
        }
        SYNC();
        const ESValue baseCopy = base;
        const ESValue keyCopy = key;
        const ESValue v = R(C);
        putIndexed(ctx, baseCopy, keyCopy, v);
        NEXT(PutIndexed)
    }
    CASE(CompoundField) : {
        const ESValue& base = R(B);
        const ESValue& right = R(pc[4].operand.low);
        const auto opcode = static_cast<ESOpcode>(pc[3].operand.high);
        if (base.tag == ESTagObject && right.tag == ESTagNumber) [[likely]] {
            ESProperty* slot = guessedOwn(base.object, pc[2].atom, pc[3].operand.low);
            double result;
            if (slot != nullptr && slot->tag == ESTagNumber && slot->attributes == 0 &&
                numberOperator(static_cast<ESOpcode>(opcode - 1), slot->number, right.number, result))
                [[likely]] {
                slot->number = result;
                setNumber(R(A), result);
                NEXT(CompoundField)
            }
        }
        SYNC();
        const ESValue baseCopy = base;
        const ESValue rightCopy = right;
        const ESValue result = compoundIndexed(ctx, opcode, baseCopy, atomValue(pc[2].atom), rightCopy);
        rememberOwn(baseCopy, pc[2].atom, pc[3]);
        R(A) = result;
        NEXT(CompoundField)
    }
    CASE(CompoundIndexed) : {
        const ESValue& base = R(B);
        const ESValue& key = R(C);
        const ESValue& right = R(D);
        const auto opcode = static_cast<ESOpcode>(pc[3].operand.low);
        if (base.tag == ESTagObject && right.tag == ESTagNumber) [[likely]] {
            ESValue* element = denseElement(base.object, key);
            double result;
            if (element != nullptr && element->tag == ESTagNumber &&
                numberOperator(static_cast<ESOpcode>(opcode - 1), element->number, right.number, result))
                [[likely]] {
                element->number = result;
                setNumber(R(A), result);
                NEXT(CompoundIndexed)
            }
        }
        SYNC();
        const ESValue baseCopy = base;
        const ESValue keyCopy = key;
        const ESValue rightCopy = right;
        R(A) = compoundIndexed(ctx, opcode, baseCopy, keyCopy, rightCopy);
        NEXT(CompoundIndexed)
    }
    CASE(StepField) : {
        const ESValue& base = R(B);
        const auto opcode = static_cast<ESOpcode>(pc[3].operand.high);
        if (base.tag == ESTagObject) [[likely]] {
            ESProperty* slot = guessedOwn(base.object, pc[2].atom, pc[3].operand.low);
            if (slot != nullptr && slot->tag == ESTagNumber && slot->attributes == 0) [[likely]] {
                const double old = slot->number;
                slot->number = steppedNumber(old, opcode);
                setNumber(R(A), givesOld(opcode) ? old : slot->number);
                NEXT(StepField)
            }
        }
        SYNC();
        const ESValue baseCopy = base;
        const ESValue result = stepElement(ctx, opcode, baseCopy, atomValue(pc[2].atom));
        rememberOwn(baseCopy, pc[2].atom, pc[3]);
        R(A) = result;
        NEXT(StepField)
    }
    CASE(StepIndexed) : {
        const ESValue& base = R(B);
        const ESValue& key = R(C);
        const auto opcode = static_cast<ESOpcode>(D);
        ESValue* element = base.tag == ESTagObject ? denseElement(base.object, key) : nullptr;
        if (element != nullptr && element->tag == ESTagNumber) [[likely]] {
            const double old = element->number;
            element->number = steppedNumber(old, opcode);
            setNumber(R(A), givesOld(opcode) ? old : element->number);
        } else {
            SYNC();
            const ESValue baseCopy = base;
            const ESValue keyCopy = key;
            R(A) = stepElement(ctx, opcode, baseCopy, keyCopy);
        }
        NEXT(StepIndexed)
    }
    CASE(DeleteIndexed) : {
        SYNC();
        const ESValue base = R(B);
        const ESValue key = R(C);
        setBoolean(R(A), deleteIndexed(ctx, base, key));
        NEXT(DeleteIndexed)
    }
    CASE(DeleteName) : {
        SYNC();
        setBoolean(R(A), deleteName(ctx, pc[2].atom));
        NEXT(DeleteName)
    }

    CASE(CallGlobal) : {
        SYNC();
        const ESProperty& slot = ctx.globalObject->properties.at(D);
        if (slot.tag != ESTagObject || slot.object->callClosure == nullptr) [[unlikely]] {
            notAFunction(ctx);
        }
        callee = slot.object;
        receiver = ctx.globalObject;
        made = nullptr;
        args = &R(B);
        argc = static_cast<std::int32_t>(C);
        surplus = 0;
        resume = pc + fusedCells[static_cast<int>(ESFusedOp::CallGlobal)];
        goto enterCall;
    }
    CASE(CallRegister) : {
        SYNC();
        const ESValue& fn = R(D);
        if (fn.tag != ESTagObject || fn.object->callClosure == nullptr) [[unlikely]] {
            notAFunction(ctx);
        }
        callee = fn.object;
        receiver = ctx.globalObject;
        made = nullptr;
        args = &R(B);
        argc = static_cast<std::int32_t>(C);
        surplus = 0;
        resume = pc + fusedCells[static_cast<int>(ESFusedOp::CallRegister)];
        goto enterCall;
    }
    CASE(CallField) : {
        SYNC();
        args = &R(B);
        argc = static_cast<std::int32_t>(C);
        ESValue fn;
        if (D == thisOperand) {
            receiver = ctx.thisObject;
        } else if (R(D).isObject()) [[likely]] {
            receiver = R(D).object;
        } else {
            const ESValue base = R(D);
            if (base.isString()) {
                // A method of String needs no object for its receiver, as long as nobody could tell.
                const ESProperty* slot = guessedField(ctx.stringPrototype, pc[3].atom, pc[4]);
                if (slot == nullptr && pc[3].atom != wellKnownAtoms.length) {
                    findField(ctx, ctx.stringPrototype, pc[3].atom, pc[4]);
                    slot = guessedField(ctx.stringPrototype, pc[3].atom, pc[4]);
                }
                if (slot != nullptr && slot->tag == ESTagObject && slot->object->nativeClass == ctx.strings &&
                    slot->object->callClosure != nullptr) {
                    ESObject* method = slot->object;
                    std::int32_t padded = argc;
                    for (; padded < method->callClosure->argCount; ++padded) {
                        args[padded] = undefinedValue();
                    }
                    if (ctx.sp + ctx.spSurplus > ESContext::stackSize) {
                        ctx.stackTooSmall();
                    }
                    ctx.sp += padded - argc;
                    if (ctx.strings->callOnText(ctx, method->memberIndex, base, padded, args)) {
                        copyValue(R(A), args[0]);
                        NEXT(CallField)
                    }
                    SYNC();
                }
            }
            receiver = ctx.objectOf(base);
        }
        if (const ESProperty* slot = guessedField(receiver, pc[3].atom, pc[4])) [[likely]] {
            fn = slot->value();
        } else if (pc[3].atom->arrayIndex != notAnIndex) {
            fn = ctx.get(receiver, pc[3].atom);
        } else {
            fn = findField(ctx, receiver, pc[3].atom, pc[4]);
        }
        if (!fn.isObject() || fn.object->callClosure == nullptr) [[unlikely]] {
            notAFunction(ctx);
        }
        callee = fn.object;
        made = nullptr;
        surplus = 0;
        resume = pc + fusedCells[static_cast<int>(ESFusedOp::CallField)];
        goto enterCall;
    }
    CASE(CallIndexed) : {
        SYNC();
        // The key's text first, then the object.
        const ESValue key = R(pc[3].operand.low);
        const ESValue base = R(D);
        const std::uint32_t index = ESContext::arrayIndexOf(key);
        const ESAtom atom = index == notAnIndex ? ctx.toAtom(key) : nullptr;
        receiver = ctx.objectOf(base);
        const ESValue fn = atom == nullptr ? ctx.getElement(receiver, index) : ctx.get(receiver, atom);
        if (!fn.isObject() || fn.object->callClosure == nullptr) [[unlikely]] {
            notAFunction(ctx);
        }
        callee = fn.object;
        made = nullptr;
        args = &R(B);
        argc = static_cast<std::int32_t>(C);
        surplus = 0;
        resume = pc + fusedCells[static_cast<int>(ESFusedOp::CallIndexed)];
        goto enterCall;
    }
    CASE(CallName) : {
        SYNC();
        ESObject* foundIn = nullptr;
        ESValue fn;
        if (const ESProperty* slot = guessedName(ctx, pc[3].atom, pc[4], D)) [[likely]] {
            fn = slot->value();
            const ESObject* node = ctx.scope;
            for (std::uint32_t hops = pc[4].operand.low; hops != 0; --hops) {
                node = node->prototype;
            }
            foundIn = node->value.object;
        } else {
            fn = getName(ctx, pc[3].atom, &foundIn);
            rememberName(ctx, pc[3].atom, pc[4], D);
            captureScope(ctx.scope); // the callee gets the scope's object as `this`
        }
        if (!fn.isObject() || fn.object->callClosure == nullptr) [[unlikely]] {
            notAFunction(ctx);
        }
        callee = fn.object;
        receiver = foundIn;
        made = nullptr;
        args = &R(B);
        argc = static_cast<std::int32_t>(C);
        surplus = 0;
        resume = pc + fusedCells[static_cast<int>(ESFusedOp::CallName)];
        goto enterCall;
    }
    CASE(New) : {
        SYNC();
        const ESValue& fn = R(D);
        if (!fn.isObject() || fn.object->constructClosure == nullptr) [[unlikely]] {
            notAConstructor(ctx);
        }
        args = &R(B);
        argc = static_cast<std::int32_t>(C);
        callee = fn.object;
        if (callee->memberIndex >= 0) {
            if (code->inRegisters) {
                ESRegisterCall call(ctx, *code, fp);
                ctx.acc = objectValue(ctx.construct(callee, argc, args));
                if (call.shown) [[unlikely]] {
                    goto goOnBytes;
                }
                R(A) = ctx.acc;
            } else {
                ESObject* object = ctx.construct(callee, argc, args);
                R(A) = objectValue(object);
            }
            NEXT(New)
        }
        receiver = made = newFromPrototypeOf(ctx, callee);
        // The arguments count twice on the stack, and so does what lay on top of it.
        surplus = argc + 1;
        if (ctx.sp + ctx.spSurplus + argc > ESContext::stackSize) {
            ctx.stackTooSmall();
        }
        resume = pc + fusedCells[static_cast<int>(ESFusedOp::New)];
        goto enterCall;
    }

    CASE(NewObject) : {
        ESObject* object = ctx.newPlainObject();
        object->properties.reserve(ctx.arena(), B);
        ESValue& to = R(A);
        to.tag = ESTagObject;
        to.object = object;
        NEXT(NewObject)
    }
    CASE(MakeArray) : {
        SYNC();
        R(A) = arrayLiteral(ctx, static_cast<std::int32_t>(C), &R(B));
        NEXT(MakeArray)
    }
    CASE(Closure) : {
        R(A) = objectValue(newFunction(ctx, codeBlockAt(static_cast<std::int32_t>(B))));
        NEXT(Closure)
    }
    CASE(Enumerate) : {
        SYNC();
        const ESValue v = R(B);
        R(A) = newEnumerator(ctx, v);
        NEXT(Enumerate)
    }
    CASE(NextName) : {
        SYNC();
        const ESValue enumerator = R(B);
        ESValue name;
        const bool found = nextName(ctx, enumerator, name);
        if (found) {
            R(A) = name;
        }
        JUMP_IF(found, C, NextName)
    }
    CASE(With) : {
        SYNC();
        ctx.scope = ctx.newScopeNode(ctx.scope, ctx.objectOf(ESValue(R(A))));
        NEXT(With)
    }
    CASE(EndWith) : {
        ctx.scope = ctx.scope->prototype;
        NEXT(EndWith)
    }

    {
        ESValue result;
    leaveWithAcc:
        result = ctx.acc;
        goto leave;
        CASE(ReturnUndefined) : result = undefinedValue();
        goto leave;
        CASE(Return) : copyValue(result, R(A));
    leave:
        if (ctx.frameDepth == entryDepth) {
            const std::size_t place = static_cast<std::size_t>(pc - code->cells.data());
            ctx.linePlace = code->block.lines.data() + code->callOuts[place].offset;
            ctx.acc = result;
            ctx.sp = entrySp + 1;
            return nullptr;
        }
        const ESFusedFrame& saved = ctx.frames[--ctx.frameDepth];
        leaveFunction(*code, saved.node);
        if (saved.made != nullptr) {
            constexpr std::uint32_t mostReserved = 32;
            code->propertiesMade =
                std::clamp(saved.made->properties.count(), code->propertiesMade, mostReserved);
            if (result.tag != ESTagObject) {
                result.tag = ESTagObject;
                result.object = saved.made;
            }
        }
        code = saved.code;
        fp = saved.frame;
        pc = const_cast<ESCell*>(saved.pc);
        ctx.scope = saved.scope;
        ctx.thisObject = saved.thisObject;
        ctx.spSurplus = saved.surplus;
        copyValue(R(saved.destination), result);
        DISPATCH();
    }

#if !ES_COMPUTED_GOTO
}
continue;
#endif

// Enters `callee`. SYNC() has been done; the result goes to register A of the calling instruction.
enterCall : {
    if (ctx.sp + ctx.spSurplus + surplus > ESContext::stackSize) [[unlikely]] {
        ctx.stackTooSmall();
    }
    const ESClosure* closure = callee->callClosure;
    const std::int32_t wanted = closure->argCount;
    std::int32_t count = argc;
    for (; count < wanted; ++count) {
        args[count] = undefinedValue();
    }
    if (callee->memberIndex >= 0) {
        ctx.sp += count - argc;
        if (code->inRegisters) {
            ESRegisterCall call(ctx, *code, fp);
            callee->nativeClass->call(ctx, callee, receiver, count, args);
            if (call.shown) [[unlikely]] {
                ctx.acc = args[0];
                goto goOnBytes;
            }
        } else {
            callee->nativeClass->call(ctx, callee, receiver, count, args);
        }
        copyValue(R(A), args[0]);
        pc = resume;
        AGAIN();
    }
    if (closure->block == nullptr) { // Function.prototype
        R(A) = made != nullptr ? objectValue(made) : undefinedValue();
        pc = resume;
        AGAIN();
    }
    ESFusedFrame& saved = ctx.frames[ctx.frameDepth++];
    saved.pc = resume;
    saved.code = code;
    saved.frame = fp;
    saved.scope = ctx.scope;
    saved.thisObject = ctx.thisObject;
    saved.made = made;
    saved.surplus = ctx.spSurplus;
    saved.destination = A;
    code = closure->block->fused != nullptr ? closure->block->fused.get()
                                            : &fusedCodeOf(*closure->block, handlers);
    fp = args;
    // Arguments beyond the formals can't be reached; they only count.
    ctx.spSurplus = saved.surplus + surplus + (count - wanted) - code->uncounted;
    enterFunction(ctx, *code, *closure, receiver, args);
    saved.node = ctx.scope;
    pc = code->cells.data();
    AGAIN();
}

// acc holds the result of the native call at pc.
goOnBytes : {
    const std::int32_t offset = code->callOuts[static_cast<std::size_t>(pc - code->cells.data())].offset;
    finishOnBytes(ctx, *code, fp, offset);
    if (ctx.frameDepth == entryDepth) {
        ctx.sp = entrySp + 1;
        return nullptr;
    }
    goto leaveWithAcc;
}
#if !ES_COMPUTED_GOTO
}
#endif
}

} // namespace

#undef A
#undef B
#undef C
#undef D
#undef R
#undef SYNC
#undef GOTO
#undef CASE
#undef DISPATCH
#undef AGAIN
#undef NEXT
#undef JUMP_IF
#undef ARITHMETIC
#undef ARITHMETIC_NR
#undef BITWISE
#undef COMPARE_AND_JUMP
#undef COMPARE_NR_AND_JUMP
#undef COMPARISON
#undef ES_COMPUTED_GOTO

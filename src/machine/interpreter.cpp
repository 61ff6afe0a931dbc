// House rules of this loop:
// 1. All machine state lives in the context; pc is the only local, so anything may be called at any point.
// 2. `acc` is the logical top of the stack. PUSH stores the old top first; POP drops it.
// 3. linePlace is set before every instruction: whoever raises an error finds its line.
// 4. Nothing is restored after a throw; evaluate() does that.
// 5. Pushes aren't tested: a block's depth is known, and the stack has room for it behind every call.
// 6. What an operator still needs when it may have run script is handed to it as a copy: a run writes over aux
//    and over the entries from sp on. Only acc is kept for it.
#include "machine/interpreter.h"

#include "machine/code_block.h"
#include "machine/listing.h"
#include "machine/operators.h"
#include "runtime/context.h"

#include <cstdlib>

#define PUSH(v)                                                                                              \
    do {                                                                                                     \
        const ESValue pushed = (v);                                                                          \
        ctx.stack[ctx.sp++] = ctx.acc;                                                                       \
        ctx.acc = pushed;                                                                                    \
    } while (false)
#define POP() (ctx.acc = ctx.stack[--ctx.sp])

namespace {

// Steps a variable that lies in the value stack or in a property.
template <typename Place>
void stepVariable(ESContext& ctx, Place& place, double step) {
    ESValue v = place.value();
    ctx.toNumber(v);
    v.number += step;
    place.setValue(v);
}
struct StackPlace {
    ESValue& v;
    ESValue value() const { return v; }
    void setValue(const ESValue& n) { v = n; }
};

// Calls `fn` with the top argc entries of the stack, if it can be called.
void callValue(ESContext& ctx, const ESValue& fn, ESObject* receiver, std::int32_t argc) {
    if (!fn.isObject() || fn.object->callClosure == nullptr) {
        notAFunction(ctx);
    }
    callObject(ctx, fn.object, receiver, argc);
}

// CALLF and CALLX: the receiver stands in acc, the arguments are on the stack already.
void callMethod(ESContext& ctx, std::uint32_t index, ESAtom atom, std::int32_t argc) {
    ctx.toObject(ctx.acc);
    ESObject* receiver = ctx.acc.object;
    const ESValue fn = atom != nullptr ? ctx.get(receiver, atom) : ctx.getElement(receiver, index);
    callValue(ctx, fn, receiver, argc);
}

} // namespace

template <bool AsksKeepRunning>
void executeBytes(ESContext& ctx, ESCodeBlock& block, std::int32_t pc) {
    const auto first = [&] { return block.operandAt(pc + 1); };
    const auto second = [&] { return static_cast<std::int32_t>(block.operandAt(pc + 3)); };
    const auto global = [&]() -> ESProperty& { return ctx.globalObject->properties.at(first()); };
    const auto argument = [&]() -> ESValue& { return ctx.frame[first()]; };
    const auto local = [&]() -> ESValue& { return ctx.frame[ctx.frameArgs + first()]; };
    const auto argumentInMemory = [&]() -> ESProperty& {
        return ctx.scope->value.object->properties.at(first());
    };
    const auto localInMemory = [&]() -> ESProperty& {
        return ctx.scope->value.object->properties.at(static_cast<std::uint32_t>(ctx.frameArgs) + first());
    };
    for (;;) {
        if (AsksKeepRunning && !ctx.keepRunning()) {
            return;
        }
        ctx.linePlace = &block.lines[static_cast<std::size_t>(pc)];
        const auto opcode = static_cast<ESOpcode>(block.code[static_cast<std::size_t>(pc)]);
        std::int32_t next = pc + instructionTable[opcode].width();
        switch (opcode) {
        case OP_NUM:
            PUSH(numberValue(block.numbers[first()]));
            break;
        case OP_NUM_0:
        case OP_NUM_1:
        case OP_NUM_2:
        case OP_NUM_3:
        case OP_NUM_4:
            PUSH(numberValue(opcode - OP_NUM_0));
            break;
        case OP_NUM_M1:
            PUSH(numberValue(-1));
            break;
        case OP_NULL:
            PUSH(nullValue());
            break;
        case OP_TRUE:
            PUSH(booleanValue(true));
            break;
        case OP_FALSE:
            PUSH(booleanValue(false));
            break;
        case OP_UNDEFINED:
            PUSH(undefinedValue());
            break;
        case OP_THIS:
            PUSH(objectValue(ctx.thisObject));
            break;
        case OP_STR:
            PUSH(atomValue(atomAt(first())));
            break;
        case OP_NEW:
        case OP_NEWA: {
            if (!ctx.acc.isObject() || ctx.acc.object->constructClosure == nullptr) {
                notAConstructor(ctx);
            }
            const std::int32_t count = opcode == OP_NEWA ? first() : 0;
            ESObject* made = ctx.construct(ctx.acc.object, count, &ctx.stack[ctx.sp - count]);
            ctx.sp -= count;
            ctx.acc = objectValue(made);
            break;
        }
        case OP_DROP:
            POP();
            break;
        case OP_DUP:
            ctx.stack[ctx.sp++] = ctx.acc;
            break;
        case OP_VOID:
            ctx.acc = undefinedValue();
            break;
        case OP_TYPEOF:
            ctx.acc = atomValue(typeName(ctx.acc));
            break;
        case OP_ENUM:
            ctx.acc = newEnumerator(ctx, ctx.acc);
            break;
        case OP_NEXT:
            if (nextName(ctx, ctx.acc, ctx.acc)) {
                next = first();
            } else {
                POP();
            }
            break;
        case OP_CLOSURE:
            PUSH(objectValue(newFunction(ctx, codeBlockAt(first()))));
            break;
        case OP_MKARRAY: {
            const std::int32_t count = first();
            ctx.stack[ctx.sp] = ctx.acc; // the last element; the first lies count - 1 below
            const ESValue array = arrayLiteral(ctx, count, &ctx.stack[ctx.sp - count + 1]);
            ctx.sp -= count - 1;
            ctx.acc = array;
            break;
        }
        case OP_NEWOBJ:
            PUSH(objectValue(ctx.newPlainObject()));
            break;
        case OP_WITH:
            ctx.toObject(ctx.acc);
            ctx.scope = ctx.newScopeNode(ctx.scope, ctx.acc.object);
            POP();
            break;
        case OP_ENDWITH:
            ctx.scope = ctx.scope->prototype;
            break;
        case OP_INITF:
            ctx.aux = ctx.stack[--ctx.sp];
            ctx.put(ctx.aux.object, atomAt(first()), ctx.acc);
            ctx.acc = ctx.aux;
            break;

        case OP_CALLW: {
            ctx.stack[ctx.sp++] = ctx.acc;
            ESObject* foundIn = nullptr;
            ctx.acc = getName(ctx, atomAt(first()), &foundIn);
            captureScope(ctx.scope);
            callValue(ctx, ctx.acc, foundIn, second());
            break;
        }
        case OP_CALLF:
            callMethod(ctx, notAnIndex, atomAt(first()), second());
            break;
        case OP_CALLG:
            ctx.stack[ctx.sp++] = ctx.acc;
            ctx.acc = global().value();
            callValue(ctx, ctx.acc, ctx.globalObject, second());
            break;
        case OP_CALLA:
        case OP_CALLL:
            ctx.stack[ctx.sp++] = ctx.acc;
            ctx.acc = opcode == OP_CALLA ? argument() : local();
            callValue(ctx, ctx.acc, ctx.globalObject, second());
            break;
        case OP_CALLAM:
        case OP_CALLLM:
            ctx.stack[ctx.sp++] = ctx.acc;
            ctx.acc = (opcode == OP_CALLAM ? argumentInMemory() : localInMemory()).value();
            callValue(ctx, ctx.acc, ctx.globalObject, second());
            break;
        case OP_CALLX: {
            // The key's text first, then the object.
            const std::uint32_t index = ESContext::arrayIndexOf(ctx.acc);
            const ESAtom atom = index == notAnIndex ? ctx.toAtom(ctx.acc) : nullptr;
            POP();
            callMethod(ctx, index, atom, first());
            break;
        }
        case OP_CALLV:
            callValue(ctx, ctx.acc, ctx.globalObject, first());
            break;

        case OP_GETW:
            PUSH(getName(ctx, atomAt(first()), nullptr));
            break;
        case OP_GETF:
            ctx.acc = getField(ctx, ctx.acc, atomAt(first()));
            break;
        case OP_GETG:
            PUSH(global().value());
            break;
        case OP_GETA:
            PUSH(argument());
            break;
        case OP_GETL:
            PUSH(local());
            break;
        case OP_GETAM:
            PUSH(argumentInMemory().value());
            break;
        case OP_GETLM:
            PUSH(localInMemory().value());
            break;
        case OP_GETX:
            ctx.aux = ctx.stack[--ctx.sp];
            ctx.acc = getIndexed(ctx, ctx.aux, ctx.acc);
            break;

        case OP_PUTW:
            putName(ctx, atomAt(first()), ctx.acc);
            POP();
            break;
        case OP_PUTF: {
            const ESValue v = ctx.stack[--ctx.sp];
            putField(ctx, ctx.acc, atomAt(first()), v);
            POP();
            break;
        }
        case OP_PUTG:
            global().setValue(ctx.acc);
            POP();
            break;
        case OP_PUTA:
            argument() = ctx.acc;
            POP();
            break;
        case OP_PUTL:
            local() = ctx.acc;
            POP();
            break;
        case OP_PUTAM:
            argumentInMemory().setValue(ctx.acc);
            POP();
            break;
        case OP_PUTLM:
            localInMemory().setValue(ctx.acc);
            POP();
            break;
        case OP_PUTX: {
            ctx.sp -= 2;
            const ESValue base = ctx.stack[ctx.sp + 1];
            const ESValue v = ctx.stack[ctx.sp];
            putIndexed(ctx, base, ctx.acc, v);
            POP();
            break;
        }

        case OP_ADD:
        case OP_SUB:
        case OP_MUL:
        case OP_DIV:
        case OP_MOD:
        case OP_BITAND:
        case OP_BITOR:
        case OP_BITXOR:
        case OP_SHL:
        case OP_SHR:
        case OP_USHR:
            ctx.aux = ctx.stack[--ctx.sp];
            ctx.acc = binaryOperator(ctx, opcode, ctx.aux, ctx.acc);
            break;
        case OP_ADDX:
        case OP_SUBX:
        case OP_MULX:
        case OP_DIVX:
        case OP_MODX:
        case OP_BITANDX:
        case OP_BITORX:
        case OP_BITXORX:
        case OP_SHLX:
        case OP_SHRX:
        case OP_USHRX: {
            ctx.sp -= 2;
            const ESValue base = ctx.stack[ctx.sp + 1];
            const ESValue right = ctx.stack[ctx.sp];
            ctx.acc = compoundIndexed(ctx, opcode, base, ctx.acc, right);
            break;
        }

        case OP_INCG:
        case OP_DECG:
            stepVariable(ctx, global(), opcode == OP_INCG ? 1.0 : -1.0);
            break;
        case OP_INCA:
        case OP_DECA: {
            StackPlace place{argument()};
            stepVariable(ctx, place, opcode == OP_INCA ? 1.0 : -1.0);
            break;
        }
        case OP_INCL:
        case OP_DECL: {
            StackPlace place{local()};
            stepVariable(ctx, place, opcode == OP_INCL ? 1.0 : -1.0);
            break;
        }
        case OP_INCM:
        case OP_DECAM:
            stepVariable(ctx, argumentInMemory(), opcode == OP_INCM ? 1.0 : -1.0);
            break;
        case OP_INCLM:
        case OP_DECLM:
            stepVariable(ctx, localInMemory(), opcode == OP_INCLM ? 1.0 : -1.0);
            break;
        case OP_PREINCX:
        case OP_POSTINCX:
        case OP_PREDECX:
        case OP_POSTDECX:
            ctx.acc = stepName(ctx, opcode, ctx.toAtom(ctx.acc));
            break;
        case OP_PREINCE:
        case OP_POSTINCE:
        case OP_PREDECE:
        case OP_POSTDECE:
            ctx.aux = ctx.stack[--ctx.sp];
            ctx.acc = stepElement(ctx, opcode, ctx.aux, ctx.acc);
            break;
        case OP_DELETEW:
            PUSH(booleanValue(deleteName(ctx, atomAt(first()))));
            break;
        case OP_DELETEX:
            ctx.aux = ctx.stack[--ctx.sp];
            ctx.acc = booleanValue(deleteIndexed(ctx, ctx.aux, ctx.acc));
            break;

        case OP_LT:
        case OP_LE:
            ctx.aux = ctx.stack[--ctx.sp];
            ctx.acc = booleanValue(opcode == OP_LT ? lessThan(ctx, ctx.aux, ctx.acc)
                                                   : lessOrEqual(ctx, ctx.aux, ctx.acc));
            break;
        case OP_EQ:
        case OP_NE:
            ctx.aux = ctx.stack[--ctx.sp];
            ctx.acc = booleanValue(looseEquals(ctx, ctx.aux, ctx.acc) == (opcode == OP_EQ));
            break;
        case OP_IDENTITY:
        case OP_NOTIDENTITY:
            ctx.aux = ctx.stack[--ctx.sp];
            ctx.acc = booleanValue(strictEquals(ctx.aux, ctx.acc) == (opcode == OP_IDENTITY));
            break;
        case OP_LOGNOT:
            ctx.acc = booleanValue(!ctx.toBoolean(ctx.acc));
            break;
        case OP_BITNOT:
            ctx.acc = numberValue(~ctx.toInt32(ctx.acc));
            break;
        case OP_POS:
            ctx.toNumber(ctx.acc);
            break;
        case OP_NEG:
            ctx.toNumber(ctx.acc);
            ctx.acc.number = -ctx.acc.number;
            break;

        case OP_LOGAND:
        case OP_LOGOR:
            if (ctx.toBoolean(ctx.acc) == (opcode == OP_LOGOR)) {
                next = first();
            } else {
                POP();
            }
            break;
        case OP_J:
            next = first();
            break;
        case OP_JT:
        case OP_JF: {
            const bool truth = ctx.toBoolean(ctx.acc);
            POP();
            next = truth == (opcode == OP_JT) ? first() : next;
            break;
        }
        case OP_JT_DROP: {
            const bool truth = ctx.toBoolean(ctx.acc);
            POP();
            if (truth) {
                POP();
                next = first();
            }
            break;
        }
        case OP_JLT: {
            ctx.aux = ctx.stack[--ctx.sp];
            const bool less = lessThan(ctx, ctx.aux, ctx.acc);
            POP();
            next = less ? first() : next;
            break;
        }
        case OP_RET:
            return;
        case OP_RETU:
            PUSH(undefinedValue());
            return;
        case OP_INC:
        case OP_DEC:
        default:
            listInstruction(ctx.globalObject, block, pc);
            std::abort();
        }
        pc = next;
    }
}

#undef PUSH
#undef POP

template void executeBytes<false>(ESContext& ctx, ESCodeBlock& block, std::int32_t pc);
template void executeBytes<true>(ESContext& ctx, ESCodeBlock& block, std::int32_t pc);

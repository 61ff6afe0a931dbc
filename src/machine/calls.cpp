// Calls from below the machine (ESContext::callHook), and those of the loop over bytes: the stack protocol,
// missing arguments, frames, activations and `new`. There is no call-frame record: what must be restored
// lives in the local variables of callObject().
#include "machine/code_block.h"
#include "machine/fused_code.h"
#include "machine/interpreter.h"
#include "machine/operators.h"
#include "runtime/context.h"
#include "system/native_stack.h"

#include <algorithm>

void ESContext::execute(ESCodeBlock* block) {
    if (runsFused()) {
        executeFused(*this, *block);
    } else if (asksKeepRunning) {
        executeBytes<true>(*this, *block);
    } else {
        executeBytes<false>(*this, *block);
    }
}

void callObject(ESContext& ctx, ESObject* fn, ESObject* receiver, std::int32_t argc) {
    // A conversion within a conversion leaves few entries, and hundreds of bytes.
    if (ctx.sp + ctx.spSurplus > ESContext::stackSize || nativeStackLow()) {
        ctx.stackTooSmall();
    }
    const ESClosure* closure = fn->callClosure;
    if (closure == nullptr) {
        ctx.raiseTypeError("can only call function objects");
    }
    for (; argc < closure->argCount; ++argc) {
        ctx.stack[ctx.sp++] = undefinedValue();
    }
    if (fn->memberIndex >= 0) {
        ESValue* argv = &ctx.stack[ctx.sp - argc];
        fn->nativeClass->call(ctx, fn, receiver, argc, argv);
        ctx.sp -= argc;
        ctx.acc = ctx.stack[ctx.sp];
        return;
    }
    if (closure->block == nullptr) { // Function.prototype
        ctx.sp -= argc;
        ctx.acc = undefinedValue();
        return;
    }
    if (ctx.runsFused()) {
        return callFused(ctx, *closure, receiver, argc);
    }
    ESObject* const savedThis = ctx.thisObject;
    ESValue* const savedFrame = ctx.frame;
    const std::int32_t savedArgs = ctx.frameArgs;
    ESObject* const savedScope = ctx.scope;
    ctx.frameArgs = argc;
    ctx.frame = &ctx.stack[ctx.sp - argc];
    ctx.scope = closure->scope;
    std::int32_t locals = closure->localCount;
    if (closure->block->needsActivation) {
        pushActivation(ctx, *closure->block, argc, ctx.frame);
        locals = 0;
    } else {
        std::fill_n(&ctx.stack[ctx.sp], locals, undefinedValue());
        ctx.sp += locals;
    }
    ctx.thisObject = receiver;
    ctx.execute(closure->block);
    ctx.scope = savedScope;
    ctx.thisObject = savedThis;
    ctx.frame = savedFrame;
    ctx.frameArgs = savedArgs;
    ctx.sp -= locals + argc + 1;
}

// Calls from natives, and those of the loop over bytes: the stack protocol, missing arguments, frames,
// activations and `new`. There is no call-frame record: what must be restored lives in the local variables
// of call().
#include "machine/code_block.h"
#include "machine/fused_code.h"
#include "machine/interpreter.h"
#include "machine/operators.h"
#include "runtime/context.h"
#include "runtime/native_stack.h"

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

void ESContext::call(ESObject* fn, ESObject* receiver, std::int32_t argc) {
    // A conversion within a conversion leaves few entries, and hundreds of bytes.
    if (sp + spSurplus > stackSize || nativeStackLow()) {
        stackTooSmall();
    }
    const ESClosure* closure = fn->callClosure;
    if (closure == nullptr) {
        raiseTypeError("can only call function objects");
    }
    for (; argc < closure->argCount; ++argc) {
        stack[sp++] = undefinedValue();
    }
    if (fn->memberIndex >= 0) {
        ESValue* argv = &stack[sp - argc];
        fn->nativeClass->call(*this, fn, receiver, argc, argv);
        sp -= argc;
        acc = stack[sp];
        return;
    }
    if (closure->block == nullptr) { // Function.prototype
        sp -= argc;
        acc = undefinedValue();
        return;
    }
    if (runsFused()) {
        return callFused(*this, *closure, receiver, argc);
    }
    ESObject* const savedThis = thisObject;
    ESValue* const savedFrame = frame;
    const std::int32_t savedArgs = frameArgs;
    ESObject* const savedScope = scope;
    frameArgs = argc;
    frame = &stack[sp - argc];
    scope = closure->scope;
    std::int32_t locals = closure->localCount;
    if (closure->block->needsActivation) {
        pushActivation(*this, *closure->block, argc, frame);
        locals = 0;
    } else {
        std::fill_n(&stack[sp], locals, undefinedValue());
        sp += locals;
    }
    thisObject = receiver;
    execute(closure->block);
    scope = savedScope;
    thisObject = savedThis;
    frame = savedFrame;
    frameArgs = savedArgs;
    sp -= locals + argc + 1;
}

void ESContext::callFunction(ESObject* fn, ESObject* receiver, std::int32_t argc, const ESValue* argv,
                             ESValue& result) {
    if (sp + spSurplus + argc > stackSize) {
        stackTooSmall();
    }
    stack[sp++] = acc;
    for (std::int32_t i = 0; i < argc; ++i) {
        stack[sp++] = argv[i];
    }
    call(fn, receiver, argc);
    result = acc;
    acc = stack[--sp];
}

ESObject* ESContext::construct(ESObject* fn, std::int32_t argc, const ESValue* argv) {
    if (fn->memberIndex >= 0) {
        ESObject* made = fn->nativeClass->construct(*this, fn, argc, argv);
        if (made == nullptr) {
            raiseError(errorConstructor,
                       toString(fn->value) + QStringLiteral(" failed to generate an object"));
        }
        return made;
    }
    const ESValue prototype = get(fn, wellKnownAtoms.prototype);
    ESObject* made = newObject(prototype.isObject() ? prototype.object : objectPrototype, plainClass);
    ESValue result = undefinedValue();
    callFunction(fn, made, argc, argv, result);
    return result.isObject() ? result.object : made;
}

// Calls of script functions from below the machine: by natives, and by conversions that run script.
#include "runtime/context.h"

void ESContext::callFunction(ESObject* fn, ESObject* receiver, std::int32_t argc, const ESValue* argv,
                             ESValue& result) {
    if (sp + spSurplus + argc > stackSize) {
        stackTooSmall();
    }
    stack[sp++] = acc;
    for (std::int32_t i = 0; i < argc; ++i) {
        stack[sp++] = argv[i];
    }
    callHook(*this, fn, receiver, argc);
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

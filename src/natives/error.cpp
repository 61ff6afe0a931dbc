#include "natives/error.h"

#include "runtime/context.h"

namespace {

enum Member : std::int32_t { Constructor = 0 };

} // namespace

void ESNativeError::setUp(ESContext& ctx) {
    const bool isBase = this == ctx.errorClass;
    prototypeObject_ = ctx.newObject(isBase ? ctx.objectPrototype : ctx.errorClass->errorPrototype(), this);
    ctx.putProperty(prototypeObject_, nameAttributes_, intern("name"), atomValue(intern(scriptName_)));
    if (isBase) {
        ctx.putProperty(prototypeObject_, DontEnum | DontDelete, intern("message"), atomValue(intern("")));
    }
    // All six constructors have the full name "Error".
    const ESMember constructor = {scriptName_, 1, Constructor};
    constructorObject_ = defineConstructor(ctx, constructor, intern(name), prototypeObject_, this);
}

void ESNativeError::call(ESContext& ctx, ESObject* fn, ESObject*, std::int32_t argc, ESValue* argv) {
    if (fn->memberIndex != Constructor) {
        badCall(ctx);
    }
    argv[0] = objectValue(construct(ctx, fn, argc, argv));
}

ESObject* ESNativeError::construct(ESContext& ctx, ESObject* fn, std::int32_t argc, const ESValue* argv) {
    if (fn->memberIndex != Constructor) {
        badConstruct(ctx);
    }
    ESObject* error = ctx.newObject(prototypeObject_, ctx.errorClass);
    const ESValue message = ESContext::getArgument(argc, argv, 0);
    if (!message.isUndefined()) {
        ctx.put(error, wellKnownAtoms.message, message);
    }
    return error;
}

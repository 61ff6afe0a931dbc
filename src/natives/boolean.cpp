#include "natives/boolean.h"

#include "runtime/context.h"

namespace {

enum Member : std::int32_t { Constructor, ToString, ValueOf };

constexpr ESMember constructorMember = {"Boolean", 1, Constructor};

constexpr ESMember prototypeMembers[] = {
    {"toString", 0, ToString},
    {"valueOf", 0, ValueOf},
};

} // namespace

ESNativeBoolean::ESNativeBoolean() : ESClass("Boolean") {}

void ESNativeBoolean::setUp(ESContext& ctx) {
    ESObject* prototype = ctx.booleanPrototype;
    defineConstructor(ctx, constructorMember, intern(name), prototype, this);
    ctx.putProperty(prototype, ReadOnly | DontEnum | DontDelete, wellKnownAtoms.length, numberValue(1));
    prototype->value = booleanValue(false);
    defineMembers(ctx, prototype, prototypeMembers, this, name, ESMemberNaming::Prototype);
}

void ESNativeBoolean::call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t, ESValue* argv) {
    switch (fn->memberIndex) {
    case Constructor:
        argv[0] = booleanValue(ctx.toBoolean(argv[0]));
        return;
    case ToString:
    case ValueOf:
        if (thisObject == nullptr || !ctx.isBooleanObject(thisObject)) {
            // One text for both members: scripts and their users know it this way.
            ctx.raiseTypeError("Boolean.prototype.toString called on non-Boolean object");
        }
        argv[0] = fn->memberIndex == ToString ? ctx.toStringValue(thisObject->value) : thisObject->value;
        return;
    default:
        badCall(ctx);
    }
}

ESObject* ESNativeBoolean::construct(ESContext& ctx, ESObject* fn, std::int32_t argc, const ESValue* argv) {
    if (fn->memberIndex != Constructor) {
        badConstruct(ctx);
    }
    return ctx.objectOf(booleanValue(ctx.toBoolean(ESContext::getArgument(argc, argv, 0))));
}

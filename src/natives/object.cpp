#include "natives/object.h"

#include "runtime/context.h"

namespace {

enum Member : std::int32_t {
    Constructor = 0,
    ToString = 2,
    ToLocaleString,
    ValueOf,
    HasOwnProperty,
    IsPrototypeOf,
    PropertyIsEnumerable,
};

constexpr ESMember constructor = {"Object", 1, Constructor};
constexpr ESMember members[] = {
    {"toString", 0, ToString},
    {"toLocaleString", 0, ToLocaleString},
    {"valueOf", 0, ValueOf},
    {"hasOwnProperty", 1, HasOwnProperty},
    {"isPrototypeOf", 1, IsPrototypeOf},
    {"propertyIsEnumerable", 1, PropertyIsEnumerable},
};

} // namespace

ESNativeObject::ESNativeObject() : ESClass("Object") {}

void ESNativeObject::setUp(ESContext& ctx) {
    defineConstructor(ctx, constructor, intern(name), ctx.objectPrototype, this);
    defineMembers(ctx, ctx.objectPrototype, members, this, name, ESMemberNaming::Prototype);
}

void ESNativeObject::call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc,
                          ESValue* argv) {
    switch (fn->memberIndex) {
    case Constructor:
        if (argv[0].isUndefined() || argv[0].isNull()) {
            argv[0] = objectValue(ctx.objectFromValue(argc, argv));
        } else {
            ctx.toObject(argv[0]);
        }
        break;
    case ToString:
    case ToLocaleString: {
        // The class decides, no property does.
        const QLatin1String className(thisObject->nativeClass->name);
        argv[0] = ctx.newString(QString(QLatin1String("[object ") + className + QLatin1Char(']')));
        break;
    }
    case ValueOf:
        argv[0] = ctx.primitiveOf(objectValue(thisObject));
        break;
    case HasOwnProperty:
        argv[0] = booleanValue(ctx.hasOwnProperty(thisObject, ctx.toAtom(argv[0])));
        break;
    case IsPrototypeOf:
        argv[0] = booleanValue(ESContext::inPrototypeChain(thisObject, argv[0]));
        break;
    case PropertyIsEnumerable:
        argv[0] = booleanValue(ctx.propertyIsEnumerable(thisObject, ctx.toAtom(argv[0])));
        break;
    default:
        badCall(ctx);
    }
}

ESObject* ESNativeObject::construct(ESContext& ctx, ESObject* fn, std::int32_t argc, const ESValue* argv) {
    if (fn->memberIndex != Constructor) {
        badConstruct(ctx);
    }
    return ctx.objectFromValue(argc, argv);
}

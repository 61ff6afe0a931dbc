#include "natives/function.h"

#include "compiler/compilation.h"
#include "runtime/context.h"

#include <QString>

namespace {

enum Member : std::int32_t { Constructor = 0, ToString = 1 };

constexpr ESMember constructor = {"Function", 1, Constructor};
constexpr ESMember members[] = {
    {"toString", 0, ToString},
};

// The last argument is the body, those before it are parameters. All are converted in their order.
ESObject* functionOfTexts(ESContext& ctx, std::int32_t argc, const ESValue* argv) {
    QString parameters;
    for (std::int32_t i = 0; i < argc - 1; ++i) {
        if (!parameters.isEmpty()) {
            parameters += QLatin1Char(',');
        }
        parameters += ctx.toString(argv[i]);
    }
    const QString body = ctx.toString(argv[argc - 1]);
    return compileFunction(ctx, parameters, body);
}

} // namespace

ESNativeFunction::ESNativeFunction() : ESClass("Function") {}

void ESNativeFunction::setUp(ESContext& ctx) {
    defineConstructor(ctx, constructor, intern(name), ctx.functionPrototype, this);
    ctx.putProperty(ctx.functionPrototype, ReadOnly | DontEnum | DontDelete, wellKnownAtoms.length,
                    numberValue(1));
    defineMembers(ctx, ctx.functionPrototype, members, this, name, ESMemberNaming::Prototype);
}

void ESNativeFunction::call(ESContext& ctx, ESObject* fn, ESObject*, std::int32_t argc, ESValue* argv) {
    switch (fn->memberIndex) {
    case Constructor:
        argv[0] = objectValue(functionOfTexts(ctx, argc, argv));
        break;
    case ToString: // no source text is kept anywhere
        argv[0] = ctx.newString("<<function>>");
        break;
    default:
        badCall(ctx);
    }
}

ESObject* ESNativeFunction::construct(ESContext& ctx, ESObject* fn, std::int32_t argc, const ESValue* argv) {
    if (fn->memberIndex != Constructor) {
        badConstruct(ctx);
    }
    // Through the machine, which pads the arguments.
    ESValue result = undefinedValue();
    ctx.callFunction(fn, nullptr, argc, argv, result);
    return ctx.objectOf(result);
}

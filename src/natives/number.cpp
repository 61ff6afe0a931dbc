#include "natives/number.h"

#include "runtime/context.h"

#include <QLatin1String>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace {

// 1 stays free.
enum Member : std::int32_t { Constructor = 0, ToString = 2, ToFixed = 3, ValueOf = 4 };

constexpr ESMember constructorMember = {"Number", 1, Constructor};

constexpr ESMember prototypeMembers[] = {
    {"toString", 1, ToString},
    {"toFixed", 1, ToFixed},
    {"valueOf", 0, ValueOf},
};

struct Constant {
    const char* name;
    double value;
};

constexpr Constant constants[] = {
    {"MAX_VALUE", std::numeric_limits<double>::max()},
    {"MIN_VALUE", std::numeric_limits<double>::denorm_min()},
    {"NaN", esNaN},
    {"NEGATIVE_INFINITY", -esInfinity},
    {"POSITIVE_INFINITY", esInfinity},
};

} // namespace

ESNativeNumber::ESNativeNumber() : ESClass("Number") {}

void ESNativeNumber::setUp(ESContext& ctx) {
    ESObject* constructor =
        defineConstructor(ctx, constructorMember, intern(name), ctx.numberPrototype, this);
    for (const Constant& constant : constants) {
        ctx.putProperty(constructor, ReadOnly | DontEnum | DontDelete, intern(constant.name),
                        numberValue(constant.value));
    }
    ctx.numberPrototype->value = numberValue(0);
    defineMembers(ctx, ctx.numberPrototype, prototypeMembers, this, name, ESMemberNaming::Prototype);
}

void ESNativeNumber::call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t, ESValue* argv) {
    switch (fn->memberIndex) {
    case Constructor:
        argv[0] = numberValue(ctx.toDouble(argv[0]));
        return;
    case ToString:
        argv[0] = toString(ctx, thisObject, argv[0]);
        return;
    case ToFixed:
        argv[0] = toFixed(ctx, thisObject, argv[0]);
        return;
    case ValueOf:
        if (thisObject == nullptr || !ctx.isNumberObject(thisObject)) {
            ctx.raiseTypeError("Number.prototype.valueOf called on non-Number object");
        }
        argv[0] = thisObject->value;
        return;
    default:
        badCall(ctx);
    }
}

// 1. `this` is tested. 2. The radix is converted; 0, and so undefined, means 10.
ESValue ESNativeNumber::toString(ESContext& ctx, const ESObject* thisObject, const ESValue& radix) {
    if (thisObject == nullptr || !ctx.isNumberObject(thisObject)) {
        ctx.raiseTypeError("Number.prototype.toString called on non-Number object");
    }
    const std::int32_t base = ctx.toInt32(radix);
    if (base == 0 || base == 10) {
        return ctx.newStringOf(thisObject->value);
    }
    if (base < 2 || base > 36) {
        ctx.raiseRangeError("radix should be 2 through 36");
    }
    return ctx.newString(ctx.toString(thisObject->value, base));
}

// 1. The digits are converted and tested. 2. The value of `this`, which may be any object, is converted.
ESValue ESNativeNumber::toFixed(ESContext& ctx, const ESObject* thisObject, const ESValue& digits) {
    int precision = 0;
    if (!digits.isUndefined()) {
        const double d = ctx.toDouble(digits);
        if (d < 0 || d > 20) {
            ctx.raiseRangeError("fraction digits should 0 through 20");
        }
        precision = std::isnan(d) ? 0 : static_cast<int>(d);
    }
    double x = ctx.toDouble(thisObject == nullptr ? undefinedValue() : thisObject->value);
    if (std::isnan(x)) {
        x = esNaN; // the sign of a NaN depends on how it was computed, and would show
    }
    std::array<char, std::numeric_limits<double>::max_exponent10 + 32>
        text; // 309 digits, sign, point, 20 digits
    const std::to_chars_result end =
        std::to_chars(text.data(), text.data() + text.size(), x, std::chars_format::fixed, precision);
    return ctx.newString(QString(QLatin1String(text.data(), end.ptr)));
}

ESObject* ESNativeNumber::construct(ESContext& ctx, ESObject* fn, std::int32_t argc, const ESValue* argv) {
    if (fn->memberIndex != Constructor) {
        badConstruct(ctx);
    }
    return ctx.objectOf(numberValue(ctx.toDouble(ESContext::getArgument(argc, argv, 0))));
}

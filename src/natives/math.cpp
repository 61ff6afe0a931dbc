#include "natives/math.h"

#include "runtime/context.h"

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <numbers>

namespace {

// 0 would be a constructor, and there is none.
enum Member : std::int32_t {
    Abs = 1,
    Acos,
    Asin,
    Atan,
    Atan2,
    Ceil,
    Cos,
    Exp,
    Floor,
    Log,
    Max,
    Min,
    Pow,
    Random,
    Round,
    Sin,
    Sqrt,
    Tan,
};

// Neither zero nor NaN compares below 0; adding +0 turns -0 into +0 and changes nothing else.
double absolute(double x) { return x < 0 ? -x : x + 0.0; }

// Halves go up. What rounds to zero from below keeps its sign.
double roundHalfUp(double x) {
    if (x == 0) {
        return x;
    }
    return x < 0 && x >= -0.5 ? -0.0 : std::floor(x + 0.5);
}

struct MathMember {
    ESMember member;
    double (*function)(double); // of the members that take one number; null in the others
};

const MathMember members[] = {
    {{"abs", 1, Abs}, absolute},    {{"acos", 1, Acos}, std::acos},   {{"asin", 1, Asin}, std::asin},
    {{"atan", 1, Atan}, std::atan}, {{"atan2", 2, Atan2}, nullptr},   {{"ceil", 1, Ceil}, std::ceil},
    {{"cos", 1, Cos}, std::cos},    {{"exp", 1, Exp}, std::exp},      {{"floor", 1, Floor}, std::floor},
    {{"log", 1, Log}, std::log},    {{"max", 0, Max}, nullptr},       {{"min", 0, Min}, nullptr},
    {{"pow", 2, Pow}, nullptr},     {{"random", 0, Random}, nullptr}, {{"round", 1, Round}, roundHalfUp},
    {{"sin", 1, Sin}, std::sin},    {{"sqrt", 1, Sqrt}, std::sqrt},   {{"tan", 1, Tan}, std::tan},
};

struct Constant {
    const char* name;
    double value;
};

const Constant constants[] = {
    {"E", std::numbers::e},
    {"LN10", std::log(10.0)},
    {"LN2", std::log(2.0)},
    {"LOG2E", 1.0 / std::log(2.0)},
    {"LOG10E", 1.0 / std::log(10.0)},
    {"PI", std::numbers::pi},
    {"SQRT1_2", std::numbers::sqrt2 / 2},
    {"SQRT2", std::numbers::sqrt2},
};

// The greatest argument (sign 1) or the smallest (sign -1), taken as the greatest of their negatives. A NaN
// ends the walk at once: the arguments behind it aren't converted.
double extreme(ESContext& ctx, std::int32_t argc, const ESValue* argv, double sign) {
    double result = -esInfinity;
    for (std::int32_t i = 0; i < argc; ++i) {
        const double v = sign * ctx.toDouble(argv[i]);
        if (std::isnan(v)) {
            return v;
        }
        if (v > result || (v == result && std::signbit(result) && !std::signbit(v))) {
            result = v;
        }
    }
    return sign * result;
}

// Eight random bytes read as a double: any bit pattern may come, also an infinity or NaN. The generator is
// never seeded, so every run sees the same sequence.
double randomBits() {
    std::array<std::uint8_t, sizeof(double)> bytes;
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(std::rand());
    }
    double result;
    std::memcpy(&result, bytes.data(), sizeof result);
    return result;
}

} // namespace

ESNativeMath::ESNativeMath() : ESClass("Math") {}

void ESNativeMath::setUp(ESContext& ctx) {
    ESObject* math = ctx.newPlainObject();
    ctx.putProperty(ctx.globalObject, DontEnum, intern(name), objectValue(math));
    for (const MathMember& row : members) {
        defineMembers(ctx, math, {&row.member, 1}, this, name, ESMemberNaming::Namespace);
    }
    for (const Constant& constant : constants) {
        ctx.putProperty(math, ReadOnly | DontEnum | DontDelete, intern(constant.name),
                        numberValue(constant.value));
    }
}

void ESNativeMath::call(ESContext& ctx, ESObject* fn, ESObject*, std::int32_t argc, ESValue* argv) {
    const std::int32_t index = fn->memberIndex;
    if (index < Abs || index > Tan) {
        badCall(ctx);
    }
    if (const auto function = members[index - Abs].function) {
        argv[0] = numberValue(function(ctx.toDouble(argv[0])));
        return;
    }
    switch (index) {
    case Atan2:
    case Pow: {
        const double first = ctx.toDouble(argv[0]);
        const double second = ctx.toDouble(argv[1]);
        argv[0] = numberValue(index == Pow ? std::pow(first, second) : std::atan2(first, second));
        return;
    }
    case Max:
    case Min:
        argv[0] = numberValue(extreme(ctx, argc, argv, index == Max ? 1.0 : -1.0));
        return;
    case Random:
        argv[0] = numberValue(randomBits());
        return;
    }
}

ESObject* ESNativeMath::construct(ESContext& ctx, ESObject*, std::int32_t, const ESValue*) {
    badConstruct(ctx);
}

// Exact values and digits of which a script sees six at most.
#include "natives/number.h"

#include "runtime/context.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>

namespace {

TEST(NumberMembers, ConstantsAreExact) {
    ESContext ctx;
    ctx.initContext();
    ESObject* number = ctx.get(ctx.globalObject, intern("Number")).object;
    ESObject* math = ctx.get(ctx.globalObject, intern("Math")).object;
    const struct {
        ESObject* owner;
        const char* name;
        std::uint64_t bits;
    } constants[] = {
        {number, "MAX_VALUE", 0x7FEFFFFFFFFFFFFF},
        {number, "MIN_VALUE", 0x0000000000000001},
        {number, "POSITIVE_INFINITY", 0x7FF0000000000000},
        {number, "NEGATIVE_INFINITY", 0xFFF0000000000000},
        {math, "E", 0x4005BF0A8B145769},
        {math, "PI", 0x400921FB54442D18},
        {math, "SQRT1_2", 0x3FE6A09E667F3BCD},
        {math, "SQRT2", 0x3FF6A09E667F3BCD},
        {math, "LN10", std::bit_cast<std::uint64_t>(std::log(10.0))},
        {math, "LN2", std::bit_cast<std::uint64_t>(std::log(2.0))},
        {math, "LOG2E", std::bit_cast<std::uint64_t>(1.0 / std::log(2.0))},
        {math, "LOG10E", std::bit_cast<std::uint64_t>(1.0 / std::log(10.0))},
    };
    for (const auto& constant : constants) {
        const ESValue value = ctx.get(constant.owner, intern(constant.name));
        ASSERT_TRUE(value.isNumber()) << constant.name;
        EXPECT_EQ(value.bits, constant.bits) << constant.name;
    }
}

// The digits are those of the C library, for any number and any count of them.
TEST(NumberMembers, ToFixedPrintsAsTheLibraryDoes) {
    ESContext ctx;
    ctx.initContext();
    ESObject* toFixed = ctx.get(ctx.numberPrototype, intern("toFixed")).object;
    std::mt19937_64 random(20);
    for (int i = 0; i < 5000; ++i) {
        auto x = std::bit_cast<double>(random());
        if (i % 2 == 0) {
            x = std::remainder(x, 1000.0); // half of them near the point, where rounding matters
        }
        if (!std::isfinite(x)) {
            continue;
        }
        const auto digits = static_cast<int>(random() % 21);
        char expected[400];
        std::snprintf(expected, sizeof expected, "%.*f", digits, x);
        const ESValue argument = numberValue(digits);
        ESValue result = undefinedValue();
        ctx.callFunction(toFixed, ctx.objectOf(numberValue(x)), 1, &argument, result);
        EXPECT_EQ(ctx.toString(result).toStdString(), expected) << x << " to " << digits;
    }
}

} // namespace

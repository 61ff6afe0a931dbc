// Digits of which a script sees six at most.
#include "natives/number.h"

#include "runtime/context.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>

namespace {

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

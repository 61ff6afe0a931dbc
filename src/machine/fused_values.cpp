#include "machine/fused_values.h"

double largeRemainder(double a, double b) {
    constexpr double limit = 9007199254740992.0; // 2 to the 53rd: whole numbers below it are exact
    if (a > 0 && a < limit && b > 0 && b < limit) {
        const auto wholeA = static_cast<std::int64_t>(a);
        const auto wholeB = static_cast<std::int64_t>(b);
        if (static_cast<double>(wholeA) == a && static_cast<double>(wholeB) == b) {
            return static_cast<double>(wholeA % wholeB);
        }
    }
    return std::fmod(a, b);
}

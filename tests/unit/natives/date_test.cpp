// The arithmetic of days, held against the library's own over a range that no script could list.
#include "natives/date.h"

#include "runtime/context.h"

#include <QDate>
#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace {

class Dates : public testing::Test {
protected:
    Dates() {
        ctx.initContext();
        date = ctx.newObject(ctx.datePrototype, ctx.dates);
    }

    double call(const char* name, const std::vector<double>& arguments = {}) {
        std::vector<ESValue> values;
        for (const double argument : arguments) {
            values.push_back(numberValue(argument));
        }
        ESValue result = undefinedValue();
        ctx.callFunction(ctx.get(date, intern(name)).object, date, static_cast<std::int32_t>(values.size()),
                         values.data(), result);
        return result.number;
    }

    ESContext ctx;
    ESObject* date = nullptr;
};

TEST_F(Dates, DaysAreThoseOfTheCalendar) {
    constexpr double msPerDay = 86400000;
    constexpr double timeOfDay = 45296789; // 12:34:56.789
    const auto first = QDate(1, 1, 1).toJulianDay();
    const auto last = QDate(12000, 12, 31).toJulianDay();
    for (qint64 day = first; day <= last; day += 97) { // prime to the lengths of weeks, months and years
        const QDate expected = QDate::fromJulianDay(day);
        const double time = static_cast<double>(day) * msPerDay + timeOfDay;
        call("setTime", {time});
        const std::array found{call("getFullYear"), call("getMonth"), call("getDate"), call("getDay"),
                               call("getTime")};
        const std::array<double, 5> wanted{1.0 * expected.year(), expected.month() - 1.0,
                                           1.0 * expected.day(), 1.0 * (expected.dayOfWeek() % 7), time};
        ASSERT_EQ(found, wanted) << day;

        // From another date back to this one by its parts.
        call("setTime", {msPerDay * 2440588 + timeOfDay});
        ASSERT_EQ(call("setFullYear", {wanted[0], wanted[1], wanted[2]}), time) << day;
    }
}

} // namespace

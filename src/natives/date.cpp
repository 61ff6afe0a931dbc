#include "natives/date.h"

#include "runtime/context.h"

#include <QDate>
#include <QString>
#include <QTime>
#include <algorithm>
#include <array>
#include <cmath>
#include <ctime>
#include <limits>

namespace {

enum Member : std::int32_t {
    Constructor,
    ToString,
    ToDateString,
    ToTimeString,
    ToLocaleString,
    ToLocaleDateString,
    ToLocaleTimeString,
    ValueOf,
    GetTime,
    GetFullYear,
    GetUTCFullYear,
    GetMonth,
    GetUTCMonth,
    GetDate,
    GetUTCDate,
    GetDay,
    GetUTCDay,
    GetHours,
    GetUTCHours,
    GetMinutes,
    GetUTCMinutes,
    GetSeconds,
    GetUTCSeconds,
    GetMilliseconds,
    GetUTCMilliseconds,
    GetTimezoneOffset,
    SetTime,
    SetMilliseconds,
    SetUTCMilliseconds,
    SetSeconds,
    SetUTCSeconds,
    SetMinutes,
    SetUTCMinutes,
    SetHours,
    SetUTCHours,
    SetDate,
    SetUTCDate,
    SetMonth,
    SetUTCMonth,
    SetFullYear,
    SetUTCFullYear,
    ToUTCString,
};

constexpr ESMember constructorMember = {"Date", 1, Constructor};

constexpr ESMember prototypeMembers[] = {
    {"toString", 0, ToString},
    {"toDateString", 0, ToDateString},
    {"toTimeString", 0, ToTimeString},
    {"toLocaleString", 0, ToLocaleString},
    {"toLocaleDateString", 0, ToLocaleDateString},
    {"toLocaleTimeString", 0, ToLocaleTimeString},
    {"valueOf", 0, ValueOf},
    {"getTime", 0, GetTime},
    {"getFullYear", 0, GetFullYear},
    {"getUTCFullYear", 0, GetUTCFullYear},
    {"getMonth", 0, GetMonth},
    {"getUTCMonth", 0, GetUTCMonth},
    {"getDate", 0, GetDate},
    {"getUTCDate", 0, GetUTCDate},
    {"getDay", 0, GetDay},
    {"getUTCDay", 0, GetUTCDay},
    {"getHours", 0, GetHours},
    {"getUTCHours", 0, GetUTCHours},
    {"getMinutes", 0, GetMinutes},
    {"getUTCMinutes", 0, GetUTCMinutes},
    {"getSeconds", 0, GetSeconds},
    {"getUTCSeconds", 0, GetUTCSeconds},
    {"getMilliseconds", 0, GetMilliseconds},
    {"getUTCMilliseconds", 0, GetUTCMilliseconds},
    {"getTimezoneOffset", 0, GetTimezoneOffset},
    {"setTime", 1, SetTime},
    {"setMilliseconds", 1, SetMilliseconds},
    {"setUTCMilliseconds", 1, SetUTCMilliseconds},
    {"setSeconds", 2, SetSeconds},
    {"setUTCSeconds", 2, SetUTCSeconds},
    {"setMinutes", 2, SetMinutes},
    {"setUTCMinutes", 3, SetUTCMinutes},
    {"setHours", 4, SetHours},
    {"setUTCHours", 4, SetUTCHours},
    {"setDate", 1, SetDate},
    {"setUTCDate", 1, SetUTCDate},
    {"setMonth", 2, SetMonth},
    {"setUTCMonth", 2, SetUTCMonth},
    {"setFullYear", 3, SetFullYear},
    {"setUTCFullYear", 3, SetUTCFullYear},
    {"toUTCString", 0, ToUTCString},
};

constexpr double msPerDay = 8.64e7;
constexpr double msPerHour = 3.6e6;
constexpr double msPerMinute = 60000;
constexpr double msPerSecond = 1000;
constexpr double maxTimeValue = 8.64e15;
constexpr double prototypeLength = 7;

// The reading of calendar and clock that a time value stands for. Either part is null where the value means
// none; its components then read as the library's null values do.
struct WallClock {
    QDate date;
    QTime time;
};

// Remainder with the sign of the divisor, so that the hours before day 0 count on as all others do.
double modulo(double x, double divisor) { return x - divisor * std::floor(x / divisor); }

double julianDay(double year, double month, double day) {
    const double months = 12 * year + month + 57597;
    const double r = months - 12 * std::floor(months / 12);
    const double a = std::floor((2 * r + 7 + 365 * months) / 12) + day;
    const double b = std::floor(months / 48) + a - 32083;
    return 38 + std::floor(months / 4800) - std::floor(months / 1200) + b;
}

double julianDay(const QDate& date) { return julianDay(date.year(), date.month(), date.day()); }

// Fliegel and Van Flandern's conversion, in doubles: a day of any size may come, also NaN.
QDate dateFromJulianDay(double j) {
    double l = std::floor(j) + 68569;
    const double n = std::floor(4 * l / 146097);
    l -= std::floor((146097 * n + 3) / 4);
    const double i = std::floor(4000 * (l + 1) / 1461001);
    l = l - std::floor(1461 * i / 4) + 31;
    const double m = std::floor(80 * l / 2447);
    const double day = l - std::floor(2447 * m / 80);
    const double k = std::floor(m / 11);
    const double month = m + 2 - 12 * k;
    const double year = 100 * (n - 49) + i + k;
    // Beyond what an int holds the terms lose their last digits, and no day exists there either.
    if (!(std::fabs(year) < std::numeric_limits<int>::max() && month >= 1 && month <= 12 && day >= 1 &&
          day <= 31)) {
        return QDate();
    }
    return QDate(static_cast<int>(year), static_cast<int>(month), static_cast<int>(day));
}

WallClock fromTimeValue(double t) {
    WallClock clock;
    if (std::isfinite(t)) {
        const double q = std::trunc(std::fmod(t, msPerDay));
        clock.time = QTime(static_cast<int>(modulo(std::floor(q / msPerHour), 24)),
                           static_cast<int>(modulo(std::floor(q / msPerMinute), 60)),
                           static_cast<int>(modulo(std::floor(q / msPerSecond), 60)),
                           static_cast<int>(modulo(q, 1000)));
        clock.date = dateFromJulianDay(std::floor(t / msPerDay));
    }
    return clock;
}

double toTimeValue(const WallClock& clock) {
    return julianDay(clock.date) * msPerDay + clock.time.hour() * msPerHour +
           clock.time.minute() * msPerMinute + clock.time.second() * msPerSecond + clock.time.msec();
}

double presentTime() {
    // Not by QDateTime, which doesn't outlive an allocation that fails.
    timespec now{};
    std::tm local{};
    clock_gettime(CLOCK_REALTIME, &now);
    tzset();
    localtime_r(&now.tv_sec, &local);
    return toTimeValue({QDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday),
                        QTime(local.tm_hour, local.tm_min, std::min(local.tm_sec, 59),
                              static_cast<int>(now.tv_nsec / 1000000))});
}

// Infinities pass, and so do negative values of any size.
double timeClip(double x) { return std::isfinite(x) && x > maxTimeValue ? esNaN : x; }

// The components that were given replace those of t. A large one runs over into the next unit.
struct TimeParts {
    double hour, minute, second, ms;

    explicit TimeParts(double t)
        : hour(modulo(std::floor(t / msPerHour), 24)), minute(modulo(std::floor(t / msPerMinute), 60)),
          second(modulo(std::floor(t / msPerSecond), 60)), ms(std::fmod(t, msPerSecond)) {}

    double ofDay() const {
        return std::floor(hour) * msPerHour + std::floor(minute) * msPerMinute +
               std::floor(second) * msPerSecond + std::floor(ms);
    }
};

double composeTime(double t, const TimeParts& parts) {
    return timeClip(std::floor(t / msPerDay) * msPerDay + parts.ofDay());
}

// month counts from 0. A day that the calendar doesn't have gives NaN: nothing runs over here.
double composeDate(double year, double month, double day, double timeOfDay) {
    constexpr double limit = std::numeric_limits<int>::max();
    if (!(std::fabs(year) < limit && std::fabs(month) < limit && std::fabs(day) < limit)) {
        return esNaN; // a component that isn't finite, or one that no date has
    }
    const QDate date(static_cast<int>(year), static_cast<int>(month) + 1, static_cast<int>(day));
    return date.isValid() ? timeClip(julianDay(date) * msPerDay + timeOfDay) : esNaN;
}

// As QDate::toString, which doesn't outlive an allocation that fails.
QString dateText(const WallClock& clock) {
    constexpr std::array days = {"Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"};
    constexpr std::array months = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                   "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    const QDate& date = clock.date;
    if (!date.isValid()) {
        return QString();
    }
    return QString::asprintf("%s %s %d %04d", days[static_cast<std::size_t>(date.dayOfWeek() - 1)],
                             months[static_cast<std::size_t>(date.month() - 1)], date.day(), date.year());
}

QString timeText(const WallClock& clock) { return clock.time.toString(Qt::TextDate); }

// The date's text with the time in front of the year. A QDateTime could print it, but it would first ask
// the zone of this machine whether such a moment exists.
QString fullText(const WallClock& clock) {
    if (!clock.date.isValid() || !clock.time.isValid()) {
        return QString();
    }
    QString text = dateText(clock);
    return text.insert(text.lastIndexOf(QLatin1Char(' ')), QLatin1Char(' ') + timeText(clock));
}

// A setter's arguments as numbers, and whether they were given: `undefined` counts as left out. The first is
// always there.
struct SetterArguments {
    static constexpr std::int32_t most = 4;
    std::array<double, most> number{};
    std::array<bool, most> given{true};

    // The value of argument i, or what the component is now.
    void read(std::size_t i, double& component) const {
        if (given[i]) {
            component = number[i];
        }
    }
};

double changedTime(std::int32_t member, double t, const SetterArguments& arguments) {
    TimeParts parts(t);
    std::size_t next = 0;
    // A setter takes its own component and then, in order, the smaller ones.
    switch (member) {
    case SetHours:
    case SetUTCHours:
        arguments.read(next++, parts.hour);
        [[fallthrough]];
    case SetMinutes:
    case SetUTCMinutes:
        arguments.read(next++, parts.minute);
        [[fallthrough]];
    case SetSeconds:
    case SetUTCSeconds:
        arguments.read(next++, parts.second);
        [[fallthrough]];
    default:
        arguments.read(next++, parts.ms);
    }
    return composeTime(t, parts);
}

double changedDate(std::int32_t member, double t, const QDate& date, const SetterArguments& arguments) {
    double year = date.year();
    double month = date.month() - 1;
    double day = date.day();
    std::size_t next = 0;
    switch (member) {
    case SetFullYear:
    case SetUTCFullYear:
        arguments.read(next++, year);
        [[fallthrough]];
    case SetMonth:
    case SetUTCMonth:
        arguments.read(next++, month);
        [[fallthrough]];
    default:
        arguments.read(next++, day);
    }
    return composeDate(year, month, day, std::fmod(t, msPerDay));
}

// How many arguments the setter looks at, those included that may be left out.
std::int32_t argumentsOf(std::int32_t member) {
    switch (member) {
    case SetHours:
    case SetUTCHours:
        return 4;
    case SetMinutes:
    case SetUTCMinutes:
    case SetFullYear:
    case SetUTCFullYear:
        return 3;
    case SetSeconds:
    case SetUTCSeconds:
    case SetMonth:
    case SetUTCMonth:
        return 2;
    default:
        return 1;
    }
}

ESObject* requireDate(ESContext& ctx, ESObject* thisObject) {
    if (thisObject == nullptr || !ctx.isDateObject(thisObject)) {
        ctx.raiseTypeError("Date object required");
    }
    return thisObject;
}

WallClock clockOf(ESContext& ctx, const ESObject* date) { return fromTimeValue(ctx.toDouble(date->value)); }

// 1. The first argument is converted. 2. `this` is tested. 3. The arguments behind it are converted, in
// order.
// 4. The time value is read, changed and stored.
ESValue set(ESContext& ctx, std::int32_t member, ESObject* thisObject, std::int32_t argc,
            const ESValue* argv) {
    SetterArguments arguments;
    arguments.number[0] = ctx.toDouble(argv[0]);
    ESObject* self = requireDate(ctx, thisObject);
    for (std::int32_t i = 1; i < argumentsOf(member); ++i) {
        const ESValue argument = ESContext::getArgument(argc, argv, i);
        const auto place = static_cast<std::size_t>(i);
        arguments.given[place] = !argument.isUndefined();
        arguments.number[place] = argument.isUndefined() ? 0 : ctx.toDouble(argument);
    }
    const WallClock clock = clockOf(ctx, self);
    const double t = toTimeValue(clock);
    if (member == SetTime) {
        self->value = numberValue(timeClip(arguments.number[0]));
    } else if (member < SetDate) {
        self->value = numberValue(changedTime(member, t, arguments));
    } else {
        self->value = numberValue(changedDate(member, t, clock.date, arguments));
    }
    return self->value;
}

// The printers.
QString print(std::int32_t member, const WallClock& clock) {
    switch (member) {
    case ToDateString:
    case ToLocaleDateString:
        return dateText(clock);
    case ToTimeString:
    case ToLocaleTimeString:
        return timeText(clock);
    default: // toString, toLocaleString, toUTCString
        return fullText(clock);
    }
}

// The getters.
double read(std::int32_t member, const WallClock& clock) {
    switch (member) {
    case GetFullYear:
    case GetUTCFullYear:
        return clock.date.year();
    case GetMonth:
    case GetUTCMonth:
        return clock.date.month() - 1;
    case GetDate:
    case GetUTCDate:
        return clock.date.day();
    case GetDay:
    case GetUTCDay:
        return clock.date.dayOfWeek() % 7;
    case GetHours:
    case GetUTCHours:
        return clock.time.hour();
    case GetMinutes:
    case GetUTCMinutes:
        return clock.time.minute();
    case GetSeconds:
    case GetUTCSeconds:
        return clock.time.second();
    case GetMilliseconds:
    case GetUTCMilliseconds:
        return clock.time.msec();
    default: // getTime
        return toTimeValue(clock);
    }
}

// Two to seven numbers, from the year down to milliseconds.
double timeFromParts(std::int32_t count, const ESValue* parts) {
    const auto part = [&](std::int32_t i, double otherwise) {
        return i < count ? parts[i].number : otherwise;
    };
    TimeParts time(0);
    time.hour = part(3, 0);
    time.minute = part(4, 0);
    time.second = part(5, 0);
    time.ms = part(6, 0);
    return composeDate(parts[0].number, parts[1].number, part(2, 1), time.ofDay());
}

double timeFromArguments(ESContext& ctx, std::int32_t argc, const ESValue* argv) {
    if (argc == 0) {
        return presentTime();
    }
    if (argc == 1 && argv[0].isObject() && ctx.isDateObject(argv[0].object)) {
        return ctx.toDouble(argv[0].object->value);
    }
    const bool allNumbers = std::all_of(argv, argv + argc, [](const ESValue& v) { return v.isNumber(); });
    if (!allNumbers || argc > 7) {
        return esNaN;
    }
    return argc == 1 ? timeClip(argv[0].number) : timeFromParts(argc, argv);
}

} // namespace

ESNativeDate::ESNativeDate() : ESClass("Date") {}

void ESNativeDate::setUp(ESContext& ctx) {
    ESObject* prototype = ctx.datePrototype;
    prototype->value = numberValue(esNaN);
    defineConstructor(ctx, constructorMember, intern(name), prototype, this);
    ctx.putProperty(prototype, ReadOnly | DontEnum | DontDelete, wellKnownAtoms.length,
                    numberValue(prototypeLength));
    defineMembers(ctx, prototype, prototypeMembers, this, name, ESMemberNaming::Prototype);
}

void ESNativeDate::call(ESContext& ctx, ESObject* fn, ESObject* thisObject, std::int32_t argc,
                        ESValue* argv) {
    const std::int32_t member = fn->memberIndex;
    if (member <= Constructor || member > ToUTCString) {
        badCall(ctx); // also Date called without new
    }
    if (member == GetTimezoneOffset) {
        argv[0] = numberValue(0);
        return;
    }
    if (member >= SetTime && member <= SetUTCFullYear) {
        argv[0] = set(ctx, member, thisObject, argc, argv);
        return;
    }
    const ESObject* self = requireDate(ctx, thisObject);
    if (member == ValueOf) {
        argv[0] = self->value;
    } else if (member < ValueOf || member == ToUTCString) {
        argv[0] = ctx.newString(print(member, clockOf(ctx, self)));
    } else {
        argv[0] = numberValue(read(member, clockOf(ctx, self)));
    }
}

ESObject* ESNativeDate::construct(ESContext& ctx, ESObject* fn, std::int32_t argc, const ESValue* argv) {
    if (fn->memberIndex != Constructor) {
        badConstruct(ctx);
    }
    ESObject* date = ctx.newObject(ctx.datePrototype, this);
    date->value = numberValue(timeFromArguments(ctx, argc, argv));
    return date;
}

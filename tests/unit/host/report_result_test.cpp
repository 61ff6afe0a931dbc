#include "host/run.h"
#include "runtime/context.h"
#include "runtime/failures.h"

#include <gtest/gtest.h>

namespace {

std::string failureOf(ESContext& context, const ESCompletion& completion) {
    try {
        reportResult(context, completion);
    } catch (const HException& failure) {
        return failure.text();
    }
    return "none";
}

} // namespace

// Scripts can only fail with error objects, so the other values come from here.
TEST(ReportResult, TextOfAFailure) {
    ESContext context;
    context.initContext();
    const ESCompletion failed = context.evaluate(QStringLiteral("\nundefined()"));
    EXPECT_EQ(failureOf(context, failed), "line 2: not a function object");

    const auto ending = [](std::int32_t status, const ESValue& value) {
        return ESCompletion{status, value, {}};
    };
    EXPECT_EQ(failureOf(context, ending(ESCompletion::normal, failed.value)), "none");
    EXPECT_EQ(failureOf(context, ending(ESCompletion::exception, numberValue(1.5))),
              "uncaught exception - 1.5");
    EXPECT_EQ(failureOf(context, ending(ESCompletion::exception, objectValue(context.newPlainObject()))),
              "uncaught exception - [object Object]");
}

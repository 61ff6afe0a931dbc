// What a whole compilation promises: messages with their lines, limits, and that a failed one leaves nothing.
#include "compiler/compilation.h"

#include "runtime/context.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <string>

namespace {

class Compilation : public testing::Test {
protected:
    Compilation() { ctx.initContext(); }

    std::string messageOf(const ESValue& value) {
        return ctx.toString(ctx.get(value.object, wellKnownAtoms.message)).toStdString();
    }
    // The message of the error, or the value.
    std::string outcome(const QString& text) {
        const ESCompletion completion = ctx.evaluate(text);
        if (completion.status == ESCompletion::normal) {
            return "value " + ctx.toString(completion.value).toStdString();
        }
        return messageOf(completion.value);
    }
    std::string outcome(const std::string& text) { return outcome(QString::fromStdString(text)); }
    // The text of the fault with which a text is refused, or "compiled".
    std::string refusal(const std::string& text) {
        try {
            compileProgram(ctx, QString::fromStdString(text));
            return "compiled";
        } catch (const ESFatalError& fault) {
            return std::to_string(fault.line) + ": " + fault.message.toStdString();
        }
    }
    static std::string repeated(const std::string& text, int count) {
        std::string result;
        result.reserve(text.size() * static_cast<std::size_t>(count));
        for (int i = 0; i < count; ++i) {
            result += text;
        }
        return result;
    }
    static std::string numbered(const std::string& before, const std::string& after, int count) {
        std::string result;
        for (int i = 0; i < count; ++i) {
            result += before + std::to_string(i) + after;
        }
        return result;
    }

    ESContext ctx;
};

TEST_F(Compilation, ReportsErrorsWithTheirLineAndEndsStatements) {
    for (const char* section : {"errors", "ends of statements"}) {
        for (const Row& row : rowsOf("compiler/outcomes.table", section)) {
            EXPECT_EQ(outcome(QString::fromLatin1(row.text)), row.expected) << row.text;
        }
    }
}

// Whatever fails, and however deep in a script, the machine stands as before.
TEST_F(Compilation, FailuresRestoreTheMachine) {
    const ESValue acc = numberValue(42);
    ctx.acc = acc;
    ctx.sp = 3;
    ctx.spSurplus = 2;
    const char* const texts[] = {
        "1 +", "f(1, 2, undefinedFunction())", "with ({a: 1}) { a(); }",
        "function deep(n) { with ({}) { return n == 0 ? n() : deep(n - 1); } } deep(5)"};
    for (const char* text : texts) {
        const std::int32_t blocks = codeBlockCount();
        EXPECT_EQ(ctx.evaluate(QString::fromLatin1(text)).status, ESCompletion::exception) << text;
        EXPECT_EQ(ctx.sp, 3);
        EXPECT_EQ(ctx.spSurplus, 2);
        EXPECT_EQ(ctx.scope, nullptr);
        EXPECT_EQ(ctx.thisObject, ctx.globalObject);
        EXPECT_EQ(ctx.acc.number, 42);
        EXPECT_LE(codeBlockCount(), blocks + 1);
    }
    EXPECT_EQ(ctx.evaluate(QStringLiteral("1 + 1")).value.number, 2);
    EXPECT_EQ(ctx.sp, 3);
    EXPECT_EQ(ctx.acc.number, 42);
}

// Length costs no depth.
TEST_F(Compilation, TakesLongTexts) {
    constexpr int many = 100000;
    EXPECT_EQ(outcome("0" + repeated("+1", many)), "value 100000");
    EXPECT_EQ(outcome("0" + repeated(",1", many)), "value 1");
    EXPECT_EQ(outcome("var n = 0;" + repeated("n++\n", many) + "n"), "value 100000");
    EXPECT_EQ(outcome("var v0 = 7" + numbered(",u", "=1", 60000) + "; u59999 + v0"), "value 8");
    EXPECT_EQ(outcome("[" + repeated("7,", 60000) + "8].length"), "value 60001");
    EXPECT_EQ(outcome("({" + numbered("k", ":1,", 50000) + "last:5}).last"), "value 5");
    EXPECT_EQ(outcome("var o = {}; o.o = o; (o" + repeated(".o", many) + ") == o"), "value true");
    EXPECT_EQ(outcome("1" + repeated("&&1", 15000)), "value 1");
    EXPECT_EQ(outcome("1" + repeated("?1:0", 1) + repeated(";0?1", 1) + repeated(":0?1", 7000) + ":7"),
              "value 7");
    EXPECT_EQ(outcome(repeated("if (0) ; else ", 9000) + "n = 5; n"), "value 5");
    EXPECT_EQ(outcome(repeated(";", 1 << 20) + "3"), "value 3");
    EXPECT_EQ(outcome(repeated("var x; function f(a, a) {} ", 20000) + "typeof f"), "value function");
}

// Operands have 16 bits. What needs more is refused, and what doesn't may be longer.
TEST_F(Compilation, RefusesOperandsThatDoNotFit) {
    const std::string tooLarge = "1: compiler error: operand too large";
    const std::string farJump = "1: compiler error: patch constant too large";
    EXPECT_EQ(refusal("[" + numbered("", ".5,", 65534) + "0.75]"), "compiled");
    EXPECT_EQ(refusal(numbered("x=", ".5;", 65536)), "compiled");
    EXPECT_EQ(refusal(numbered("\nx=", ".5;", 65537)), "65538: compiler error: operand too large");
    EXPECT_EQ(refusal(repeated("x=.5;", 70000)), "compiled") << "equal numbers share a place";
    EXPECT_EQ(refusal("x=[" + repeated("0,", 65534) + "0]"), "compiled");
    EXPECT_EQ(refusal("x=[" + repeated("0,", 65535) + "0]"), tooLarge);
    EXPECT_EQ(refusal("f(" + repeated("0,", 65535) + "0)"), tooLarge);
    // NUM_0 + ADD: 2 bytes a term; the operand of the jump lies behind its opcode.
    const std::string bytes65532 = "x = 0" + repeated("+0", 32764) + ";"; // 1 + 2 * 32764 + 3
    EXPECT_EQ(refusal(bytes65532 + "while (!0) ;"), farJump);
    EXPECT_EQ(refusal(bytes65532 + "while (x) ;"), farJump);
    EXPECT_EQ(refusal(bytes65532 + repeated("x++;", 100000)), "compiled");
    EXPECT_EQ(refusal("while (x) x = 0" + repeated("+0", 32760) + ";"), "compiled");
    EXPECT_EQ(refusal("x;\nwhile (x) x =\n0" + repeated("+0", 32764) + ";"),
              "2: compiler error: jump target too large");
    EXPECT_EQ(refusal("do { x = 0" + repeated("+0", 40000) + "; } while (x)"), "compiled");
    EXPECT_EQ(refusal("x = 0" + repeated("+0", 40000) + "; do { x = 0; } while (x)"), tooLarge);
}

} // namespace

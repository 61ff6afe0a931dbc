// Token streams: kinds, values, lines and what counts as a line end.
#include "compiler/lexer.h"

#include "natives/error.h"
#include "runtime/context.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <string>

namespace {

// One word for each token: its kind's name; a name or string in quotes; a number with all its digits. In
// front
// `^` where a line end lay before it, behind `@N` from where the line is N.
class Lexer : public testing::Test {
protected:
    Lexer() { ctx.initContext(); }

    std::string tokens(const QString& text) {
        ESFunctionScope scope(nullptr, true);
        ESLexer lexer(ctx);
        lexer.setScope(&scope);
        lexer.setSource(text);
        std::string result;
        std::int32_t line = 1;
        for (std::int32_t kind = lexer.next(); kind != TokenEnd; kind = lexer.next()) {
            result += result.empty() ? "" : " ";
            result += lexer.newlineBefore() ? "^" : "";
            result += textOf(kind, lexer, scope);
            if (lexer.line() != line) {
                line = lexer.line();
                result += "@" + std::to_string(line);
            }
        }
        EXPECT_EQ(lexer.next(), TokenEnd) << "reading on at the end";
        endLine = lexer.line();
        return result;
    }

    std::string message(const QString& text) {
        try {
            return "no error: " + tokens(text);
        } catch (const ESException& exception) {
            return ctx.toString(ctx.get(exception.value.object, wellKnownAtoms.message)).toStdString();
        }
    }

    ESContext ctx;
    std::int32_t endLine = 0;

private:
    static std::string textOf(std::int32_t kind, const ESLexer& lexer, const ESFunctionScope& scope) {
        switch (kind) {
        case TokenIdentifier:
            return lexer.atom()->toString().toStdString();
        case TokenString:
            return "'" + lexer.atom()->toString().toStdString() + "'";
        case TokenNumber: {
            char digits[40];
            const double value = scope.block->numbers[static_cast<std::size_t>(lexer.number())];
            std::snprintf(digits, sizeof digits, "%.17g", value);
            return std::string("#") + digits;
        }
        default:
            return tokenName(kind).toStdString();
        }
    }
};

TEST_F(Lexer, SplitsText) {
    for (const char* section : {"splits", "lines", "numbers", "strings"}) {
        for (const Row& row : rowsOf("compiler/tokens.table", section)) {
            EXPECT_EQ(tokens(QString::fromLatin1(row.text)), row.expected) << row.text;
        }
    }
    tokens(QStringLiteral("a /*\n\n"));
    EXPECT_EQ(endLine, 3) << "lines of a comment without an end";
}

TEST_F(Lexer, RefusesWhatIsNoToken) {
    for (const Row& row : rowsOf("compiler/tokens.table", "refused")) {
        EXPECT_EQ(message(QString::fromLatin1(row.text)), row.expected) << row.text;
    }
    EXPECT_EQ(message(QStringLiteral("a \u20ac")), "line 1: unknown character '\xe2\x82\xac'");
    EXPECT_EQ(tokens(QStringLiteral("'\u20ac' /* \u20ac */")), "'\xe2\x82\xac'");
}

} // namespace

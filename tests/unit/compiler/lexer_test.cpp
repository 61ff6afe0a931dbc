// Token streams: kinds, values, lines and what counts as a line end.
#include "compiler/lexer.h"

#include "natives/error.h"
#include "runtime/context.h"

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

struct Row {
    const char* text;
    const char* expected;
};

TEST_F(Lexer, SplitsText) {
    const Row rows[] = {
        {"", ""},
        {"a.b.5", "a . b #0.5"},
        {"x.5 .", "x #0.5 ."},
        {"! != !== % %= & &= && * *= + += ++ - -= -- / /=",
         "! != !== % %= & &= && * *= + += ++ - -= -- / /="},
        {"< <= << <<= = == === > >= >> >>= >>> >>>= ^ ^= | |= ||",
         "< <= << <<= = == === > >= >> >>= >>> >>>= ^ ^= | |= ||"},
        {"a+++b a---b a>>>>b a====b a&&&b", "a ++ + b a -- - b a >>> > b a === = b a && & b"},
        {"(),:;?[]{}~", "( ) , : ; ? [ ] { } ~"},
        {"instanceof boolean Class classs $_9 in_", "instanceof boolean Class classs $_9 in_"},
        {"true false null class", "token<181> token<182> token<183> class"},
        {"3x 1e+x 1e x", "#3 x #1 x #1 x"},
        {"a/b/c", "a / b / c"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(tokens(QString::fromLatin1(row.text)), row.expected) << row.text;
    }
}

TEST_F(Lexer, CountsLines) {
    const Row rows[] = {
        {"a\nb", "a ^b@2"},  {"a\r\nb\rc", "a ^b@2 ^c"}, {"a/*x\ny*/b", "a b@2"},       {"a//x\nb", "a ^b@2"},
        {"a//x\rb", "a ^b"}, {"a /*/ b */ c", "a c"},    {"a /**/ b /***/ c", "a b c"}, {"a /* b", "a"},
        {"a // b", "a"},     {"a\t\v\f\x1a b", "a b"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(tokens(QString::fromLatin1(row.text)), row.expected) << row.text;
    }
    tokens(QStringLiteral("a /*\n\n"));
    EXPECT_EQ(endLine, 3) << "lines of a comment without an end";
}

TEST_F(Lexer, ReadsNumbers) {
    const Row rows[] = {
        {"0 0. .5 1. 1.e3 1.5.2", "#0 #0 #0.5 #1 #1000 #1.5 #0.20000000000000001"},
        {"0e5 09 08.5 010 0777", "#0 e5 #0 #9 #0 #8.5 #8 #511"},
        {"0x 0x1G 0XfF 0x1.8", "#nan #1 G #255 #1 #0.80000000000000004"},
        {"1e5x 1e-2 1E+2 1e5.5", "#100000 x #0.01 #100 #100000 #0.5"},
        {"1e 1e+ .5e-", "#1 #1 #0.5"},
        {"123456789012345 9007199254740993 0.1", "#123456789012345 #9007199254740992 #0.10000000000000001"},
        {"1e308 1e309 1e-400 5e-324", "#1e+308 #inf #0 #4.9406564584124654e-324"},
        {"0xFFFFFFFFFFFFFFFFF 0100000000000000000000000", "#2.9514790517935283e+20 #5.9029581035870565e+20"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(tokens(QString::fromLatin1(row.text)), row.expected) << row.text;
    }
}

TEST_F(Lexer, ReadsStrings) {
    const Row rows[] = {
        {R"('' "" 'a"b' "a'b")", R"('' '' 'a"b' 'a'b')"},
        {R"('\x41\101\u0041')", "'AAA'"},
        {R"('\b\f\n\t\r\v\q\\\'\"')", "'\b\f\n\t\rvq\\'\"'"},
        {R"('\400\377\18\7x')", "'\x20"
                                "0\xc3\xbf\x01"
                                "8\ax'"},
        {R"('x\x80y')", "'x\xc2\x80y'"},
        {"'a\\\nb' c", "'a\nb' c"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(tokens(QString::fromLatin1(row.text)), row.expected) << row.text;
    }
}

TEST_F(Lexer, RefusesWhatIsNoToken) {
    const Row rows[] = {
        {"\n\n a \\", "line 3: unknown character '\\'"},
        {"a\xe9", "line 1: unknown character '\xc3\xa9'"},
        {"'a\nb'", "line 1: newline in string constant"},
        {"'a\\\r\nb'", "line 1: newline in string constant"},
        {"\n'a", "line 2: end of file in string constant"},
        {"'a\\", "line 1: end of file in string constant"},
        {R"('\x4')", "line 1: malformed hex escape sequence"},
        {R"('\u123g')", "line 1: malformed hex escape sequence"},
        {R"('\u12)", "line 1: malformed hex escape sequence"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(message(QString::fromLatin1(row.text)), row.expected) << row.text;
    }
    EXPECT_EQ(message(QStringLiteral("a \u20ac")), "line 1: unknown character '\xe2\x82\xac'");
    EXPECT_EQ(tokens(QStringLiteral("'\u20ac' /* \u20ac */")), "'\xe2\x82\xac'");
}

} // namespace

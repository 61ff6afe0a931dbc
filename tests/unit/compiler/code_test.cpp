// The code that each construct of the language becomes.
#include "listings.h"

#include "compiler/compilation.h"
#include "machine/listing.h"
#include "runtime/context.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

struct Row {
    const char* text;
    const char* code;
};

class Code : public testing::Test {
protected:
    Code() { ctx.initContext(); }

    // The program's code without what ends it.
    std::string code(const std::string& text, const std::string& end) {
        std::string listing = listingsOf(ctx, QString::fromStdString(text)).back();
        if (listing == end) {
            return {};
        }
        if (listing.ends_with(end)) {
            listing.resize(listing.size() - end.size());
        }
        return listing.ends_with(", ") ? listing.substr(0, listing.size() - 2) : listing;
    }
    std::string wanted(const std::string& expression) { return code(expression, "RET"); }
    std::string statement(const std::string& text) { return code(text + "\n;;", "UNDEFINED, RET"); }
    // The code of a function inside, the first that is finished.
    std::string function(const std::string& text) {
        return listingsOf(ctx, QString::fromStdString(text)).front();
    }

    ESContext ctx;
};

TEST_F(Code, OfExpressions) {
    const Row rows[] = {
        {"5 + 5.5 + 5", "NUM 5, NUM 5.5, ADD, NUM 5, ADD"},
        {"-1", "NUM_1, NEG"},
        {"(this, true, null)", "NULL"},
        {"(a(), b)", "CALLG a #0, DROP, GETG b"},
        {"a - b * c / d % e", "GETG a, GETG b, GETG c, MUL, GETG d, DIV, GETG e, MOD, SUB"},
        {"a | b ^ c & d", "GETG a, GETG b, GETG c, GETG d, BITAND, BITXOR, BITOR"},
        {"a > b >= c", "GETG c, GETG b, GETG a, LT, LE"},
        {"a < b > c + d", "GETG c, GETG d, ADD, GETG a, GETG b, LT, LT"},
        {"a == b < c", "GETG a, GETG b, GETG c, LT, EQ"},
        {"(a - b) - (c - d)", "GETG a, GETG b, SUB, GETG c, GETG d, SUB, SUB"},
        {"!a", "GETG a, LOGNOT"},
        {"void a()", "CALLG a #0, VOID"},
        {"a && b || c", "GETG a, LOGAND 9, GETG b, 9:LOGOR 15, GETG c, 15:RET"},
        {"a | b && c", "GETG a, GETG b, BITOR, LOGAND 13, GETG c, 13:RET"},
        {"a ? b : c ? d : e",
         "GETG a, JF 12, GETG b, J 27, 12:GETG c, JF 24, GETG d, J 27, 24:GETG e, 27:RET"},
        {"a['b'][1.5][c]", "GETG a, GETF b, GETF 1.5, GETG c, GETX"},
        {"f(1, g(2))", "NUM_1, NUM_2, CALLG g #1, CALLG f #2"},
        {"a.b(1).c(2)[d](3)", "NUM_3, NUM_2, NUM_1, GETG a, CALLF b #1, CALLF c #1, GETG d, CALLX #1"},
        {"(a ? b : c)(1)", "NUM_1, GETG a, JF 13, GETG b, J 16, 13:GETG c, 16:CALLV #1"},
        {"new a()", "GETG a, NEWA #0"},
        {"new a.b(1, 2)", "NUM_1, NUM_2, GETG a, GETF b, NEWA #2"},
        {"new a().b", "CALLG a #0, GETF b, NEW"},
        {"[1,,2]", "NUM_1, UNDEFINED, NUM_2, MKARRAY #3"},
        {"({a: 1, 'b c': [2], 5.5: f(),}).a",
         "NEWOBJ, NUM_1, INITF a, NUM_2, MKARRAY #1, INITF b c, CALLG f #0, INITF 5.5, GETF a"},
        {"(function () {})", "CLOSURE #0"},
        {"(function f() {})", "CLOSURE #0, DUP, PUTG f"},
    };
    for (const Row& row : rows) {
        // Where the end itself is jumped to, the row says what stands there.
        const std::string ended = std::string(row.code).ends_with("RET") ? "" : "RET";
        EXPECT_EQ(code(row.text, ended), row.code) << row.text;
    }
}

TEST_F(Code, OfWrites) {
    const Row rows[] = {
        {"x = 5", "NUM 5, DUP, PUTG x"},
        {"a = b = 1", "NUM_1, DUP, PUTG b, DUP, PUTG a"},
        {"o[k] = v", "GETG v, DUP, GETG o, GETG k, PUTX"},
        {"x += v()", "GETG x, CALLG v #0, ADD, DUP, PUTG x"},
        {"o.k -= v()", "CALLG v #0, GETG o, STR k, SUBX"},
        {"o[k] >>>= v()", "CALLG v #0, GETG o, GETG k, USHRX"},
        {"x++", "GETG x, INCG x"},
        {"o.k++", "GETG o, STR k, POSTINCE"},
        {"--o[k]", "GETG o, GETG k, PREDECE"},
        {"++o['k']", "GETG o, STR k, PREINCE"},
        {"delete x", "FALSE"},
        {"delete o.x", "GETG o, STR x, DELETEX"},
        {"delete o[x]", "GETG o, GETG x, DELETEX"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(wanted(row.text), row.code) << row.text;
    }
    const Row operators[] = {{"&=", "BITAND"}, {"|=", "BITOR"},  {"^=", "BITXOR"}, {"<<=", "SHL"},
                             {">>=", "SHR"},   {">>>=", "USHR"}, {"+=", "ADD"},    {"-=", "SUB"},
                             {"*=", "MUL"},    {"/=", "DIV"},    {"%=", "MOD"}};
    for (const Row& row : operators) {
        EXPECT_EQ(wanted(std::string("x ") + row.text + " y"),
                  std::string("GETG x, GETG y, ") + row.code + ", DUP, PUTG x");
        EXPECT_EQ(wanted(std::string("o.x ") + row.text + " y"),
                  std::string("GETG y, GETG o, STR x, ") + row.code + "X");
    }
}

// Nobody wants the value: no DUP, and nothing at all where nothing happens.
TEST_F(Code, OfExpressionStatements) {
    const Row rows[] = {
        {"x += 1", "GETG x, NUM_1, ADD, PUTG x"},
        {"o.k += 1", "NUM_1, GETG o, STR k, ADDX, DROP"},
        {"--x", "DECG x"},
        {"o[k]++", "GETG o, GETG k, POSTINCE, DROP"},
        {"y = x++", "GETG x, INCG x, PUTG y"},
        {"f()", "CALLG f #0, DROP"},
        {"!f(); ~f(); -f()", "CALLG f #0, DROP, CALLG f #0, DROP, CALLG f #0, NEG, DROP"},
        {"new f()", "GETG f, NEWA #0, DROP"},
        {"a ? f() : b", "GETG a, JF 14, CALLG f #0, J 17, 14:GETG b, 17:DROP"},
        {"a, f(), b", "CALLG f #0, DROP"},
        {"var a = 1, b, c = 2", "NUM_1, PUTG a, NUM_2, PUTG c"},
        {"x; 1; 'a'; a.b; a + b; new f; [a]; ({a: b}); typeof a; -a; !a; a ? b : c", ""},
        {"(function () { return 1; })", ""},
        {"(function () { return f(); })", "CLOSURE #0, DROP"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(statement(row.text), row.code) << row.text;
    }
}

TEST_F(Code, OfStatements) {
    const Row rows[] = {
        {"if (a) f(); else g()",
         "GETG a, JF 15, CALLG f #0, DROP, J 21, 15:CALLG g #0, DROP, 21:UNDEFINED, RET"},
        {"if (a) f(); else if (b) g(); else h()", "GETG a, JF 15, CALLG f #0, DROP, J 36, 15:GETG b, JF 30, "
                                                  "CALLG g #0, DROP, J 36, 30:CALLG h #0, DROP, "
                                                  "36:UNDEFINED, RET"},
        {"while (a) { f(); continue; }", "0:GETG a, JF 18, CALLG f #0, DROP, J 0, J 0, 18:UNDEFINED, RET"},
        {"do { f(); continue; } while (a)", "0:CALLG f #0, DROP, J 9, 9:GETG a, JT 0"},
        {"for (i = 0; i < 3; i++) f(i)",
         "NUM_0, PUTG i, J 19, 7:GETG i, CALLG f #1, DROP, INCG i, 19:GETG i, NUM_3, JLT 7"},
        {"for (i = 0; 3 > i; i++) ;", "NUM_0, PUTG i, J 10, 7:INCG i, 10:GETG i, NUM_3, LT, JT 7"},
        {"for (var k in o) f(k)",
         "GETG o, ENUM, PUTG CG, J 22, 10:PUTG k, GETG k, CALLG f #1, DROP, 22:GETG CG, NEXT 10"},
        {"for (o.x in p) continue",
         "GETG p, ENUM, PUTG CG, J 19, 10:GETG o, PUTF x, J 19, 19:GETG CG, NEXT 10"},
        {"with (o) x = y", "GETG o, WITH, GETW y, PUTW x, ENDWITH"},
        {"with (o) { x++; delete x; f(1); x += 1; }",
         "GETG o, WITH, STR x, POSTINCX, DROP, DELETEW x, DROP, NUM_1, CALLW f #1, DROP, GETW x, NUM_1, ADD, "
         "PUTW x, ENDWITH"},
        {"L: with (a) { with (b) { break L; } }",
         "GETG a, WITH, GETW b, WITH, ENDWITH, ENDWITH, J 15, ENDWITH, ENDWITH, 15:UNDEFINED, RET"},
        {"while (a) with (b) { for (;;) break; continue; }",
         "0:GETG a, JF 27, GETG b, WITH, J 16, 13:J 19, 16:J 13, 19:ENDWITH, J 0, ENDWITH, J 0, "
         "27:UNDEFINED, RET"},
        {"switch (a) { case 1: f(); default: g(); case b: break; }",
         "GETG a, DUP, NUM_1, IDENTITY, JT_DROP 21, DUP, GETG b, IDENTITY, JT_DROP 33, DROP, J 27, "
         "21:CALLG f #0, DROP, 27:CALLG g #0, DROP, 33:J 36, 36:UNDEFINED, RET"},
        {"switch (a) { case 1: f(); }",
         "GETG a, DUP, NUM_1, IDENTITY, JT_DROP 13, DROP, J 19, 13:CALLG f #0, DROP, 19:UNDEFINED, RET"},
        {"L: for (;;) { for (;;) { continue L; } }", "J 12, 3:J 9, 6:J 12, 9:J 6, 12:J 3"},
        {"try { f(); } catch (e) { g(); } finally { h(); }", ""},
        {"f(); function f() {}", "CLOSURE #0, PUTG f, CALLG f #0, DROP"},
    };
    for (const Row& row : rows) {
        // Where the end itself is jumped to, the row says what stands there.
        const std::string text = std::string(row.text) + "\n;;";
        const std::string ended = std::string(row.code).ends_with("RET") ? "" : "UNDEFINED, RET";
        EXPECT_EQ(code(text, ended), row.code) << row.text;
    }
}

// A program's value is that of its last statement, when that is an expression.
TEST_F(Code, OfProgramValues) {
    const Row rows[] = {
        {"", "UNDEFINED, RET"},
        {"1; 2", "NUM_2, RET"},
        {"{ f(); { 2 } }", "CALLG f #0, DROP, NUM_2, RET"},
        {"var x = 1", "NUM_1, DUP, PUTG x, RET"},
        {"1; function f() {}", "CLOSURE #0, PUTG f, NUM_1, RET"},
        {"1; throw 2", "UNDEFINED, RET"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(listingsOf(ctx, QString::fromLatin1(row.text)).back(), row.code) << row.text;
    }
}

// Where the variables of a function lie follows from what it, and the functions in it, do with them.
TEST_F(Code, OfFunctions) {
    const Row rows[] = {
        {"function f(a, b) { return a + b; }", "GETA a, GETA b, ADD, RET, RETU"},
        {"function f(a) { var l = a; l++; a--; return; g(l); }",
         "GETA a, PUTL l, INCL l, DECA a, RETU, GETL l, CALLG g #1, DROP, RETU"},
        {"function f(a, a) { a(); }", "CALLA a #0, DROP, RETU"},
        {"function f(a) { var l; f(); with (a) { l = 1; } l(a); a++; --l; return a; }",
         "CALLG f #0, DROP, GETAM a, WITH, NUM_1, PUTW l, ENDWITH, GETAM a, CALLLM l #1, DROP, INCM a, DECLM "
         "l, "
         "GETAM a, RET, RETU"},
        {"function f(a) { a = 1; return arguments; }", "NUM_1, PUTAM a, GETLM arguments, RET, RETU"},
        {"function f(a) { return eval(a); }", "GETA a, CALLG eval #1, RET, RETU"},
        {"function f(o) { for (var k in o) ; }",
         "GETA o, ENUM, PUTL CG, J 13, 10:PUTL k, 13:GETL CG, NEXT 10, RETU"},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(function(row.text), row.code) << row.text;
    }
    using Listings = std::vector<std::string>;
    EXPECT_EQ(listingsOf(ctx, QStringLiteral("function out(n) { return function () { return ++n + g; }; }")),
              (Listings{"STR n, PREINCX, GETG g, ADD, RET, RETU", "CLOSURE #1, RET, RETU",
                        "CLOSURE #0, PUTG out, UNDEFINED, RET"}));
    EXPECT_EQ(listingsOf(ctx, QStringLiteral("function out(n) { n = 1; function inner() { return n; } }")),
              (Listings{"GETW n, RET, RETU", "CLOSURE #1, PUTLM inner, NUM_1, PUTAM n, RETU",
                        "CLOSURE #0, PUTG out, UNDEFINED, RET"}));
}

TEST_F(Code, AlwaysActivation) {
    ctx.alwaysActivation = true;
    EXPECT_EQ(function("function f(a) { var l = a; l++; }"), "GETAM a, PUTLM l, INCLM l, RETU");
}

} // namespace

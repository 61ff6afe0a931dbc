// The code that each construct of the language becomes.
#include "listings.h"

#include "compiler/compilation.h"
#include "machine/listing.h"
#include "runtime/context.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

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
    // The code of a function inside, the first that is finished.
    std::string function(const std::string& text) {
        return listingsOf(ctx, QString::fromStdString(text)).front();
    }

    ESContext ctx;
};

// What ends the program is left out, but where it is jumped to. As a statement nobody wants an expression's
// value; a program has that of its last statement.
TEST_F(Code, OfTexts) {
    const struct {
        const char* section;
        const char* behind;
        const char* end;
    } forms[] = {{"expressions", "", "RET"},
                 {"writes", "", "RET"},
                 {"expression statements", "\n;;", "UNDEFINED, RET"},
                 {"statements", "\n;;", "UNDEFINED, RET"},
                 {"program values", "", ""}};
    for (const auto& [section, behind, end] : forms) {
        for (const Row& row : rowsOf("compiler/code.table", section)) {
            EXPECT_EQ(code(row.text + behind, row.expected.ends_with("RET") ? "" : end), row.expected)
                << row.text;
        }
    }
    for (const Row& row : rowsOf("compiler/code.table", "operators")) {
        EXPECT_EQ(code("x " + row.text + " y", "RET"), "GETG x, GETG y, " + row.expected + ", DUP, PUTG x");
        EXPECT_EQ(code("o.x " + row.text + " y", "RET"), "GETG y, GETG o, STR x, " + row.expected + "X");
    }
}

// Where the variables of a function lie follows from what it, and the functions in it, do with them.
TEST_F(Code, OfFunctions) {
    for (const Row& row : rowsOf("compiler/code.table", "functions")) {
        EXPECT_EQ(function(row.text), row.expected) << row.text;
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

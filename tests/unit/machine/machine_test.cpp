#include "machine/code_block.h"
#include "machine/listing.h"
#include "natives/standard_library.h"
#include "runtime/context.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace {

void emit(ESCodeBlock& block, int opcode, std::initializer_list<int> operands = {}) {
    block.emit(static_cast<std::uint8_t>(opcode), 1);
    for (const int operand : operands) {
        block.emit(static_cast<std::uint8_t>(operand >> 8), 1);
        block.emit(static_cast<std::uint8_t>(operand & 0xFF), 1);
    }
}

// Each kind of operand as the listing shows it, printed while compiling.
TEST(Listing, ShowsOperands) {
    ESContext ctx;
    ctx.initContext();
    std::ostringstream stream;
    debugStream = &stream;
    debugFlags = debugListBlocks;
    ctx.evaluate(QStringLiteral("function f(a) { var l = a + 2.5; while (a) isNaN(l, 'text'); }"));
    debugFlags = 0;
    EXPECT_TRUE(stream.str().starts_with(
        "\n\n0000:  GETA\ta\n0003:  NUM\t2.5\n0006:  ADD\n0007:  PUTL\tl\n000a:  GETA\ta\n000d:  JF\t001f\n"
        "0010:  GETL\tl\n0013:  STR\ttext\n0016:  CALLG\tisNaN [idx=9], #2\n001b:  DROP\n001c:  J\t000a\n"
        "001f:  RETU\n\n\n0000:  CLOSURE\t#0\n"))
        << stream.str();
    ESPropertyTable& globals = ctx.globalObject->properties;
    globals.erase(globals.at(0));
    ESCodeBlock emptied;
    emit(emptied, OP_GETG, {0});
    stream.str("");
    listBlock(ctx.globalObject, emptied);
    debugStream = nullptr;
    EXPECT_EQ(stream.str(), "\n\n0000:  GETG\t(null) [idx=0]\n");
}

// What can't run is refused before it does.
TEST(CodeBlock, RefusesWhatCannotRun) {
    const auto refuses = [](auto fill) {
        ESCodeBlock block;
        fill(block);
        try {
            block.finish();
        } catch (const ESFatalError& error) {
            return error.message.startsWith(QStringLiteral("compiler error: "));
        }
        return false;
    };
    EXPECT_FALSE(refuses([](ESCodeBlock& b) { emit(b, OP_NUM_1), emit(b, OP_RET); }));
    EXPECT_TRUE(refuses([](ESCodeBlock& b) { emit(b, OP_NUM_1); }));                      // runs off the end
    EXPECT_TRUE(refuses([](ESCodeBlock& b) { emit(b, OP_ADD), emit(b, OP_RET); }));       // takes too much
    EXPECT_TRUE(refuses([](ESCodeBlock& b) { emit(b, OP_J, {500}), emit(b, OP_RETU); })); // jumps outside
    EXPECT_TRUE(refuses([](ESCodeBlock& b) { emit(b, OP_NUM_1), emit(b, OP_J, {0}); }));  // grows each turn
    EXPECT_TRUE(refuses([](ESCodeBlock& b) { b.emit(instructionCount, 1), emit(b, OP_RETU); }));
    ESCodeBlock deep;
    for (int i = 0; i < 300; ++i) {
        emit(deep, OP_NUM_1);
    }
    emit(deep, OP_MKARRAY, {300});
    emit(deep, OP_RET);
    deep.finish();
    EXPECT_EQ(deep.maxDepth, 300);
}

class CountingContext : public ESContext {
public:
    CountingContext() : ESContext(true) {}
    bool keepRunning() override { return ++asked != 1000; }
    int asked = 0;
};

TEST(Interpreter, AsksBeforeEveryInstruction) {
    CountingContext ctx;
    ctx.initContext();
    const ESCompletion completion = ctx.evaluate(QStringLiteral("for (;;) n++;"));
    EXPECT_EQ(completion.status, ESCompletion::normal);
    EXPECT_EQ(ctx.asked, 1000);
}

double numberOf(ESContext& ctx, const char* text) {
    const ESCompletion completion = ctx.evaluate(QString::fromLatin1(text));
    EXPECT_EQ(completion.status, ESCompletion::normal) << text;
    return ctx.toDouble(completion.value);
}

// Run-time strings take no compiled index, so a long run leaves room for one more text.
TEST(Machine, CompilesAfterAMillionStrings) {
    ESContext ctx;
    ctx.initContext();
    EXPECT_EQ(
        numberOf(ctx, "var o = {}; for (var i = 0; i < 1000000; i++) o['k' + i % 1000 + '_' + i] = i; 7"), 7);
    EXPECT_EQ(numberOf(ctx, "var fresh_name = 5; fresh_name + o.k999_999999"), 1000004);
}

} // namespace

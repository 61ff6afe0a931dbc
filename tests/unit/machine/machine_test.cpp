#include "machine/code_block.h"
#include "machine/listing.h"
#include "natives/standard_library.h"
#include "runtime/context.h"

#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace {

std::string listed(const ESContext& ctx, const ESCodeBlock& block) {
    std::ostringstream stream;
    debugStream = &stream;
    listBlock(ctx.globalObject, block);
    debugStream = nullptr;
    return stream.str();
}

void emit(ESCodeBlock& block, int opcode, std::initializer_list<int> operands = {}) {
    block.emit(static_cast<std::uint8_t>(opcode), 1);
    for (const int operand : operands) {
        block.emit(static_cast<std::uint8_t>(operand >> 8), 1);
        block.emit(static_cast<std::uint8_t>(operand & 0xFF), 1);
    }
}

// Each kind of operand as the listing shows it, for every instruction of the table.
TEST(Listing, ShowsEveryInstruction) {
    ESContext ctx;
    ctx.initContext();
    const int atom = compiledIndex(intern("listed"));
    ESCodeBlock block;
    block.argCount = 1;
    block.numbers = {2.5};
    for (const char* name : {"argument", "local"}) {
        ESProperty variable{};
        variable.atom = intern(name);
        block.variables.push_back(variable);
    }
    std::ostringstream expected;
    expected << "\n\n";
    for (int opcode = 0; opcode < instructionCount; ++opcode) {
        const ESInstruction& instruction = instructionTable[opcode];
        char offset[16];
        std::snprintf(offset, sizeof offset, "%04x:  ", static_cast<unsigned>(block.length()));
        expected << offset;
        block.emit(static_cast<std::uint8_t>(opcode), 1);
        bool first = true;
        if (opcode != OP_NOTIDENTITY) {
            expected << instruction.mnemonic;
        }
        for (const ESOperand kind : {instruction.first, instruction.second}) {
            int value = 0;
            std::string text;
            switch (kind) {
            case ESOperand::None:
                continue;
            case ESOperand::Num:
                text = "2.5";
                break;
            case ESOperand::Atom:
                value = atom;
                text = "listed";
                break;
            case ESOperand::Slot:
                text = ctx.globalObject->properties.at(0).atom->toString().toStdString() + " [idx=0]";
                break;
            case ESOperand::Arg:
                text = "argument";
                break;
            case ESOperand::Loc:
                text = "local";
                break;
            case ESOperand::Func:
            case ESOperand::Count:
                value = 300;
                text = "#300";
                break;
            case ESOperand::Target:
                value = 0xBEEF;
                text = "beef";
                break;
            }
            expected << (first ? "\t" : ", ") << text;
            first = false;
            block.emit(static_cast<std::uint8_t>(value >> 8), 1);
            block.emit(static_cast<std::uint8_t>(value & 0xFF), 1);
        }
        expected << "\n";
    }
    EXPECT_EQ(listed(ctx, block), expected.str());
    ESPropertyTable& globals = ctx.globalObject->properties;
    globals.erase(globals.at(0));
    ESCodeBlock emptied;
    emit(emptied, OP_GETG, {0});
    EXPECT_EQ(listed(ctx, emptied), "\n\n0000:  GETG\t(null) [idx=0]\n");
}

TEST(Listing, IsPrintedWhileCompilingWhenTheFlagIsSet) {
    ESContext ctx;
    ctx.initContext();
    std::ostringstream stream;
    debugStream = &stream;
    debugFlags = debugListBlocks;
    ctx.evaluate(QStringLiteral("function add(a, b) { return a + b; }"));
    debugFlags = 0;
    debugStream = nullptr;
    const std::string text = stream.str();
    EXPECT_EQ(text.substr(0, text.find("\n\n", 2)),
              "\n\n0000:  GETA\ta\n0003:  GETA\tb\n0006:  ADD\n0007:  RET\n0008:  RETU");
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

// Calls whose activation nothing captured leave the memory where it was.
TEST(Machine, GivesActivationsBack) {
    ESContext ctx;
    ctx.initContext();
    numberOf(
        ctx,
        "function f(a) { var x = a; if (a < 0) { return function () { return x; }; } return x + 1; } f(1)");
    const auto objects = [&] { return ctx.newPlainObject(); };
    ESObject* before = objects();
    EXPECT_EQ(numberOf(ctx, "var n = 0; for (var i = 0; i < 40; i++) n = f(n); n"), 40);
    ESObject* after = objects();
    EXPECT_LT(std::abs(after - before), 8) << "40 calls took objects from the pool";
}

} // namespace

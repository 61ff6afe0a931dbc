// The opcodes and what the table in instructions.def says of each. code_block.h holds code made of them,
// listing.h prints it, interpreter.cpp runs it.
#pragma once

#include <cstdint>

// `Op` and the mnemonic with a prefix, since TRUE and NULL are macros elsewhere.
enum ESOpcode : std::uint8_t {
#define ES_INSTRUCTION(number, mnemonic, first, second, pops, pushes, jumpPushes) OP_##mnemonic = number,
#include "machine/instructions.def"
};

enum class ESOperand : std::uint8_t {
    None,
    Num,    // numbers of the running block
    Atom,   // compiled atoms of the process
    Slot,   // position in the global object's property table
    Arg,    // an argument
    Loc,    // a local, counted from the first local
    Func,   // the table of code blocks
    Count,  // a number of values
    Target, // byte offset in the same block
};

struct ESInstruction {
    const char* mnemonic;
    ESOperand first;
    ESOperand second;
    std::int8_t pops; // besides the values that a Count operand names
    std::int8_t pushes;
    std::int8_t jumpPushes; // where the jump is taken

    constexpr int width() const {
        return 1 + (first != ESOperand::None ? 2 : 0) + (second != ESOperand::None ? 2 : 0);
    }
};

constexpr ESInstruction instructionTable[] = {
#define ES_INSTRUCTION(number, mnemonic, first, second, pops, pushes, jumpPushes)                            \
    {#mnemonic, ESOperand::first, ESOperand::second, pops, pushes, jumpPushes},
#include "machine/instructions.def"
};
constexpr int instructionCount = sizeof instructionTable / sizeof instructionTable[0];
constexpr int definedInstructionCount = 110; // the rest are additions

static_assert(OP_USHRX == OP_USHR + 1 && OP_ADDX == OP_ADD + 1, "the X form is the plain form plus 1");
static_assert(OP_POSTDECX == OP_PREINCX + 3 && OP_POSTDECE == OP_PREINCE + 3);
static_assert(OP_RETU == definedInstructionCount - 1);

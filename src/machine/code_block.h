// ESCodeBlock, the compiled form of one function or program, and the process-wide table of blocks that
// CLOSURE refers to. The compiler fills a block, interpreter.cpp runs it, listing.h prints it.
#pragma once

#include "machine/instructions.h"
#include "runtime/object.h"

#include <cstdint>
#include <memory>
#include <vector>

class ESFusedCode;

class ESCodeBlock {
public:
    ESCodeBlock();
    ~ESCodeBlock();
    ESCodeBlock(const ESCodeBlock&) = delete;
    ESCodeBlock& operator=(const ESCodeBlock&) = delete;

    std::vector<std::uint8_t> code;
    std::vector<std::int32_t> lines;   // an entry for each byte of code: the line of the node that emitted it
    std::vector<double> numbers;       // number pool
    std::int32_t argCount = 0;         // formal parameters
    std::int32_t localCount = 0;       // local variables; a repeated `var` counts again
    bool enclosesEval = false;         // a function directly nested in this one names `eval`
    bool needsActivation = false;      // arguments and locals live in an activation object
    std::vector<ESProperty> variables; // the formals, then the locals: atom, attributes, undefined

    std::int32_t length() const { return static_cast<std::int32_t>(code.size()); }
    void emit(std::uint8_t byte, std::int32_t line) {
        code.push_back(byte);
        lines.push_back(line);
    }
    std::uint16_t operandAt(std::int32_t offset) const {
        return static_cast<std::uint16_t>(code[static_cast<std::size_t>(offset)] << 8 |
                                          code[static_cast<std::size_t>(offset) + 1]);
    }
    // Before the body is compiled anew: code and lines go, pools and variables stay.
    void clearCode() {
        code.clear();
        lines.clear();
    }

    // Most values that the code keeps on the stack at one time, worked out by finish().
    std::int32_t maxDepth = 0;
    // Ends generation: checks the code against the instruction table and computes maxDepth. Throws
    // ESFatalError "compiler error: ..." when the block cannot run (a target outside, depths that disagree,
    // or more than ESContext::maxBlockDepth values).
    void finish();

    // The number of values on the stack before each instruction, by offset; `unreached` where no path leads.
    // Throws as finish() does.
    static constexpr std::int32_t unreached = -1;
    std::vector<std::int32_t> depths(std::int32_t& deepest) const;
    // Values that the instruction at `offset` takes from the stack.
    std::int32_t popsAt(std::int32_t offset) const;

    // What the machine made of the code on its first run; private to it.
    std::unique_ptr<ESFusedCode> fused;
};

// The table of code blocks. Entries are never removed; their blocks live until the process ends.
std::int32_t addCodeBlock(std::unique_ptr<ESCodeBlock> block);
ESCodeBlock* codeBlockAt(std::int32_t index);
std::int32_t codeBlockCount();
// Keeps a block that only a closure refers to (the Function constructor's) until the process ends.
ESCodeBlock* keepCodeBlock(std::unique_ptr<ESCodeBlock> block);

// Puts the process back as it was before its first context, none of which may be left: code blocks, atoms and
// texts go. For what runs very many scripts in one process, each as if it were the first.
void forgetAllRuns();

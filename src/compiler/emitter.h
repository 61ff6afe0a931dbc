// ESEmitter, which appends instructions to a code block and fills in jumps whose targets come later. Every
// operand is checked here: a block that needs one of more than 16 bits is refused, whatever it stands for.
#pragma once

#include "compiler/syntax_tree.h"
#include "machine/code_block.h"

#include <cstddef>
#include <cstdint>

// Unresolved jumps form their own list, a patch chain: its head is the offset of the last jump's operand, and
// each operand holds the offset of the one before, until emptyChain.
using ESPatchChain = std::int32_t;

class ESEmitter {
public:
    void setBlock(ESCodeBlock* block) { block_ = block; }
    ESCodeBlock& block() const { return *block_; }
    std::int32_t length() const { return block_->length(); }

    // All of these throw ESFatalError "compiler error: ..." for what 16 bits cannot hold.
    void emitOp(std::uint8_t opcode, std::int32_t line) { block_->emit(opcode, line); }
    void emitOp16(std::uint8_t opcode, std::size_t operand, std::int32_t line);
    void emitOp16x2(std::uint8_t opcode, std::size_t first, std::size_t second, std::int32_t line);
    void emitAtom(std::uint8_t opcode, ESAtom atom, std::int32_t line);
    // A jump to a place that is known already.
    void emitJumpTo(std::uint8_t opcode, std::int32_t target, std::int32_t line);
    // A jump that joins a chain.
    void emitJump(std::uint8_t opcode, ESPatchChain& chain, std::int32_t line);
    // Gives all jumps of the chain their target.
    void patch(ESPatchChain chain, std::int32_t target);
    void patchToHere(ESPatchChain chain) { patch(chain, length()); }

private:
    void emitOperand(std::size_t operand, std::int32_t line);

    ESCodeBlock* block_ = nullptr;
};

// Throws ESFatalError with "compiler error: " and the text.
[[noreturn]] void refuseBlock(const char* text, std::int32_t line);

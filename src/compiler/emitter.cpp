#include "compiler/emitter.h"

#include "runtime/atom.h"
#include "runtime/failures.h"

namespace {

constexpr std::size_t largestOperand = 0xFFFF;

} // namespace

void refuseBlock(const char* text, std::int32_t line) {
    throw ESFatalError{QStringLiteral("compiler error: ") + QString::fromLatin1(text), line};
}

void ESEmitter::emitOperand(std::size_t operand, std::int32_t line) {
    if (operand > largestOperand) {
        refuseBlock("operand too large", line);
    }
    block_->emit(static_cast<std::uint8_t>(operand >> 8), line);
    block_->emit(static_cast<std::uint8_t>(operand & 0xFF), line);
}

void ESEmitter::emitOp16(std::uint8_t opcode, std::size_t operand, std::int32_t line) {
    emitOp(opcode, line);
    emitOperand(operand, line);
}

void ESEmitter::emitOp16x2(std::uint8_t opcode, std::size_t first, std::size_t second, std::int32_t line) {
    emitOp(opcode, line);
    emitOperand(first, line);
    emitOperand(second, line);
}

void ESEmitter::emitAtom(std::uint8_t opcode, ESAtom atom, std::int32_t line) {
    emitOp16(opcode, static_cast<std::size_t>(compiledIndex(atom)), line);
}

void ESEmitter::emitJumpTo(std::uint8_t opcode, std::int32_t target, std::int32_t line) {
    emitOp16(opcode, static_cast<std::size_t>(target), line);
}

void ESEmitter::emitJump(std::uint8_t opcode, ESPatchChain& chain, std::int32_t line) {
    const std::int32_t place = length() + 1;
    if (place >= emptyChain) {
        refuseBlock("patch constant too large", block_->lines.back()); // `line` can be far behind
    }
    emitOp16(opcode, static_cast<std::size_t>(chain), line);
    chain = place;
}

void ESEmitter::patch(ESPatchChain chain, std::int32_t target) {
    if (chain != emptyChain && static_cast<std::size_t>(target) > largestOperand) {
        refuseBlock("jump target too large", block_->lines[static_cast<std::size_t>(chain)]);
    }
    while (chain != emptyChain) {
        const ESPatchChain previous = block_->operandAt(chain);
        const auto place = static_cast<std::size_t>(chain);
        block_->code[place] = static_cast<std::uint8_t>(target >> 8);
        block_->code[place + 1] = static_cast<std::uint8_t>(target & 0xFF);
        chain = previous;
    }
}

#include "machine/code_block.h"

#include "machine/fused_code.h"
#include "machine/operators.h"
#include "runtime/atom.h"
#include "runtime/context.h"

#include <algorithm>
#include <utility>

ESCodeBlock::ESCodeBlock() = default;
ESCodeBlock::~ESCodeBlock() = default;

namespace {

[[noreturn]] void refuse(const char* text, std::int32_t line = 0) {
    throw ESFatalError{QString::fromLatin1("compiler error: %1").arg(QString::fromLatin1(text)), line};
}

bool endsPath(std::uint8_t opcode) { return opcode == OP_J || opcode == OP_RET || opcode == OP_RETU; }

} // namespace

// Follows every path through the code once, with the depth that the table gives; where two paths meet their
// depths must agree.
std::vector<std::int32_t> ESCodeBlock::depths(std::int32_t& deepest) const {
    std::vector<std::int32_t> depthAt(code.size(), unreached);
    std::vector<std::int32_t> pending;
    const auto reach = [&](std::int32_t offset, std::int32_t depth) {
        if (offset >= length()) {
            refuse("code runs past its end");
        }
        std::int32_t& known = depthAt[static_cast<std::size_t>(offset)];
        if (known == unreached) {
            known = depth;
            pending.push_back(offset);
        } else if (known != depth) {
            refuse("depths of the stack disagree");
        }
    };
    deepest = 0;
    reach(0, 0);
    while (!pending.empty()) {
        const std::int32_t offset = pending.back();
        pending.pop_back();
        const std::uint8_t opcode = code[static_cast<std::size_t>(offset)];
        if (opcode >= instructionCount) {
            refuse("unknown instruction");
        }
        const ESInstruction& instruction = instructionTable[opcode];
        if (offset + instruction.width() > length()) {
            refuse("code runs past its end");
        }
        const std::int32_t pops = popsAt(offset);
        const std::int32_t depth = depthAt[static_cast<std::size_t>(offset)];
        if (pops > depth) {
            refuse("an instruction takes more than the stack holds");
        }
        const std::int32_t rest = depth - pops;
        deepest = std::max(deepest, rest + std::max(instruction.pushes, instruction.jumpPushes));
        if (instruction.first == ESOperand::Target) {
            reach(operandAt(offset + 1), rest + instruction.jumpPushes);
        }
        if (!endsPath(opcode)) {
            reach(offset + instruction.width(), rest + instruction.pushes);
        }
    }
    return depthAt;
}

std::int32_t ESCodeBlock::popsAt(std::int32_t offset) const {
    const ESInstruction& instruction = instructionTable[code[static_cast<std::size_t>(offset)]];
    const std::int32_t first = instruction.first == ESOperand::Count ? operandAt(offset + 1) : 0;
    const std::int32_t second = instruction.second == ESOperand::Count ? operandAt(offset + 3) : 0;
    return instruction.pops + first + second;
}

void ESCodeBlock::finish() {
    const std::vector<std::int32_t> depthAt = depths(maxDepth);
    if (maxDepth > ESContext::maxBlockDepth) {
        const auto deepest = std::max_element(depthAt.begin(), depthAt.end()) - depthAt.begin();
        refuse("too many values on the stack", lines[static_cast<std::size_t>(deepest)]);
    }
}

namespace {

std::vector<std::unique_ptr<ESCodeBlock>>& blockTable() {
    static std::vector<std::unique_ptr<ESCodeBlock>> table;
    return table;
}

std::vector<std::unique_ptr<ESCodeBlock>>& keptBlocks() {
    static std::vector<std::unique_ptr<ESCodeBlock>> kept;
    return kept;
}

} // namespace

std::int32_t addCodeBlock(std::unique_ptr<ESCodeBlock> block) {
    blockTable().push_back(std::move(block));
    return codeBlockCount() - 1;
}

ESCodeBlock* codeBlockAt(std::int32_t index) { return blockTable()[static_cast<std::size_t>(index)].get(); }

std::int32_t codeBlockCount() { return static_cast<std::int32_t>(blockTable().size()); }

ESCodeBlock* keepCodeBlock(std::unique_ptr<ESCodeBlock> block) {
    keptBlocks().push_back(std::move(block));
    return keptBlocks().back().get();
}

void forgetAllRuns() {
    blockTable().clear();
    keptBlocks().clear();
    forgetTypeNames();
    forgetTexts();
}

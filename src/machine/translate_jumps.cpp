// Jumps: where they lead in the end, and which value decides.
#include "machine/fused_translator.h"

std::int32_t ESFusedTranslator::threadJump(std::int32_t target) const {
    for (int hops = 0; hops < 8 && opAt(target) == OP_J; ++hops) {
        target = block_.operandAt(target + 1);
    }
    return target;
}

// Where a value of known truth that jumps to `target` ends up, if it is dropped on the way; else nothing.
std::optional<std::int32_t> ESFusedTranslator::threadLogical(bool value, std::int32_t target) const {
    for (int hops = 0; hops < 64; ++hops) {
        const std::int32_t after = target + instructionTable[opAt(target)].width();
        switch (opAt(target)) {
        case OP_JT:
        case OP_JF:
            return value == (opAt(target) == OP_JT) ? block_.operandAt(target + 1) : after;
        case OP_LOGAND:
        case OP_LOGOR:
            if (value != (opAt(target) == OP_LOGOR)) {
                return after;
            }
            target = block_.operandAt(target + 1);
            break;
        case OP_LOGNOT:
            value = !value;
            target = after;
            break;
        case OP_DROP:
            return after;
        default:
            return {};
        }
    }
    return {};
}

// The branch that the instruction at `offset` is, if the value on top is gone behind it either way. Negations
// on the way turn its sense.
std::optional<ESFusedBranch> ESFusedTranslator::branchAt(std::int32_t offset) const {
    bool sense = true;
    bool firstOp = true;
    for (; offset < block_.length(); firstOp = false) {
        if (!firstOp && isLabel(offset)) {
            return {};
        }
        const ESOpcode op = opAt(offset);
        const std::int32_t after = offset + instructionTable[op].width();
        switch (op) {
        case OP_LOGNOT:
            sense = !sense;
            offset = after;
            continue;
        case OP_JT:
        case OP_JF:
            return ESFusedBranch{(op == OP_JT) == sense, block_.operandAt(offset + 1), after};
        case OP_LOGAND:
        case OP_LOGOR:
            if (const auto end = threadLogical(op == OP_LOGOR, block_.operandAt(offset + 1))) {
                return ESFusedBranch{(op == OP_LOGOR) == sense, *end, after};
            }
            return {};
        default:
            return {};
        }
    }
    return {};
}

void ESFusedTranslator::truthJump(const ESFusedBranch& branch) {
    const std::uint32_t value = popRegister();
    bringAllHome(stack_.size());
    emit(branch.jumpsOn ? ESFusedOp::JumpTrue : ESFusedOp::JumpFalse, 0);
    operands(value, 0);
    target(branch.target, true);
}

void ESFusedTranslator::jumps(ESOpcode op) {
    const std::int32_t to = block_.operandAt(offset_ + 1);
    switch (op) {
    case OP_J:
        bringAllHome(stack_.size());
        emit(ESFusedOp::Jump, 0);
        operands(0, 0);
        target(to, false);
        flows_ = false;
        return;
    case OP_JLT:
        return compareAndJump(OP_LT, {true, to, next_});
    case OP_JT:
    case OP_JF:
        return truthJump({op == OP_JT, to, next_});
    case OP_JT_DROP: {
        const std::uint32_t value = popRegister();
        bringAllHome(stack_.size() - 1);
        emit(ESFusedOp::JumpTrue, 0);
        operands(value, 0);
        return target(to, true);
    }
    default: // LOGAND, LOGOR
        if (const auto branch = branchAt(offset_)) {
            return truthJump(*branch);
        }
        bringAllHome(stack_.size());
        emit(op == OP_LOGOR ? ESFusedOp::JumpTrue : ESFusedOp::JumpFalse, 0);
        operands(stack_.back().reg, 0);
        target(to, true);
        stack_.pop();
        return;
    }
}

// Operators on values, and comparisons with the jumps behind them.
#include "machine/fused_translator.h"

namespace {

bool isNumber(const ESFusedEntry& entry) {
    return entry.kind == ESFusedEntry::Constant && entry.constant.isNumber();
}

ESFusedOp offsetOp(ESFusedOp base, int distance) {
    return static_cast<ESFusedOp>(static_cast<int>(base) + distance);
}

bool isInt32Operator(ESOpcode op) { return op >= OP_BITAND && op <= OP_USHR; }

} // namespace

void ESFusedTranslator::binary(ESOpcode op) {
    const bool compound = (op - OP_ADD) % 2 == 1;
    if (compound) {
        const std::size_t depth = stack_.size();
        const ESFusedEntry key = pop();
        if (key.kind == ESFusedEntry::Constant && key.constant.tag == ESTagAtom &&
            key.constant.atom->arrayIndex == notAnIndex) {
            const std::uint32_t object = popRegister();
            const std::uint32_t value = popRegister();
            const std::uint32_t to = destination();
            emit(ESFusedOp::CompoundField, spAt(depth - 2));
            operands(to, object);
            atom(key.constant.atom);
            operands(nowhere, op);
            operands(value, 0);
            return pushResult();
        }
        const std::uint32_t keyRegister = registerOf(key, depth);
        const std::uint32_t object = popRegister();
        const std::uint32_t value = popRegister();
        const std::uint32_t to = destination();
        emit(ESFusedOp::CompoundIndexed, spAt(depth - 2));
        operands(to, object);
        operands(keyRegister, value);
        operands(op, 0);
        return pushResult();
    }
    const std::size_t depth = stack_.size();
    const ESFusedEntry right = pop();
    const ESFusedEntry left = pop();
    const int family = (op - OP_ADD) / 2; // ADD, SUB, MUL, DIV, MOD, BITAND, BITOR, BITXOR, SHL, SHR, USHR
    const std::int32_t sp = spAt(depth - 1);
    if (op == OP_ADD && readsByKey(next_)) {
        const std::uint32_t leftRegister = registerOf(left, depth - 1);
        const std::uint32_t rightRegister = registerOf(right, depth);
        emit(ESFusedOp::AddKey, sp);
        operands(home(stack_.size() + 1), leftRegister);
        operands(rightRegister, 0);
        return pushHome();
    }
    if (isNumber(right) && !isNumber(left)) {
        const std::uint32_t leftRegister = registerOf(left, depth - 1);
        const std::uint32_t to = destination();
        emit(offsetOp(ESFusedOp::AddRN, family), sp);
        operands(to, leftRegister);
        if (isInt32Operator(op)) {
            operands(static_cast<std::uint32_t>(ESContext::doubleToInt32(right.constant.number)), 0);
        } else {
            number(right.constant.number);
        }
        return pushResult();
    }
    if (isNumber(left) && !isNumber(right)) {
        const bool commutes = op == OP_MUL || op == OP_BITAND || op == OP_BITOR || op == OP_BITXOR;
        if (commutes || op == OP_ADD || op == OP_SUB || op == OP_DIV) {
            const std::uint32_t rightRegister = registerOf(right, depth);
            const std::uint32_t to = destination();
            const ESFusedOp fused = commutes       ? offsetOp(ESFusedOp::AddRN, family)
                                    : op == OP_ADD ? ESFusedOp::AddNR
                                    : op == OP_SUB ? ESFusedOp::SubNR
                                                   : ESFusedOp::DivNR;
            emit(fused, sp);
            operands(to, rightRegister);
            if (isInt32Operator(op)) {
                operands(static_cast<std::uint32_t>(ESContext::doubleToInt32(left.constant.number)), 0);
            } else {
                number(left.constant.number);
            }
            return pushResult();
        }
    }
    const std::uint32_t leftRegister = registerOf(left, depth - 1);
    const std::uint32_t rightRegister = registerOf(right, depth);
    const std::uint32_t to = destination();
    emit(offsetOp(ESFusedOp::AddRR, family), sp);
    operands(to, leftRegister);
    operands(rightRegister, 0);
    pushResult();
}

void ESFusedTranslator::unary(ESOpcode op, ESFusedOp fused) {
    if (op == OP_NEG && isNumber(stack_.back())) {
        stack_.back().constant.number = -stack_.back().constant.number;
        return;
    }
    const std::size_t depth = stack_.size();
    const std::uint32_t value = popRegister();
    const std::uint32_t to = destination();
    emit(fused, spAt(depth));
    operands(to, value);
    pushResult();
}

void ESFusedTranslator::comparison(ESOpcode op) {
    if (op == OP_IDENTITY && !isLabel(next_) && opAt(next_) == OP_JT_DROP) {
        return switchTest();
    }
    if (op <= OP_NE && next_ < block_.length() && !isLabel(next_)) {
        if (const auto branch = branchAt(next_)) {
            compareAndJump(op, *branch);
            next_ = branch->next;
            return;
        }
    }
    const std::size_t depth = stack_.size();
    const std::uint32_t right = popRegister();
    const std::uint32_t left = popRegister();
    const std::uint32_t to = destination();
    constexpr ESFusedOp plain[] = {ESFusedOp::Less, ESFusedOp::LessOrEqual, ESFusedOp::Equal,
                                   ESFusedOp::NotEqual, ESFusedOp::Identical};
    emit(plain[op - OP_LT], spAt(depth - 1));
    operands(to, left);
    operands(right, 0);
    pushResult();
}

// Takes the two operands off the picture and jumps on their comparison.
void ESFusedTranslator::compareAndJump(ESOpcode op, const ESFusedBranch& branch) {
    const std::size_t depth = stack_.size();
    const ESFusedEntry right = pop();
    const ESFusedEntry left = pop();
    bringAllHome(stack_.size());
    const std::int32_t sp = spAt(depth - 1);
    const bool equality = op == OP_EQ || op == OP_NE;
    const int variant = equality ? (branch.jumpsOn == (op == OP_EQ) ? 0 : 1)
                                 : (op == OP_LE ? 2 : 0) + (branch.jumpsOn ? 0 : 1);
    if (isNumber(right) != isNumber(left)) {
        const bool rightIsNumber = isNumber(right);
        const ESFusedEntry& other = rightIsNumber ? left : right;
        const std::uint32_t reg = registerOf(other, rightIsNumber ? depth - 1 : depth);
        const ESFusedOp base = equality        ? ESFusedOp::JumpEqualRN
                               : rightIsNumber ? ESFusedOp::JumpLessRN
                                               : ESFusedOp::JumpLessNR;
        emit(offsetOp(base, variant), sp);
        operands(reg, 0);
        target(branch.target, true);
        number((rightIsNumber ? right : left).constant.number);
        return;
    }
    const std::uint32_t leftRegister = registerOf(left, depth - 1);
    const std::uint32_t rightRegister = registerOf(right, depth);
    emit(offsetOp(equality ? ESFusedOp::JumpEqualRR : ESFusedOp::JumpLessRR, variant), sp);
    operands(leftRegister, rightRegister);
    operands(0, 0);
    target(branch.target, false);
}

// IDENTITY with the JT_DROP behind it: the discriminant stays unless the case matches.
void ESFusedTranslator::switchTest() {
    const std::size_t depth = stack_.size();
    const ESFusedEntry test = pop();
    const std::uint32_t discriminant = popRegister();
    const std::int32_t to = block_.operandAt(next_ + 1);
    next_ += instructionTable[OP_JT_DROP].width();
    bringAllHome(stack_.size() - 1);
    if (isNumber(test)) {
        emit(ESFusedOp::JumpIdenticalRN, spAt(depth - 1));
        operands(discriminant, 0);
        target(to, true);
        number(test.constant.number);
        return;
    }
    const std::uint32_t reg = registerOf(test, depth);
    emit(ESFusedOp::JumpIdenticalRR, spAt(depth - 1));
    operands(discriminant, reg);
    operands(0, 0);
    target(to, false);
}

#include "machine/fused_translator.h"

#include <algorithm>

namespace {

// An access to a variable in an activation, as one to the stack.
ESOpcode registerForm(ESOpcode op) {
    switch (op) {
    case OP_GETAM:
        return OP_GETA;
    case OP_GETLM:
        return OP_GETL;
    case OP_PUTAM:
        return OP_PUTA;
    case OP_PUTLM:
        return OP_PUTL;
    case OP_INCM:
        return OP_INCA;
    case OP_DECAM:
        return OP_DECA;
    case OP_INCLM:
        return OP_INCL;
    case OP_DECLM:
        return OP_DECL;
    case OP_CALLAM:
        return OP_CALLA;
    case OP_CALLLM:
        return OP_CALLL;
    default:
        return op;
    }
}

// Entries that are only known may be this many: each write to a variable looks through them.
constexpr std::size_t mostUnsettled = 64;

} // namespace

ESOpcode ESFusedTranslator::opAt(std::int32_t offset) const {
    const auto op = static_cast<ESOpcode>(block_.code[static_cast<std::size_t>(offset)]);
    return inRegisters_ ? registerForm(op) : op;
}

void ESFusedTranslator::emit(ESFusedOp op, std::int32_t sp) {
    ESCell cell;
    const auto number = static_cast<std::size_t>(op);
    if (handlers_ != nullptr) {
        cell.handler = handlers_[number];
    } else {
        cell.opcode = number;
    }
    code_.cells.push_back(cell);
    code_.callOuts.resize(code_.cells.size());
    code_.callOuts.back() = {sp, offset_};
}

void ESFusedTranslator::operands(std::uint32_t low, std::uint32_t high) {
    ESCell cell;
    cell.operand = {low, high};
    code_.cells.push_back(cell);
}

void ESFusedTranslator::number(double n) {
    ESCell cell;
    cell.number = n;
    code_.cells.push_back(cell);
}

void ESFusedTranslator::atom(ESAtom a) {
    ESCell cell;
    cell.bits = 0;
    cell.atom = a;
    code_.cells.push_back(cell);
}

// The half of the last cell that holds a jump's target.
void ESFusedTranslator::target(std::int32_t offset, bool high) {
    patches_.push_back({code_.cells.size() - 1, high, threadJump(offset)});
}

void ESFusedTranslator::bringHome(std::size_t index) {
    ESFusedEntry& entry = stack_[index];
    const std::uint32_t reg = home(index + 1);
    registerOf(entry, index + 1);
    if (entry.kind == ESFusedEntry::Register) {
        emit(ESFusedOp::Move, 0);
        operands(reg, entry.reg);
    }
    entry = {ESFusedEntry::Home, reg, undefinedValue()};
}

void ESFusedTranslator::bringAllHome(std::size_t below) {
    for (std::size_t i = stack_.settled(); i < below; ++i) {
        if (stack_[i].kind != ESFusedEntry::Home) {
            bringHome(i);
        }
    }
    stack_.settle(below);
}

// Before a variable is written: entries that only name it take their copy.
void ESFusedTranslator::leaveRegister(std::uint32_t reg) {
    for (std::size_t i = stack_.settled(); i < stack_.size(); ++i) {
        if (stack_[i].kind == ESFusedEntry::Register && stack_[i].reg == reg) {
            bringHome(i);
        }
    }
}

// The register that holds an entry of this depth; constants and `this` are loaded to the entry's home.
std::uint32_t ESFusedTranslator::registerOf(const ESFusedEntry& entry, std::size_t depth) {
    if (entry.kind == ESFusedEntry::Constant) {
        emit(ESFusedOp::LoadConstant, 0);
        operands(home(depth), entry.constant.tag);
        ESCell cell;
        cell.bits = entry.constant.bits;
        code_.cells.push_back(cell);
        return home(depth);
    }
    if (entry.kind == ESFusedEntry::This) {
        emit(ESFusedOp::LoadThis, 0);
        operands(home(depth), 0);
        return home(depth);
    }
    return entry.reg;
}

// Where the result of the present instruction goes: into the variable that the next one stores it in, or
// home.
std::uint32_t ESFusedTranslator::destination() {
    const ESOpcode following = next_ < block_.length() && !isLabel(next_) ? opAt(next_) : OP_DROP;
    if (following == OP_PUTA || following == OP_PUTL) {
        const std::uint32_t i = block_.operandAt(next_ + 1);
        const std::uint32_t reg = following == OP_PUTA ? argument(i) : local(i);
        leaveRegister(reg);
        next_ += instructionTable[following].width();
        stored_ = true;
        return reg;
    }
    return home(stack_.size() + 1);
}

void ESFusedTranslator::findLabels() {
    labels_.assign(block_.code.size() + 1, false);
    for (std::int32_t offset = 0; offset < block_.length();) {
        const ESOpcode op = opAt(offset);
        if (depthAt_[static_cast<std::size_t>(offset)] != ESCodeBlock::unreached &&
            instructionTable[op].first == ESOperand::Target) {
            std::int32_t to = block_.operandAt(offset + 1);
            if (op == OP_LOGAND || op == OP_LOGOR) {
                to = threadLogical(op == OP_LOGOR, to).value_or(to);
            }
            labels_[static_cast<std::size_t>(threadJump(to))] = true;
        }
        offset += instructionTable[op].width();
    }
}

// Whether nobody but an evaluator can come by the activation of a call: nothing takes hold of the scope, and
// no name that is looked for along it is one of the function's own. Then its variables may as well lie in the
// stack.
bool ESFusedTranslator::scopeIsItsOwn() const {
    if (block_.localCount > ESContext::maxUncounted) {
        return false;
    }
    const auto isVariable = [&](ESAtom atom) {
        return std::any_of(block_.variables.begin(), block_.variables.end(),
                           [&](const ESProperty& variable) { return variable.atom == atom; });
    };
    for (std::int32_t offset = 0; offset < block_.length();
         offset += instructionTable[opAt(offset)].width()) {
        switch (opAt(offset)) {
        case OP_CLOSURE:
        case OP_WITH:
        case OP_DELETEW:
            return false;
        case OP_GETW:
        case OP_PUTW:
        case OP_CALLW:
        case OP_STR: // the name of a step, or a text that happens to be a variable's name
            if (isVariable(atomAt(block_.operandAt(offset + 1)))) {
                return false;
            }
            break;
        default:
            break;
        }
    }
    return true;
}

// All entries are at home here, whichever way leads here.
void ESFusedTranslator::standAtLabel(std::size_t depth) {
    if (flows_) {
        bringAllHome(stack_.size());
    }
    stack_.cut(std::min(stack_.size(), std::min(depth, stack_.settled())));
    while (stack_.size() < depth) {
        pushHome();
    }
    stack_.settle(depth);
}

void ESFusedTranslator::run() {
    std::int32_t deepest = 0;
    depthAt_ = block_.depths(deepest);
    findLabels();
    countInitialisers(deepest);
    cellAt_.assign(block_.code.size() + 1, 0);
    code_.argCount = block_.argCount;
    inRegisters_ = block_.needsActivation && scopeIsItsOwn();
    code_.needsActivation = block_.needsActivation && !inRegisters_;
    code_.localCount = code_.needsActivation ? 0 : block_.localCount;
    code_.inRegisters = inRegisters_;
    code_.uncounted = inRegisters_ ? block_.localCount : 0;
    base_ = static_cast<std::uint32_t>(code_.argCount + code_.localCount);
    for (offset_ = 0; offset_ < block_.length(); offset_ = next_) {
        const ESOpcode op = opAt(offset_);
        next_ = offset_ + instructionTable[op].width();
        const std::int32_t depth = depthAt_[static_cast<std::size_t>(offset_)];
        if (isLabel(offset_) && depth != ESCodeBlock::unreached) {
            standAtLabel(static_cast<std::size_t>(depth));
            flows_ = true;
            cellAt_[static_cast<std::size_t>(offset_)] = static_cast<std::uint32_t>(code_.cells.size());
        }
        if (flows_ && depth != ESCodeBlock::unreached) {
            translate(op);
        }
        if (flows_ && stack_.size() > stack_.settled() + mostUnsettled) {
            bringAllHome(stack_.size() - mostUnsettled / 2);
        }
    }
    for (const Patch& patch : patches_) {
        ESCell& cell = code_.cells[patch.cell];
        (patch.high ? cell.operand.high : cell.operand.low) = cellAt_[static_cast<std::size_t>(patch.offset)];
    }
    code_.callOuts.resize(code_.cells.size());
}

void ESFusedTranslator::translate(ESOpcode op) {
    if (op <= OP_STR) {
        constants(op);
    } else if (op >= OP_ADD && op <= OP_USHRX) {
        binary(op);
    } else if (op >= OP_LT && op <= OP_NOTIDENTITY) {
        comparison(op);
    } else if (op >= OP_LOGAND && op <= OP_JLT) {
        jumps(op);
    } else if ((op >= OP_CALLW && op <= OP_CALLX) || op == OP_CALLV || op == OP_NEW || op == OP_NEWA) {
        calls(op);
    } else if (op == OP_GETF || op == OP_GETX || op == OP_PUTF || op == OP_PUTX || op == OP_INITF ||
               op == OP_DELETEX || op == OP_DELETEW || op >= OP_PREINCE) {
        properties(op);
    } else if ((op >= OP_GETW && op <= OP_PUTLM) || (op >= OP_INC && op <= OP_POSTDECX)) {
        variables(op);
    } else {
        others(op);
    }
}

ESFusedCode& fusedCodeOf(ESCodeBlock& block, const void* const* handlers) {
    if (block.fused == nullptr) {
        auto code = std::make_unique<ESFusedCode>(block);
        ESFusedTranslator(block, *code, handlers).run();
        if (code->needsActivation) {
            const auto count = static_cast<std::uint32_t>(block.argCount + block.localCount);
            for (std::size_t i = 0; i < count; ++i) {
                ESProperty slot{};
                const bool named = i < block.variables.size();
                slot.atom = named ? block.variables[i].atom : nullptr;
                slot.attributes = named ? block.variables[i].attributes : std::uint32_t{DontEnum};
                code->activationTemplate.push_back(slot);
            }
        }
        block.fused = std::move(code);
    }
    return *block.fused;
}

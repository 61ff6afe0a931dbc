// Constants, variables and names, and the calls of what they hold.
#include "machine/fused_translator.h"

void ESFusedTranslator::constants(ESOpcode op) {
    switch (op) {
    case OP_NUM:
        return pushConstant(numberValue(block_.numbers[first()]));
    case OP_NUM_M1:
        return pushConstant(numberValue(-1));
    case OP_NULL:
        return pushConstant(nullValue());
    case OP_TRUE:
    case OP_FALSE:
        return pushConstant(booleanValue(op == OP_TRUE));
    case OP_UNDEFINED:
        return pushConstant(undefinedValue());
    case OP_THIS:
        stack_.push({ESFusedEntry::This, 0, undefinedValue()});
        return;
    case OP_STR:
        return pushConstant(atomValue(atomAt(static_cast<std::int32_t>(first()))));
    default:
        return pushConstant(numberValue(op - OP_NUM_0));
    }
}

void ESFusedTranslator::store(std::uint32_t reg) {
    const std::uint32_t value = popRegister();
    leaveRegister(reg);
    if (value != reg) {
        emit(ESFusedOp::Move, 0);
        operands(reg, value);
    }
}

// Room for what a search along the scope chain remembers.
void ESFusedTranslator::nameCache() { operands(0, nowhere); }

void ESFusedTranslator::variables(ESOpcode op) {
    const auto emitGet = [&](ESFusedOp fused) {
        const std::uint32_t i = first();
        const std::uint32_t to = destination();
        emit(fused, 0);
        operands(to, i);
        pushResult();
    };
    const auto emitPut = [&](ESFusedOp fused, std::uint32_t i) {
        const std::uint32_t value = popRegister();
        emit(fused, 0);
        operands(i, value);
    };
    const auto emitStep = [&](ESFusedOp fused, std::uint32_t i, bool up) {
        emit(fused, spAt(stack_.size()));
        operands(i, static_cast<std::uint32_t>(up ? 1 : -1));
    };
    const auto argCount = static_cast<std::uint32_t>(code_.argCount);
    switch (op) {
    case OP_GETA:
        return pushRegister(argument(first()));
    case OP_GETL:
        return pushRegister(local(first()));
    case OP_PUTA:
        return store(argument(first()));
    case OP_PUTL:
        return store(local(first()));
    case OP_GETG:
        return emitGet(ESFusedOp::GetGlobal);
    case OP_PUTG:
        return emitPut(ESFusedOp::PutGlobal, first());
    case OP_GETAM:
        return emitGet(ESFusedOp::GetSlot);
    case OP_GETLM: {
        const std::uint32_t i = argCount + first();
        const std::uint32_t to = destination();
        emit(ESFusedOp::GetSlot, 0);
        operands(to, i);
        return pushResult();
    }
    case OP_PUTAM:
        return emitPut(ESFusedOp::PutSlot, first());
    case OP_PUTLM:
        return emitPut(ESFusedOp::PutSlot, argCount + first());
    case OP_GETW: {
        const ESAtom name = atomAt(static_cast<std::int32_t>(first()));
        const std::int32_t sp = spAt(stack_.size());
        const std::uint32_t to = destination();
        emit(ESFusedOp::GetName, sp);
        operands(to, 0);
        atom(name);
        nameCache();
        return pushResult();
    }
    case OP_PUTW: {
        const std::size_t depth = stack_.size();
        const std::uint32_t value = popRegister();
        emit(ESFusedOp::PutName, spAt(depth));
        operands(value, 0);
        atom(atomAt(static_cast<std::int32_t>(first())));
        return nameCache();
    }
    case OP_INCA:
    case OP_DECA:
        leaveRegister(argument(first()));
        return emitStep(ESFusedOp::StepRegister, argument(first()), op == OP_INCA);
    case OP_INCL:
    case OP_DECL:
        leaveRegister(local(first()));
        return emitStep(ESFusedOp::StepRegister, local(first()), op == OP_INCL);
    case OP_INCG:
    case OP_DECG:
        return emitStep(ESFusedOp::StepGlobal, first(), op == OP_INCG);
    case OP_INCM:
    case OP_DECAM:
        return emitStep(ESFusedOp::StepSlot, first(), op == OP_INCM);
    case OP_INCLM:
    case OP_DECLM:
        return emitStep(ESFusedOp::StepSlot, argCount + first(), op == OP_INCLM);
    default: { // the steps by name
        const std::size_t depth = stack_.size();
        const ESFusedEntry name = pop();
        const bool known = name.kind == ESFusedEntry::Constant && name.constant.tag == ESTagAtom;
        const std::uint32_t nameRegister = known ? 0 : registerOf(name, depth);
        const std::uint32_t to = destination();
        emit(ESFusedOp::StepName, spAt(depth));
        operands(to, op);
        operands(0, nameRegister);
        atom(known ? name.constant.atom : nullptr);
        nameCache();
        return pushResult();
    }
    }
}

// The arguments are the top `count` entries of the picture; the cells behind count and callee are the
// caller's to add, before pushResult().
void ESFusedTranslator::call(ESFusedOp op, std::uint32_t count, std::uint32_t callee) {
    for (std::size_t i = stack_.size() - count; i < stack_.size(); ++i) {
        if (stack_[i].kind != ESFusedEntry::Home) {
            bringHome(i);
        }
    }
    const std::int32_t sp = spAt(stack_.size() + 1);
    stack_.cut(stack_.size() - count);
    const std::uint32_t arguments = home(stack_.size() + 1);
    const std::uint32_t to = destination();
    emit(op, sp);
    operands(to, arguments);
    operands(count, callee);
}

void ESFusedTranslator::calls(ESOpcode op) {
    const bool oneOperand = op == OP_CALLX || op == OP_CALLV || op == OP_NEWA;
    const std::uint32_t count = op == OP_NEW ? 0 : oneOperand ? first() : second();
    const auto bringArgumentsHome = [&] {
        for (std::size_t i = stack_.size() - count; i < stack_.size(); ++i) {
            if (stack_[i].kind != ESFusedEntry::Home) {
                bringHome(i);
            }
        }
    };
    if (inRegisters_) { // the bytes may have to go on behind the call
        const std::size_t operands = op == OP_CALLX                                 ? 2
                                     : oneOperand || op == OP_CALLF || op == OP_NEW ? 1
                                                                                    : 0;
        bringAllHome(stack_.size() - count - operands);
    }
    switch (op) {
    case OP_CALLG:
        call(ESFusedOp::CallGlobal, count, first());
        break;
    case OP_CALLA:
        call(ESFusedOp::CallRegister, count, argument(first()));
        break;
    case OP_CALLL:
        call(ESFusedOp::CallRegister, count, local(first()));
        break;
    case OP_CALLAM:
    case OP_CALLLM: {
        bringArgumentsHome();
        const std::uint32_t fn = home(stack_.size() + 1);
        emit(ESFusedOp::GetSlot, 0);
        operands(fn, first() + (op == OP_CALLLM ? static_cast<std::uint32_t>(code_.argCount) : 0));
        call(ESFusedOp::CallRegister, count, fn);
        break;
    }
    case OP_CALLV:
    case OP_NEW:
    case OP_NEWA: {
        const std::uint32_t fn = popRegister();
        call(op == OP_CALLV ? ESFusedOp::CallRegister : ESFusedOp::New, count, fn);
        break;
    }
    case OP_CALLF: {
        const bool onThis = stack_.back().kind == ESFusedEntry::This;
        const std::uint32_t object = onThis ? thisOperand : popRegister();
        if (onThis) {
            stack_.pop();
        }
        call(ESFusedOp::CallField, count, object);
        atom(atomAt(static_cast<std::int32_t>(first())));
        operands(0, 0);
        break;
    }
    case OP_CALLX: {
        const std::uint32_t key = popRegister();
        const std::uint32_t object = popRegister();
        call(ESFusedOp::CallIndexed, count, object);
        operands(key, 0);
        break;
    }
    default: // CALLW
        call(ESFusedOp::CallName, count, 0);
        atom(atomAt(static_cast<std::int32_t>(first())));
        nameCache();
        break;
    }
    pushResult();
}

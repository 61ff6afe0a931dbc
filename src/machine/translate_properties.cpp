// Properties and elements, objects and whatever else the language makes.
#include "machine/fused_translator.h"

// Whether the instruction takes the value on top as the key of an element that should be there.
bool ESFusedTranslator::readsByKey(std::int32_t offset) const {
    if (offset >= block_.length() || isLabel(offset)) {
        return false;
    }
    const ESOpcode op = opAt(offset);
    const bool compound = op >= OP_ADD && op <= OP_USHRX && (op - OP_ADD) % 2 == 1;
    return op == OP_GETX || op >= OP_PREINCE || compound;
}

// object key -> value; `sp` counts the entries that the loop over the bytes has in use then.
void ESFusedTranslator::getIndexed(std::size_t sp) {
    const std::uint32_t key = popRegister();
    const std::uint32_t object = popRegister();
    const std::uint32_t to = destination();
    emit(ESFusedOp::GetIndexed, spAt(sp));
    operands(to, object);
    operands(key, 0);
    pushResult();
}

// value object key ->
void ESFusedTranslator::putIndexed(std::size_t sp) {
    const std::uint32_t key = popRegister();
    const std::uint32_t object = popRegister();
    const std::uint32_t value = popRegister();
    emit(ESFusedOp::PutIndexed, spAt(sp));
    operands(object, key);
    operands(value, 0);
}

void ESFusedTranslator::properties(ESOpcode op) {
    const std::size_t depth = stack_.size();
    switch (op) {
    case OP_GETF: {
        const ESAtom name = atomAt(static_cast<std::int32_t>(first()));
        if (name->arrayIndex != notAnIndex) { // a[3] is a.3 to the compiler, and an element all the same
            pushConstant(numberValue(name->arrayIndex));
            return getIndexed(depth);
        }
        if (stack_.back().kind == ESFusedEntry::This) {
            stack_.pop();
            const std::uint32_t to = destination();
            emit(ESFusedOp::GetFieldThis, spAt(depth));
            operands(to, 0);
            atom(name);
            operands(0, 0);
            return pushResult();
        }
        const std::uint32_t object = popRegister();
        const std::uint32_t to = destination();
        emit(ESFusedOp::GetField, spAt(depth));
        operands(to, object);
        atom(name);
        operands(0, 0);
        return pushResult();
    }
    case OP_PUTF: {
        const ESAtom name = atomAt(static_cast<std::int32_t>(first()));
        if (name->arrayIndex != notAnIndex) {
            pushConstant(numberValue(name->arrayIndex));
            return putIndexed(depth - 1);
        }
        const bool onThis = stack_.back().kind == ESFusedEntry::This;
        const std::uint32_t object = onThis ? 0 : popRegister();
        if (onThis) {
            stack_.pop();
        }
        const std::uint32_t value = popRegister();
        emit(onThis ? ESFusedOp::PutFieldThis : ESFusedOp::PutField, spAt(depth - 1));
        operands(object, value);
        atom(name);
        return operands(nowhere, 0);
    }
    case OP_INITF: {
        const std::uint32_t value = popRegister();
        bringHome(stack_.size() - 1);
        emit(ESFusedOp::InitField, spAt(depth - 1));
        operands(stack_.back().reg, value);
        atom(atomAt(static_cast<std::int32_t>(first())));
        return operands(0, 0);
    }
    case OP_GETX:
        return getIndexed(depth - 1);
    case OP_DELETEX: {
        const std::uint32_t key = popRegister();
        const std::uint32_t object = popRegister();
        const std::uint32_t to = destination();
        emit(ESFusedOp::DeleteIndexed, spAt(depth - 1));
        operands(to, object);
        operands(key, 0);
        return pushResult();
    }
    case OP_PUTX:
        return putIndexed(depth - 2);
    case OP_DELETEW: {
        const ESAtom name = atomAt(static_cast<std::int32_t>(first()));
        const std::uint32_t to = destination();
        emit(ESFusedOp::DeleteName, spAt(depth + 1));
        operands(to, 0);
        atom(name);
        return pushResult();
    }
    default: { // the steps of an element
        const ESFusedEntry key = pop();
        const bool named = key.kind == ESFusedEntry::Constant && key.constant.tag == ESTagAtom &&
                           key.constant.atom->arrayIndex == notAnIndex;
        const std::uint32_t keyRegister = named ? 0 : registerOf(key, depth);
        const std::uint32_t object = popRegister();
        const std::uint32_t to = destination();
        emit(named ? ESFusedOp::StepField : ESFusedOp::StepIndexed, spAt(depth - 1));
        operands(to, object);
        if (named) {
            atom(key.constant.atom);
            operands(nowhere, op);
        } else {
            operands(keyRegister, op);
        }
        return pushResult();
    }
    }
}

// How many properties each initialiser defines: its definitions stand one above its object.
void ESFusedTranslator::countInitialisers(std::int32_t deepest) {
    std::vector<std::int32_t> objectAt(static_cast<std::size_t>(deepest) + 1);
    for (std::int32_t offset = 0; offset < block_.length();
         offset += instructionTable[opAt(offset)].width()) {
        const std::int32_t depth = depthAt_[static_cast<std::size_t>(offset)];
        if (depth != ESCodeBlock::unreached && opAt(offset) == OP_NEWOBJ) {
            objectAt[static_cast<std::size_t>(depth) + 1] = offset;
        } else if (depth != ESCodeBlock::unreached && opAt(offset) == OP_INITF) {
            ++initialisers_[objectAt[static_cast<std::size_t>(depth) - 1]];
        }
    }
}

void ESFusedTranslator::others(ESOpcode op) {
    const std::size_t depth = stack_.size();
    switch (op) {
    case OP_DROP:
        stack_.pop();
        return;
    case OP_DUP: {
        const ESFusedEntry top = stack_.back();
        stack_.push(top);
        if (top.kind == ESFusedEntry::Home) {
            stack_.back() = {ESFusedEntry::Register, top.reg, undefinedValue()};
        }
        return;
    }
    case OP_VOID:
        stack_.pop();
        return pushConstant(undefinedValue());
    case OP_TYPEOF:
        return unary(op, ESFusedOp::TypeOf);
    case OP_LOGNOT:
        if (const auto branch = branchAt(offset_)) {
            truthJump(*branch);
            next_ = branch->next;
            return;
        }
        return unary(op, ESFusedOp::Not);
    case OP_BITNOT:
        return unary(op, ESFusedOp::BitNot);
    case OP_POS:
        return unary(op, ESFusedOp::ToNumber);
    case OP_NEG:
        return unary(op, ESFusedOp::Negate);
    case OP_ENUM:
        return unary(op, ESFusedOp::Enumerate);
    case OP_NEXT: {
        const std::uint32_t enumerator = popRegister();
        bringAllHome(stack_.size());
        emit(ESFusedOp::NextName, spAt(depth));
        operands(home(depth), enumerator);
        operands(0, 0);
        return target(block_.operandAt(offset_ + 1), false);
    }
    case OP_CLOSURE: {
        const std::uint32_t index = first();
        const std::uint32_t to = destination();
        emit(ESFusedOp::Closure, spAt(depth + 1));
        operands(to, index);
        return pushResult();
    }
    case OP_MKARRAY: {
        const std::uint32_t count = first();
        for (std::size_t i = depth - count; i < depth; ++i) {
            if (stack_[i].kind != ESFusedEntry::Home) {
                bringHome(i);
            }
        }
        stack_.cut(depth - count);
        const std::uint32_t values = home(stack_.size() + 1);
        const std::uint32_t to = destination();
        emit(ESFusedOp::MakeArray, spAt(depth));
        operands(to, values);
        operands(count, 0);
        return pushResult();
    }
    case OP_NEWOBJ: {
        const auto found = initialisers_.find(offset_);
        const std::uint32_t properties = found == initialisers_.end() ? 0 : found->second;
        const std::uint32_t to = destination();
        emit(ESFusedOp::NewObject, 0);
        operands(to, properties);
        return pushResult();
    }
    case OP_WITH: {
        const std::uint32_t object = popRegister();
        emit(ESFusedOp::With, spAt(depth));
        return operands(object, 0);
    }
    case OP_ENDWITH:
        return emit(ESFusedOp::EndWith, 0);
    case OP_RET: {
        const std::uint32_t value = popRegister();
        emit(ESFusedOp::Return, 0);
        operands(value, 0);
        flows_ = false;
        return;
    }
    case OP_RETU:
        emit(ESFusedOp::ReturnUndefined, 0);
        flows_ = false;
        return;
    default:
        throw ESFatalError{QStringLiteral("compiler error: instruction without a meaning")};
    }
}

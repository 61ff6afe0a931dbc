// Expressions, but for those that write (generate_assignments.cpp).
#include "compiler/code_generator.h"

#include "compiler/name_forms.h"
#include "runtime/context.h"
#include "system/native_stack.h"

namespace {

struct BinaryOperator {
    ESOpcode opcode = OP_NOTIDENTITY; // which nothing generates: no binary operator
    bool rightFirst = false;
};

BinaryOperator binaryOperator(std::int32_t kind) {
    switch (kind) {
    case '+':
        return {OP_ADD};
    case '-':
        return {OP_SUB};
    case '*':
        return {OP_MUL};
    case '/':
        return {OP_DIV};
    case '%':
        return {OP_MOD};
    case '&':
        return {OP_BITAND};
    case '|':
        return {OP_BITOR};
    case '^':
        return {OP_BITXOR};
    case TokenShl:
        return {OP_SHL};
    case TokenShr:
        return {OP_SHR};
    case TokenUshr:
        return {OP_USHR};
    case TokenEqual:
        return {OP_EQ};
    case TokenNotEqual:
        return {OP_NE};
    case '<':
        return {OP_LT};
    case TokenLessEqual:
        return {OP_LE};
    case '>':
        return {OP_LT, true};
    case TokenGreaterEqual:
        return {OP_LE, true};
    default:
        return {};
    }
}

// Kinds whose child 0 may be such a node again, to any length of text.
bool isLink(std::int32_t kind) {
    return kind == '.' || kind == '[' || kind == NodeCall || kind == TokenLogicalAnd ||
           kind == TokenLogicalOr || binaryOperator(kind).opcode != OP_NOTIDENTITY;
}

} // namespace

void ESCodeGenerator::checkNativeStack() const {
    if (nativeStackLow()) {
        ctx_.stackTooSmall();
    }
}

void ESCodeGenerator::dropUnless(bool want, const ESNode* node) {
    if (!want) {
        emitter_.emitOp(OP_DROP, node->line);
    }
}

void ESCodeGenerator::compileExpression(const ESNode* node, bool want) {
    if (node == nullptr || (!want && !node->hasEffect)) {
        if (want) {
            emitter_.emitOp(OP_UNDEFINED, 0);
        }
        return;
    }
    checkNativeStack();
    switch (node->kind) {
    case ',':
        compileSequence(node, want);
        return;
    case '!':
        compileNot(node, OP_LOGNOT, want);
        return;
    case '~':
        compileNot(node, OP_BITNOT, want);
        return;
    case TokenVoid:
        compileVoid(node, want);
        return;
    case TokenDelete:
        compileDelete(node, want);
        return;
    case '=':
        compileAssignment(node, want);
        return;
    case TokenIncrement:
    case TokenDecrement:
    case NodePostIncrement:
    case NodePostDecrement:
        compileStep(node, want);
        return;
    default:
        if (node->kind >= TokenAndAssign && node->kind <= TokenModAssign) {
            compileCompound(node, want);
            return;
        }
        compileValue(node);
        dropUnless(want, node);
        return;
    }
}

// The kinds that always leave their value.
void ESCodeGenerator::compileValue(const ESNode* node) {
    switch (node->kind) {
    case TokenNumber:
        return compileNumber(node);
    case TokenString:
        return emitter_.emitAtom(OP_STR, node->atom, node->line);
    case TokenThis:
        return emitter_.emitOp(OP_THIS, node->line);
    case TokenTrue:
        return emitter_.emitOp(OP_TRUE, node->line);
    case TokenFalse:
        return emitter_.emitOp(OP_FALSE, node->line);
    case TokenNull:
        return emitter_.emitOp(OP_NULL, node->line);
    case NodeElided:
        return emitter_.emitOp(OP_UNDEFINED, node->line);
    case TokenIdentifier:
        return emitName(getForms, resolveName(node->atom), node->line);
    case TokenFunction:
        return emitter_.emitOp16(OP_CLOSURE, functionOperand(*node->function), node->line);
    case TokenTypeof:
        return compileUnary(node, OP_TYPEOF);
    case NodeNegate:
        return compileUnary(node, OP_NEG);
    case NodePlus:
        return compileUnary(node, OP_POS);
    case '?':
        return compileConditional(node);
    case NodeArray:
        return compileArray(node);
    case NodeObject:
        return compileObject(node);
    case TokenNew:
        return compileNew(node);
    default:
        return compileChain(node);
    }
}

std::size_t ESCodeGenerator::functionOperand(const ESFunctionScope& function) const {
    return static_cast<std::size_t>(firstFunction_) + static_cast<std::size_t>(function.blockIndex);
}

void ESCodeGenerator::compileSequence(const ESNode* node, bool want) {
    for (const ESNode* operand = node->child[0]; operand != nullptr; operand = operand->next) {
        compileExpression(operand, want && operand->next == nullptr);
    }
}

void ESCodeGenerator::compileNumber(const ESNode* node) {
    constexpr int shortForms = OP_NUM_4 - OP_NUM_0;
    const double value = block().numbers[static_cast<std::size_t>(node->number)];
    for (int i = 0; i <= shortForms; ++i) {
        if (value == i) {
            emitter_.emitOp(static_cast<std::uint8_t>(OP_NUM_0 + i), node->line);
            return;
        }
    }
    emitter_.emitOp16(OP_NUM, static_cast<std::size_t>(node->number), node->line);
}

void ESCodeGenerator::compileUnary(const ESNode* node, ESOpcode opcode) {
    compileExpression(node->child[0], true);
    emitter_.emitOp(opcode, node->line);
}

// Unwanted, the operand runs and the operator, which then would convert for nothing, doesn't.
void ESCodeGenerator::compileNot(const ESNode* node, ESOpcode opcode, bool want) {
    compileUnary(node, want ? opcode : OP_DROP);
}

void ESCodeGenerator::compileVoid(const ESNode* node, bool want) {
    const ESNode* operand = node->child[0];
    if (!operand->hasEffect) {
        if (want) {
            emitter_.emitOp(OP_UNDEFINED, node->line);
        }
        return;
    }
    compileExpression(operand, want);
    if (want) {
        emitter_.emitOp(OP_VOID, node->line);
    }
}

// The jumps behind the branches of a ladder all go to its end, so they share a chain.
void ESCodeGenerator::compileConditional(const ESNode* node) {
    ESPatchChain end = emptyChain;
    for (; node->kind == '?'; node = node->child[2]) {
        ESPatchChain otherwise = emptyChain;
        compileExpression(node->child[0], true);
        emitter_.emitJump(OP_JF, otherwise, node->line);
        compileExpression(node->child[1], true);
        emitter_.emitJump(OP_J, end, node->line);
        emitter_.patchToHere(otherwise);
    }
    compileExpression(node, true);
    emitter_.patchToHere(end);
}

void ESCodeGenerator::compileArray(const ESNode* node) {
    std::size_t count = 0;
    for (const ESNode* element = node->child[0]; element != nullptr; element = element->next) {
        compileExpression(element, true);
        ++count;
    }
    emitter_.emitOp16(OP_MKARRAY, count, node->line);
}

void ESCodeGenerator::compileObject(const ESNode* node) {
    emitter_.emitOp(OP_NEWOBJ, node->line);
    for (const ESNode* entry = node->child[0]; entry != nullptr; entry = entry->next) {
        compileExpression(entry->child[1], true);
        emitter_.emitAtom(OP_INITF, entry->atom, entry->line);
    }
}

void ESCodeGenerator::compileNew(const ESNode* node) {
    const ESNode* operand = node->child[0];
    if (operand->kind != NodeCall) {
        compileExpression(operand, true);
        emitter_.emitOp(OP_NEW, node->line);
        return;
    }
    const std::size_t count = compileArguments(operand);
    compileExpression(operand->child[0], true);
    emitter_.emitOp16(OP_NEWA, count, node->line);
}

std::size_t ESCodeGenerator::compileArguments(const ESNode* call) {
    std::size_t count = 0;
    for (const ESNode* argument = call->child[1]; argument != nullptr; argument = argument->next) {
        compileExpression(argument, true);
        ++count;
    }
    return count;
}

// Down the left side to what the chain begins with, then up again.
void ESCodeGenerator::compileChain(const ESNode* node) {
    const std::size_t base = links_.size();
    while (node != nullptr && isLink(node->kind)) {
        node = openLink(node);
    }
    if (node != nullptr) {
        compileExpression(node, true);
    }
    while (links_.size() > base) {
        const Link link = links_.back();
        links_.pop_back();
        closeLink(link);
    }
}

// What runs in front of the left side; gives the left side, or null when the link is done with already.
const ESNode* ESCodeGenerator::openLink(const ESNode* node) {
    std::size_t count = 0;
    const ESNode* left = node->child[0];
    if (node->kind == NodeCall) {
        count = compileArguments(node);
        if (left->kind == TokenIdentifier) {
            emitCall(resolveName(left->atom), count, node->line);
            return nullptr;
        }
        if (left->kind == '.' || left->kind == '[') {
            left = left->child[0];
        }
    } else if (binaryOperator(node->kind).rightFirst) {
        compileExpression(node->child[1], true);
    }
    links_.push_back({node, count});
    return left;
}

// What runs behind the left side.
void ESCodeGenerator::closeLink(const Link& link) {
    const ESNode* node = link.node;
    switch (node->kind) {
    case '.':
        emitter_.emitAtom(OP_GETF, node->atom, node->line);
        break;
    case '[':
        compileExpression(node->child[1], true);
        emitter_.emitOp(OP_GETX, node->line);
        break;
    case NodeCall: {
        const ESNode* callee = node->child[0];
        if (callee->kind == '.') {
            emitter_.emitOp16x2(OP_CALLF, static_cast<std::size_t>(compiledIndex(callee->atom)), link.count,
                                node->line);
        } else if (callee->kind == '[') {
            compileExpression(callee->child[1], true);
            emitter_.emitOp16(OP_CALLX, link.count, node->line);
        } else {
            emitter_.emitOp16(OP_CALLV, link.count, node->line);
        }
        break;
    }
    case TokenLogicalAnd:
    case TokenLogicalOr: {
        ESPatchChain end = emptyChain;
        emitter_.emitJump(node->kind == TokenLogicalAnd ? OP_LOGAND : OP_LOGOR, end, node->line);
        compileExpression(node->child[1], true);
        emitter_.patchToHere(end);
        break;
    }
    default: {
        const BinaryOperator binary = binaryOperator(node->kind);
        if (!binary.rightFirst) {
            compileExpression(node->child[1], true);
        }
        emitter_.emitOp(binary.opcode, node->line);
        break;
    }
    }
}

// Tests and jumps when the condition equals `sense`. line: for a condition that isn't there.
void ESCodeGenerator::compileCondition(const ESNode* node, bool sense, ESPatchChain& chain,
                                       std::int32_t line) {
    if (node == nullptr) {
        emitter_.emitJump(OP_J, chain, line);
        return;
    }
    if (sense && node->kind == '<') {
        compileExpression(node->child[0], true);
        compileExpression(node->child[1], true);
        emitter_.emitJump(OP_JLT, chain, node->line);
        return;
    }
    compileExpression(node, true);
    emitter_.emitJump(sense ? OP_JT : OP_JF, chain, node->line);
}

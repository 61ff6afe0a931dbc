// Expressions that write: assignments, increments and `delete`.
#include "compiler/code_generator.h"

#include "compiler/name_forms.h"
#include "runtime/context.h"

namespace {

constexpr ESNameForms incrementForms = {OP_INCG, OP_INCA, OP_INCM, OP_INCL, OP_INCLM, OP_PREINCX};
constexpr ESNameForms decrementForms = {OP_DECG, OP_DECA, OP_DECAM, OP_DECL, OP_DECLM, OP_PREDECX};

// By kind, from TokenAndAssign on. The X form is the next opcode.
constexpr ESOpcode compoundOpcodes[] = {OP_BITAND, OP_BITOR, OP_BITXOR, OP_SHL, OP_SHR, OP_USHR,
                                        OP_ADD,    OP_SUB,   OP_MUL,    OP_DIV, OP_MOD};
static_assert(std::size(compoundOpcodes) == TokenModAssign - TokenAndAssign + 1);

bool isMember(const ESNode* node) { return node->kind == '.' || node->kind == '['; }

bool isIncrement(std::int32_t kind) { return kind == TokenIncrement || kind == NodePostIncrement; }
bool isPostfix(std::int32_t kind) { return kind == NodePostIncrement || kind == NodePostDecrement; }

// Both families run PREINC POSTINC PREDEC POSTDEC.
std::uint8_t stepOpcode(ESOpcode first, std::int32_t kind) {
    return static_cast<std::uint8_t>(first + (isPostfix(kind) ? 1 : 0) + (isIncrement(kind) ? 0 : 2));
}

} // namespace

void ESCodeGenerator::badTarget() const {
    lexer_.raise(QStringLiteral("only left-hand-side expressions allowed"));
}

void ESCodeGenerator::compileAssignment(const ESNode* node, bool want) {
    compileExpression(node->child[1], true);
    if (want) {
        emitter_.emitOp(OP_DUP, node->line);
    }
    compileStore(node->child[0]);
}

// Writes the top of the stack, which is consumed.
void ESCodeGenerator::compileStore(const ESNode* target) {
    switch (target->kind) {
    case TokenIdentifier:
        emitName(putForms, resolveName(target->atom), target->line);
        break;
    case '.':
        compileExpression(target->child[0], true);
        emitter_.emitAtom(OP_PUTF, target->atom, target->line);
        break;
    case '[':
        compileExpression(target->child[0], true);
        compileExpression(target->child[1], true);
        emitter_.emitOp(OP_PUTX, target->line);
        break;
    default:
        badTarget();
    }
}

void ESCodeGenerator::compileObjectAndKey(const ESNode* member) {
    compileExpression(member->child[0], true);
    if (member->kind == '.') {
        emitter_.emitAtom(OP_STR, member->atom, member->line);
    } else {
        compileExpression(member->child[1], true);
    }
}

// A variable is read before the value runs; a member's object and key come behind the value.
void ESCodeGenerator::compileCompound(const ESNode* node, bool want) {
    const ESNode* target = node->child[0];
    const ESOpcode opcode = compoundOpcodes[node->kind - TokenAndAssign];
    if (target->kind == TokenIdentifier) {
        const ESNameRef ref = resolveName(target->atom);
        emitName(getForms, ref, target->line);
        compileExpression(node->child[1], true);
        emitter_.emitOp(opcode, node->line);
        if (want) {
            emitter_.emitOp(OP_DUP, node->line);
        }
        emitName(putForms, ref, target->line);
        return;
    }
    if (!isMember(target)) {
        badTarget();
    }
    compileExpression(node->child[1], true);
    compileObjectAndKey(target);
    emitter_.emitOp(static_cast<std::uint8_t>(opcode + 1), node->line);
    dropUnless(want, node);
}

void ESCodeGenerator::compileStep(const ESNode* node, bool want) {
    const ESNode* operand = node->child[0];
    if (operand->kind == TokenIdentifier) {
        compileStepOfName(node, want);
        return;
    }
    if (!isMember(operand)) {
        badTarget();
    }
    compileObjectAndKey(operand);
    emitter_.emitOp(stepOpcode(OP_PREINCE, node->kind), node->line);
    dropUnless(want, node);
}

// The postfix form delivers what the variable held, unconverted.
void ESCodeGenerator::compileStepOfName(const ESNode* node, bool want) {
    const ESNode* operand = node->child[0];
    const ESNameRef ref = resolveName(operand->atom);
    if (ref.kind == ESNameRef::Dynamic) {
        emitter_.emitAtom(OP_STR, ref.atom, operand->line);
        emitter_.emitOp(stepOpcode(OP_PREINCX, node->kind), node->line);
        dropUnless(want, node);
        return;
    }
    const bool postfix = isPostfix(node->kind);
    if (want && postfix) {
        emitName(getForms, ref, operand->line);
    }
    emitName(isIncrement(node->kind) ? incrementForms : decrementForms, ref, node->line);
    if (want && !postfix) {
        emitName(getForms, ref, operand->line);
    }
}

// A variable stays what it is; only what is found by name can go.
void ESCodeGenerator::compileDelete(const ESNode* node, bool want) {
    const ESNode* operand = node->child[0];
    if (operand->kind == TokenIdentifier) {
        const ESNameRef ref = resolveName(operand->atom);
        if (ref.kind == ESNameRef::Dynamic) {
            emitter_.emitAtom(OP_DELETEW, ref.atom, node->line);
            dropUnless(want, node);
        } else if (want) {
            emitter_.emitOp(OP_FALSE, node->line);
        }
        return;
    }
    if (!isMember(operand)) {
        badTarget();
    }
    compileObjectAndKey(operand);
    emitter_.emitOp(OP_DELETEX, node->line);
    dropUnless(want, node);
}

// Statements, and the two passes over a body.
#include "compiler/code_generator.h"

#include "machine/listing.h"
#include "runtime/context.h"

// What a body finds out about itself (that its variables must outlive the stack) comes too late for the code
// in front of it, so the body is then compiled anew.
void ESCodeGenerator::compileFunction(ESFunctionScope& scope, bool twice, std::int32_t line) {
    scope_ = &scope;
    emitter_.setBlock(scope.block.get());
    firstPass_ = true;
    compileBody(scope.body, line);
    firstPass_ = false;
    if (twice || block().needsActivation || block().enclosesEval) {
        block().clearCode();
        compileBody(scope.body, line);
    }
    finishBlock();
}

void ESCodeGenerator::compileBody(ESNode* body, std::int32_t line) {
    compileStatement(body);
    emitter_.emitOp(OP_RETU, line);
}

void ESCodeGenerator::compileProgram(ESFunctionScope& scope, ESNode* root) {
    scope_ = &scope;
    emitter_.setBlock(scope.block.get());
    firstPass_ = true;
    compileProgramValue(root);
    emitter_.emitOp(OP_RET, root->line);
    finishBlock();
}

void ESCodeGenerator::finishBlock() {
    block().finish();
    if ((debugFlags & debugListBlocks) != 0) {
        listBlock(ctx_.globalObject, block());
    }
}

// The value is that of the last statement, also the last one of a block in that place; what is no expression
// has none.
void ESCodeGenerator::compileProgramValue(ESNode* node) {
    while (node != nullptr && node->kind == ';') {
        compileStatements(node->child[0]);
        ESNode* statement = node->child[1];
        while (statement != nullptr && (statement->next != nullptr || node->endsEmpty)) {
            compileStatement(statement);
            statement = statement->next;
        }
        node = statement;
    }
    if (node != nullptr && !isStatementKind(node->kind)) {
        compileExpression(node, true);
        return;
    }
    compileStatement(node);
    emitter_.emitOp(OP_UNDEFINED, node == nullptr ? 0 : node->line);
}

void ESCodeGenerator::compileStatements(ESNode* first) {
    for (ESNode* statement = first; statement != nullptr; statement = statement->next) {
        compileStatement(statement);
    }
}

void ESCodeGenerator::compileStatement(ESNode* node) {
    if (node == nullptr) {
        return;
    }
    if (!isStatementKind(node->kind)) { // nothing in it can leave it or look for it
        compileExpression(node, false);
        return;
    }
    checkNativeStack();
    node->breakChain = emptyChain; // a body may be compiled twice
    node->continueChain = emptyChain;
    statements_.push_back(node);
    compileStatementKind(node);
    emitter_.patchToHere(node->breakChain);
    statements_.pop_back();
}

void ESCodeGenerator::compileStatementKind(ESNode* node) {
    switch (node->kind) {
    case ';':
        compileStatements(node->child[0]);
        compileStatements(node->child[1]);
        break;
    case TokenWhile:
        compileWhile(node);
        break;
    case TokenFor:
        compileFor(node);
        break;
    case NodeForIn:
        compileForIn(node);
        break;
    case TokenDo:
        compileDo(node);
        break;
    case TokenBreak:
        compileBreak(node);
        break;
    case TokenContinue:
        compileContinue(node);
        break;
    case TokenWith:
        compileWith(node);
        break;
    case TokenReturn:
        compileReturn(node);
        break;
    case TokenIf:
        compileIf(node);
        break;
    case TokenSwitch:
        compileSwitch(node);
        break;
    default: // a label
        compileStatement(node->child[0]);
        break;
    }
}

// The jumps behind the branches of a ladder all go to its end, so they share a chain. The inner ifs aren't
// among the statements being compiled, since nothing can name them.
void ESCodeGenerator::compileIf(const ESNode* node) {
    ESPatchChain end = emptyChain;
    for (;;) {
        ESPatchChain otherwise = emptyChain;
        compileExpression(node->child[0], true);
        emitter_.emitJump(OP_JF, otherwise, node->line);
        compileStatement(node->child[1]);
        ESNode* const alternative = node->child[2];
        if (alternative == nullptr) {
            emitter_.patchToHere(otherwise);
            break;
        }
        emitter_.emitJump(OP_J, end, node->line);
        emitter_.patchToHere(otherwise);
        if (alternative->kind != TokenIf) {
            compileStatement(alternative);
            break;
        }
        node = alternative;
    }
    emitter_.patchToHere(end);
}

void ESCodeGenerator::compileWhile(ESNode* node) {
    const std::int32_t top = emitter_.length();
    compileCondition(node->child[0], false, node->breakChain, node->line);
    compileStatement(node->child[1]);
    emitter_.emitJumpTo(OP_J, top, node->line);
    emitter_.patch(node->continueChain, top);
}

void ESCodeGenerator::compileDo(ESNode* node) {
    const std::int32_t top = emitter_.length();
    compileStatement(node->child[0]);
    const std::int32_t test = emitter_.length();
    compileExpression(node->child[1], true);
    emitter_.emitJumpTo(OP_JT, top, node->line);
    emitter_.patch(node->continueChain, test);
}

// The test stands at the end, so that each round runs one jump.
void ESCodeGenerator::compileFor(ESNode* node) {
    ESPatchChain toTest = emptyChain;
    ESPatchChain toBody = emptyChain;
    compileExpression(node->child[0], false);
    emitter_.emitJump(OP_J, toTest, node->line);
    const std::int32_t body = emitter_.length();
    compileStatement(node->child[3]);
    const std::int32_t update = emitter_.length();
    compileExpression(node->child[2], false);
    emitter_.patchToHere(toTest);
    compileCondition(node->child[1], true, toBody, node->line);
    emitter_.patch(toBody, body);
    emitter_.patch(node->continueChain, update);
}

// The enumerator lies in a variable of its own and not on the stack, so that a jump out leaves nothing
// behind.
void ESCodeGenerator::compileForIn(ESNode* node) {
    ESNode enumerator(TokenIdentifier, node->line);
    enumerator.atom = uniqueName();
    declareName(ctx_, *scope_, enumerator.atom, DontEnum | DontDelete, false);
    compileExpression(node->child[1], true);
    emitter_.emitOp(OP_ENUM, node->line);
    compileStore(&enumerator);
    ESPatchChain toNext = emptyChain;
    emitter_.emitJump(OP_J, toNext, node->line);
    const std::int32_t body = emitter_.length();
    compileStore(node->child[0]); // of the name that NEXT delivers
    compileStatement(node->child[3]);
    emitter_.patchToHere(toNext);
    emitter_.patchToHere(node->continueChain);
    compileExpression(&enumerator, true);
    emitter_.emitJumpTo(OP_NEXT, body, node->line);
}

void ESCodeGenerator::compileWith(const ESNode* node) {
    compileExpression(node->child[0], true);
    ++withDepth_;
    emitter_.emitOp(OP_WITH, node->line);
    compileStatement(node->child[1]);
    emitter_.emitOp(OP_ENDWITH, node->line);
    --withDepth_;
}

void ESCodeGenerator::compileReturn(const ESNode* node) {
    if (node->child[0] == nullptr) {
        emitter_.emitOp(OP_RETU, node->line);
        return;
    }
    compileExpression(node->child[0], true);
    emitter_.emitOp(OP_RET, node->line);
}

// The discriminant is on the stack while the clauses are tested, and gone in their bodies. A clause's
// continueChain holds the jumps to its body.
void ESCodeGenerator::compileSwitch(const ESNode* node) {
    compileExpression(node->child[0], true);
    for (ESNode* clause = node->child[2]; clause != nullptr; clause = clause->next) {
        clause->continueChain = emptyChain;
        if (clause->kind == TokenCase) {
            emitter_.emitOp(OP_DUP, clause->line);
            compileExpression(clause->child[1], true);
            emitter_.emitOp(OP_IDENTITY, clause->line);
            emitter_.emitJump(OP_JT_DROP, clause->continueChain, clause->line);
        }
    }
    emitter_.emitOp(OP_DROP, node->line);
    ESPatchChain noClause = emptyChain;
    ESNode* const defaultClause = node->child[1];
    emitter_.emitJump(OP_J, defaultClause != nullptr ? defaultClause->continueChain : noClause, node->line);
    for (ESNode* clause = node->child[2]; clause != nullptr; clause = clause->next) {
        emitter_.patchToHere(clause->continueChain);
        compileStatements(clause->child[2]);
    }
    emitter_.patchToHere(noClause);
}

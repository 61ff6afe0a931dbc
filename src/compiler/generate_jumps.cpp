// `break` and `continue`: which of the statements around them they mean, and the way there.
#include "compiler/code_generator.h"

#include <algorithm>

namespace {

constexpr std::size_t notFound = static_cast<std::size_t>(-1);

bool isLoop(std::int32_t kind) {
    return kind == TokenFor || kind == NodeForIn || kind == TokenWhile || kind == TokenDo;
}

template <typename Wanted>
std::size_t innermost(const std::vector<ESNode*>& statements, Wanted wanted) {
    std::size_t i = statements.size();
    while (i-- > 0) {
        if (wanted(statements[i]->kind)) {
            return i;
        }
    }
    return notFound;
}

} // namespace

// The statement that the label marks. A label on the jump itself marks nothing; the search goes on outwards.
std::size_t ESCodeGenerator::findLabelled(ESAtom label) const {
    const std::size_t innermostStatement = statements_.size() - 1;
    for (std::size_t i = innermostStatement; i-- > 0;) {
        if (statements_[i]->kind != NodeLabel || statements_[i]->atom != label) {
            continue;
        }
        std::size_t marked = i + 1;
        while (statements_[marked]->kind == NodeLabel) {
            ++marked;
        }
        if (marked != innermostStatement) {
            return marked;
        }
    }
    lexer_.raise(QStringLiteral("can't find label ") + label->toString());
}

// Each `with` between here and the end of the target has a scope of its own to give up.
void ESCodeGenerator::leaveWiths(std::size_t target, std::int32_t line) {
    const auto first = statements_.begin() + static_cast<std::ptrdiff_t>(target);
    const auto count =
        std::count_if(first, statements_.end(), [](const ESNode* node) { return node->kind == TokenWith; });
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        emitter_.emitOp(OP_ENDWITH, line);
    }
}

void ESCodeGenerator::compileBreak(const ESNode* node) {
    const std::size_t target =
        node->atom != nullptr
            ? findLabelled(node->atom)
            : innermost(statements_, [](std::int32_t kind) { return isLoop(kind) || kind == TokenSwitch; });
    if (target == notFound) {
        lexer_.raise(QStringLiteral("'break' not in a 'for' or 'while' loop"));
    }
    leaveWiths(target, node->line);
    emitter_.emitJump(OP_J, statements_[target]->breakChain, node->line);
}

// Without a loop around it there is nothing to continue, and nothing happens.
void ESCodeGenerator::compileContinue(const ESNode* node) {
    const std::size_t target =
        node->atom != nullptr ? findLabelled(node->atom) : innermost(statements_, isLoop);
    if (target == notFound) {
        return;
    }
    if (!isLoop(statements_[target]->kind)) {
        lexer_.raise(QStringLiteral("labeled 'continue' doesn't mark a loop"));
    }
    leaveWiths(target, node->line);
    emitter_.emitJump(OP_J, statements_[target]->continueChain, node->line);
}

// What both halves of the grammar use.
#include "compiler/parser.h"

#include "runtime/context.h"
#include "system/native_stack.h"

namespace {

// Levels of brackets, blocks, functions and operators inside each other.
constexpr std::int32_t deepestNesting = 1000;

} // namespace

ESParser::Level::Level(ESParser& parser) : parser_(parser) {
    if (++parser_.nesting_ > deepestNesting) {
        parser_.lexer_.raise(QStringLiteral("nesting too deep"));
    }
    // Not the text's fault: as its error, eval would drop it and go on with the wrong result.
    if (nativeStackLow()) {
        parser_.ctx_.stackTooSmall();
    }
}

ESFunctionScope* ESParser::setScope(ESFunctionScope* scope) {
    ESFunctionScope* const previous = scope_;
    scope_ = scope;
    lexer_.setScope(scope);
    return previous;
}

ESNode* ESParser::make(std::int32_t kind, ESNode* first, ESNode* second, ESNode* third) {
    ESNode* node = tree_.make(kind, lexer_.line());
    node->setChild(0, first);
    node->setChild(1, second);
    node->setChild(2, third);
    return node;
}

ESNode* ESParser::makeList(std::int32_t kind, const ESNodeList& list) {
    ESNode* node = make(kind);
    list.hangBelow(node, 0);
    return node;
}

ESNode* ESParser::makeNamed(std::int32_t kind, ESAtom atom, ESNode* first) {
    ESNode* node = make(kind, first);
    node->atom = atom;
    return node;
}

bool ESParser::takeIf(std::int32_t kind) {
    if (peek() != kind) {
        return false;
    }
    next();
    return true;
}

ESAtom ESParser::expectName() {
    lexer_.expect(TokenIdentifier);
    return lexer_.atom();
}

void ESParser::unexpected(const QString& before, std::int32_t found) {
    lexer_.raise(before + tokenName(found));
}

ESNode* ESParser::finishLadder(std::int32_t kind, std::size_t base, ESNode* last) {
    while (ladder_.size() > base) {
        const Rung rung = ladder_.back();
        ladder_.pop_back();
        last = make(kind, rung.condition, rung.then, last);
    }
    return last;
}

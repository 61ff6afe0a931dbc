#include "compiler/syntax_tree.h"

#include <algorithm>
#include <type_traits>

static_assert(std::is_trivially_destructible_v<ESNode>, "chunks are freed without looking at their nodes");

namespace {

bool kindHasEffect(std::int32_t kind) {
    switch (kind) {
    case '=':
    case TokenIncrement:
    case TokenDecrement:
    case NodePostIncrement:
    case NodePostDecrement:
    case TokenDelete:
    case NodeCall:
        return true;
    default:
        return kind >= TokenAndAssign && kind <= TokenModAssign;
    }
}

} // namespace

ESNode::ESNode(std::int32_t nodeKind, std::int32_t nodeLine)
    : kind(nodeKind), line(nodeLine), hasEffect(kindHasEffect(nodeKind)) {}

bool isStatementKind(std::int32_t kind) {
    switch (kind) {
    case ';':
    case TokenWhile:
    case TokenFor:
    case TokenBreak:
    case TokenContinue:
    case TokenWith:
    case TokenReturn:
    case TokenIf:
    case TokenSwitch:
    case TokenDo:
    case NodeForIn:
    case NodeLabel:
        return true;
    default:
        return false;
    }
}

void ESTree::addChunk() {
    chunks_.push_back(std::make_unique_for_overwrite<std::byte[]>(chunkNodes_ * sizeof(ESNode)));
    next_ = reinterpret_cast<ESNode*>(chunks_.back().get());
    end_ = next_ + chunkNodes_;
    chunkNodes_ = std::min(chunkNodes_ * 2, mostNodes);
}

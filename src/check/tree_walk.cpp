#include "check/tree_walk.h"

#include <vector>

namespace {

bool isLoop(std::int32_t kind) {
    return kind == TokenFor || kind == NodeForIn || kind == TokenWhile || kind == TokenDo;
}

Visit::Role roleOf(const ESNode* parent, int index) {
    bool statement = false;
    switch (parent->kind) {
    case ';':
        return index == 0 ? Visit::Role::Declaration : Visit::Role::Statement;
    case TokenIf:
        statement = index > 0;
        break;
    case TokenFor:
    case NodeForIn:
        statement = index == 3;
        break;
    case TokenWhile:
    case TokenWith:
        statement = index == 1;
        break;
    case TokenDo:
    case NodeLabel:
        statement = index == 0;
        break;
    case TokenCase:
    case TokenDefault:
        statement = index == 2;
        break;
    default:
        break;
    }
    return statement ? Visit::Role::Statement : Visit::Role::Expression;
}

Visit childOf(const Visit& visit, int index) {
    const ESNode* const node = visit.node;
    Visit child = visit;
    child.node = node->child[index];
    child.parent = node;
    child.role = roleOf(node, index);
    if (child.role == Visit::Role::Statement) {
        child.inWith = visit.inWith || node->kind == TokenWith;
        child.inLoop = visit.inLoop || isLoop(node->kind);
        if (node->kind == NodeForIn) {
            child.forIn = node;
        }
    }
    child.inSwitch = visit.inSwitch || (node->kind == TokenSwitch && index == 2);
    return child;
}

Visit bodyOf(const Visit& visit) {
    Visit body = {visit.node->function->body, nullptr, visit.node->function};
    body.inWith = visit.inWith;
    return body;
}

} // namespace

void walkTree(const ESNode* root, const ESFunctionScope& program,
              const std::function<void(const Visit&)>& see) {
    std::vector<Visit> open = {{root, nullptr, &program}};
    while (!open.empty()) {
        const Visit visit = open.back();
        open.pop_back();
        see(visit);
        if (visit.node->next != nullptr) {
            open.push_back(visit);
            open.back().node = visit.node->next;
        }
        if (visit.node->kind == TokenFunction) {
            open.push_back(bodyOf(visit));
            continue;
        }
        for (int index = 3; index >= 0; --index) {
            // The default clause of a switch is among its clauses as well.
            const bool again = visit.node->kind == TokenSwitch && index == 1;
            if (visit.node->child[index] != nullptr && !again) {
                open.push_back(childOf(visit, index));
            }
        }
    }
}

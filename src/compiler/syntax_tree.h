// ESNode, the one record that syntax trees are made of, and ESTree, which owns the nodes of one compilation.
// A node's kind is a token kind (token.h); lists are chained through `next`. The parser builds, the code
// generator walks; nothing here recurses.
#pragma once

#include "compiler/token.h"
#include "runtime/value.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

class ESFunctionScope;

// Head of a patch chain without jumps (emitter.h).
constexpr std::int32_t emptyChain = 65535;

// Children by kind, from 0; those not named are null. (List) is the first of a list, in source order.
//   ';'            statement list: 0 functions (List), 1 other statements (List)
//   while          0 condition, 1 body
//   for            0 init, 1 condition, 2 update, 3 body; the first three may be null
//   for in         0 target, 1 object, 3 body
//   do             0 body (a statement list), 1 condition
//   break continue atom: the label or null
//   with           0 object, 1 body
//   return         0 value or null
//   if             0 condition, 1 then, 2 else or null
//   switch         0 discriminant, 1 the default clause or null, 2 clauses (List)
//   case default   1 test, 2 statements (List)
//   label          atom, 0 statement
//   function       function: its scope, whose body is the tree of its text
//   identifier string atom
//   number         number: position in the numbers of the block
//   array          0 elements (List)
//   object         0 entries (List), each a ':' with atom and 1 the value
//   ','            0 operands (List): a comma expression or a `var` with several names
//   '.'            0 object, atom
//   '['            0 object, 1 key
//   call           0 callee, 1 arguments (List)
//   new            0 operand, a call where arguments stand directly under it
//   unary          0 operand
//   binary = &= …  0 left or target, 1 right or value
//   '?'            0 condition, 1 then, 2 else
struct ESNode {
    ESNode(std::int32_t nodeKind, std::int32_t nodeLine);

    std::int32_t kind;
    std::int32_t line;                       // the lexer's when the node was built; 0 for functions
    std::int32_t breakChain = emptyChain;    // jumps to the statement's exit, while it is compiled
    std::int32_t continueChain = emptyChain; // to its next round; in a clause, to its beginning
    bool hasEffect;                          // something in the tree below assigns, steps, deletes or calls
    bool endsEmpty = false;                  // of a statement list: its last statement is none
    bool inParentheses = false;              // of an expression
    union {
        ESAtom atom = nullptr;
        std::int32_t number;
        ESFunctionScope* function;
    };
    ESNode* child[4] = {};
    ESNode* next = nullptr; // in a list

    void setChild(int index, ESNode* node) {
        child[index] = node;
        hasEffect = hasEffect || (node != nullptr && node->hasEffect);
    }
};

// True for statements proper; an expression that stands as a statement is its own tree.
bool isStatementKind(std::int32_t kind);

// Collects a list that will hang below a node.
class ESNodeList {
public:
    void append(ESNode* node) {
        (last_ == nullptr ? first_ : last_->next) = node;
        last_ = node;
        hasEffect_ = hasEffect_ || node->hasEffect;
    }
    void hangBelow(ESNode* owner, int index) const {
        owner->child[index] = first_;
        owner->hasEffect = owner->hasEffect || hasEffect_;
    }

private:
    ESNode* first_ = nullptr;
    ESNode* last_ = nullptr;
    bool hasEffect_ = false;
};

// Frees all its nodes at once, also those that no tree came to hold.
class ESTree {
public:
    ESTree() = default;
    ESTree(const ESTree&) = delete;
    ESTree& operator=(const ESTree&) = delete;
    ~ESTree() = default;

    ESNode* make(std::int32_t kind, std::int32_t line) {
        if (next_ == end_) {
            addChunk();
        }
        return new (next_++) ESNode(kind, line);
    }

private:
    void addChunk();

    static constexpr std::size_t firstNodes = 16;
    static constexpr std::size_t mostNodes = 4096;

    ESNode* next_ = nullptr;
    ESNode* end_ = nullptr;
    std::size_t chunkNodes_ = firstNodes;
    std::vector<std::unique_ptr<std::byte[]>> chunks_;
};

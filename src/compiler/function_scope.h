// ESFunctionScope, what a compilation knows of one function (or of the program): its code block, and indexes
// over the block's variables and numbers, so that a look-up does not cost more in a large text. The parser
// fills scopes, the code generator resolves names in them.
#pragma once

#include "machine/code_block.h"
#include "runtime/atom.h"

#include <memory>
#include <unordered_map>

class ESContext;
struct ESNode;

class ESFunctionScope {
public:
    // enclosing: the function around this one, null at program level.
    ESFunctionScope(ESFunctionScope* enclosing, bool isProgram);

    ESFunctionScope* const enclosing;
    const bool isProgram;
    std::unique_ptr<ESCodeBlock> block;
    ESAtom name = nullptr;       // of a function that has one
    ESNode* body = nullptr;      // the statement list, once it is parsed
    std::int32_t blockIndex = 0; // among the functions of this compilation, in order of their beginnings

    // Enters a literal and gives its position in the block's numbers: that of an equal one if there is one.
    std::int32_t addNumber(double value);
    // The position of a variable, -1 when there is none of this name.
    std::int32_t find(ESAtom atom) const;
    // Enters a name. With `rename` an earlier variable of the name gets a name of its own and the new one
    // takes its place; without, nothing happens when there is one. A repeated name counts in localCount.
    void declareVariable(ESAtom atom, std::uint32_t attributes, bool rename);

private:
    struct AtomHash {
        std::size_t operator()(ESAtom atom) const { return atom->hash; }
    };
    void append(ESAtom atom, std::uint32_t attributes);
    void renameAll(ESAtom atom);
    void index(ESAtom atom, std::int32_t position);

    // Empty while a scan is as fast.
    std::unordered_map<ESAtom, std::int32_t, AtomHash> positions_;
    std::unordered_map<double, std::int32_t> numberIndex_;
    bool namedTwice_ = false; // some name has two slots: a script wrote one that uniqueName() made
};

// A fresh name that no script is likely to write: "CG%1" with a counter of the process.
ESAtom uniqueName();

// Declares a name where `scope` is current: a variable of it, and at program level a global too.
void declareName(ESContext& ctx, ESFunctionScope& scope, ESAtom atom, std::uint32_t attributes, bool rename);

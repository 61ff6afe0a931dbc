// walkTree, one visit for each node of a script, functions included, with what is known about its place. A
// loop over a stack of its own: long chains make trees far deeper than the native stack.
#pragma once

#include "compiler/function_scope.h"
#include "compiler/syntax_tree.h"

#include <functional>

struct Visit {
    enum class Role { Expression, Statement, Declaration };

    const ESNode* node;
    const ESNode* parent;            // null for the text and the body of a function
    const ESFunctionScope* function; // around it; the program's own at its top
    const ESNode* forIn = nullptr;   // the innermost loop of this kind whose body it is in
    Role role = Role::Statement;     // how it stands there; a declaration assigns a function to its name
    bool inWith = false;
    bool inLoop = false;
    bool inSwitch = false;
};

// In order of the text, but that the functions of a block come before its statements. What `try` and `throw`
// drop is in no tree.
void walkTree(const ESNode* root, const ESFunctionScope& program,
              const std::function<void(const Visit&)>& see);

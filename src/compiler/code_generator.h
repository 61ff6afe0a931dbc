// ESCodeGenerator, which turns syntax trees into code: a plain walk, without an intermediate form. Names are
// resolved in generate_names.cpp, expressions in generate_expressions.cpp and generate_assignments.cpp,
// statements in generate_statements.cpp and generate_jumps.cpp; emitter.h writes the bytes.
//
// House rules:
// 1. An expression compiled with `want` leaves one value on the stack, without it none; a statement none.
// 2. Left-nested chains (a + b + c, a.b().c) and lists are walked in loops: their length costs no depth.
// 3. The order in which operands are compiled is the order in which they run. Assignments run the value
//    before the target's object and key, calls the arguments before the callee, and > and >= their right
//    operand first.
#pragma once

#include "compiler/emitter.h"
#include "compiler/function_scope.h"
#include "compiler/lexer.h"
#include "compiler/syntax_tree.h"

#include <vector>

class ESContext;

// Where a name was found.
struct ESNameRef {
    enum Kind { Global, Argument, Local, Dynamic };
    Kind kind;
    std::int32_t index; // position in the global object's properties, or of the argument or local
    ESAtom atom;        // what a dynamic name is searched by when it runs
};

// One operation on a name, by where the name was found. `InMemory`: the function has an activation.
struct ESNameForms {
    ESOpcode global, argument, argumentInMemory, local, localInMemory, dynamic;
};

class ESCodeGenerator {
public:
    // Errors carry the lexer's line. firstFunction: index that the table of code blocks will give to the
    // first function of this compilation.
    ESCodeGenerator(ESContext& ctx, const ESLexer& lexer) : ctx_(ctx), lexer_(lexer) {}
    void setFirstFunction(std::int32_t index) { firstFunction_ = index; }

    // Fills the block of a function, the functions inside it being done: twice where what the body or they
    // found out changes how its variables are reached, or where `twice` says so. line: of the closing RETU.
    void compileFunction(ESFunctionScope& scope, bool twice, std::int32_t line);
    // Fills the block of a program, which leaves the value of its last statement.
    void compileProgram(ESFunctionScope& scope, ESNode* root);

private:
    // generate_names.cpp
    ESNameRef resolveName(ESAtom atom);
    void declareArguments();
    void markActivation();
    std::uint8_t opcodeFor(const ESNameForms& forms, const ESNameRef& ref) const;
    void emitName(const ESNameForms& forms, const ESNameRef& ref, std::int32_t line);
    void emitCall(const ESNameRef& ref, std::size_t count, std::int32_t line);

    // generate_expressions.cpp
    void compileExpression(const ESNode* node, bool want);
    void compileValue(const ESNode* node);
    std::size_t functionOperand(const ESFunctionScope& function) const;
    void compileSequence(const ESNode* node, bool want);
    void compileConditional(const ESNode* node);
    void compileUnary(const ESNode* node, ESOpcode opcode);
    void compileNot(const ESNode* node, ESOpcode opcode, bool want);
    void compileVoid(const ESNode* node, bool want);
    void compileNumber(const ESNode* node);
    void compileArray(const ESNode* node);
    void compileObject(const ESNode* node);
    void compileNew(const ESNode* node);
    std::size_t compileArguments(const ESNode* call);
    void compileChain(const ESNode* node);
    struct Link {
        const ESNode* node;
        std::size_t count; // arguments of a call
    };
    const ESNode* openLink(const ESNode* node);
    void closeLink(const Link& link);
    void dropUnless(bool want, const ESNode* node);
    void compileCondition(const ESNode* node, bool sense, ESPatchChain& chain, std::int32_t line);

    // generate_assignments.cpp
    void compileAssignment(const ESNode* node, bool want);
    void compileStore(const ESNode* target);
    void compileCompound(const ESNode* node, bool want);
    void compileStep(const ESNode* node, bool want);
    void compileStepOfName(const ESNode* node, bool want);
    void compileDelete(const ESNode* node, bool want);
    void compileObjectAndKey(const ESNode* member);
    [[noreturn]] void badTarget() const;

    // generate_statements.cpp
    void compileStatement(ESNode* node);
    void compileStatementKind(ESNode* node);
    void compileStatements(ESNode* first);
    void compileProgramValue(ESNode* root);
    void compileIf(const ESNode* node);
    void compileWhile(ESNode* node);
    void compileDo(ESNode* node);
    void compileFor(ESNode* node);
    void compileForIn(ESNode* node);
    void compileWith(const ESNode* node);
    void compileReturn(const ESNode* node);
    void compileSwitch(const ESNode* node);

    // generate_jumps.cpp
    void compileBreak(const ESNode* node);
    void compileContinue(const ESNode* node);
    std::size_t findLabelled(ESAtom label) const;
    void leaveWiths(std::size_t target, std::int32_t line);

    void checkNativeStack() const;
    void compileBody(ESNode* body, std::int32_t line);
    void finishBlock();
    ESCodeBlock& block() const { return emitter_.block(); }

    ESContext& ctx_;
    const ESLexer& lexer_;
    ESEmitter emitter_;
    ESFunctionScope* scope_ = nullptr;
    std::int32_t firstFunction_ = 0;
    std::int32_t withDepth_ = 0;
    bool firstPass_ = true;
    std::vector<ESNode*> statements_; // those being compiled, the innermost last
    std::vector<Link> links_;         // of the chains being compiled
};

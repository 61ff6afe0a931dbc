#include "compiler/compilation.h"

#include "machine/operators.h"
#include "runtime/context.h"

#include <utility>

ESCompilation::ESCompilation(ESContext& ctx)
    : ctx_(ctx), lexer_(ctx), parser_(ctx, lexer_, tree_), generator_(ctx, lexer_) {}

std::unique_ptr<ESCodeBlock> ESCompilation::compileProgram(const QString& text) {
    ESFunctionScope program(nullptr, true);
    parser_.setScope(&program);
    lexer_.setSource(text);
    ESNode* const root = parser_.parseStatementList(TokenEnd);
    compileInnerFunctions(root->line);
    generator_.compileProgram(program, root);
    keepFunctions();
    return std::move(program.block);
}

// Two texts on one lexer, each from line 1.
std::unique_ptr<ESCodeBlock> ESCompilation::compileFunction(const QString& parameters, const QString& body) {
    ESFunctionScope function(nullptr, false);
    function.block->needsActivation = ctx_.alwaysActivation;
    parser_.setScope(&function);
    lexer_.setSource(parameters);
    parser_.parseParameterText();
    lexer_.setSource(body);
    parser_.setFunctionDepth(1);
    function.body = parser_.parseStatementList(TokenEnd);
    parser_.setFunctionDepth(0);
    compileInnerFunctions(function.body->line);
    generator_.compileFunction(function, true, function.body->line);
    keepFunctions();
    return std::move(function.block);
}

// Inner ones first: what a function finds out about the variables of those around it is known before their
// own code is made.
void ESCompilation::compileInnerFunctions(std::int32_t line) {
    generator_.setFirstFunction(codeBlockCount());
    for (ESFunctionScope* function : parser_.finished) {
        generator_.compileFunction(*function, false, line);
    }
}

void ESCompilation::keepFunctions() {
    for (const std::unique_ptr<ESFunctionScope>& function : parser_.functions) {
        addCodeBlock(std::move(function->block));
    }
}

std::unique_ptr<ESCodeBlock> compileProgram(ESContext& ctx, const QString& text) {
    return std::make_unique<ESCompilation>(ctx)->compileProgram(text);
}

ESObject* compileFunction(ESContext& ctx, const QString& parameters, const QString& body) {
    showActivation(ctx);
    ESCodeBlock* block =
        keepCodeBlock(std::make_unique<ESCompilation>(ctx)->compileFunction(parameters, body));
    ESObject* fn = newFunction(ctx, block);
    fn->value = atomValue(intern("anonymous"));
    ctx.putProperty(fn, ReadOnly | DontEnum | DontDelete, wellKnownAtoms.length,
                    numberValue(block->argCount));
    const ESValue prototype = ctx.get(fn, wellKnownAtoms.prototype);
    ctx.putProperty(fn, DontEnum, wellKnownAtoms.prototype, prototype);
    ctx.putProperty(prototype.object, DontEnum, wellKnownAtoms.constructor, objectValue(fn));
    return fn;
}

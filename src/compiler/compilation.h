// The entries of the compiler: a program's text becomes a code block, a function's texts a function object.
// ESCompilation ties the road together for one text: lexer.h, parser.h, code_generator.h, in that order.
// ESContext::evaluate, which runs what comes out, is in evaluate.cpp.
#pragma once

#include "compiler/code_generator.h"
#include "compiler/lexer.h"
#include "compiler/parser.h"
#include "compiler/syntax_tree.h"

#include <QString>
#include <memory>

class ESContext;

// Lives for one compilation; everything that it made and nobody took over goes with it, also after an error.
// Too large for the native stack of a script that nests `eval`: make it with new.
class ESCompilation {
public:
    explicit ESCompilation(ESContext& ctx);

    // Both raise a SyntaxError with the line, or throw ESFatalError "compiler error: ..." for a text that the
    // instructions cannot express. The functions inside enter the table of code blocks when all is well.
    std::unique_ptr<ESCodeBlock> compileProgram(const QString& text);
    std::unique_ptr<ESCodeBlock> compileFunction(const QString& parameters, const QString& body);

private:
    void compileInnerFunctions(std::int32_t line);
    void keepFunctions();

    ESContext& ctx_;
    ESTree tree_;
    ESLexer lexer_;
    ESParser parser_;
    ESCodeGenerator generator_;
};

// The block of a program, which is the caller's. Throws as ESCompilation does.
std::unique_ptr<ESCodeBlock> compileProgram(ESContext& ctx, const QString& text);

// The function object that Function(parameters, body) gives: it closes over the scope of the running code,
// though its names are looked for as those of a function at program level. Throws as ESCompilation does.
ESObject* compileFunction(ESContext& ctx, const QString& parameters, const QString& body);

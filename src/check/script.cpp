#include "check/script.h"

Engine::Engine() {
    context.initContext();
    wscript.init(context);
    tbsys.init(context);
    elfFile.init(context);
    builtins = context.globalObject->properties.count();
}

namespace {

std::vector<ScriptToken> scanTokens(ESContext& context, const QString& text) {
    ESFunctionScope literals(nullptr, true);
    ESLexer lexer(context);
    lexer.setScope(&literals);
    lexer.setSource(text);
    std::vector<ScriptToken> tokens;
    try {
        std::int32_t kind = 0;
        do {
            kind = lexer.next();
            const bool named = kind == TokenIdentifier || kind == TokenString;
            tokens.push_back({kind, lexer.line(), lexer.offset(), named ? lexer.atom() : nullptr});
        } while (kind != TokenEnd);
    } catch (const ESException&) {
        // The parser meets the same fault, and reports it.
    }
    return tokens;
}

} // namespace

Script::Script(const QString& source)
    : text(source), tokens(scanTokens(engine.context, text)), program(nullptr, true), lexer(engine.context),
      parser(engine.context, lexer, tree) {
    for (const ScriptToken& token : tokens) {
        if (token.kind == TokenFunction) {
            functionLines.push_back(token.line);
        }
    }
}

void Script::parse() {
    parser.setScope(&program);
    lexer.setSource(text);
    root = parser.parseStatementList(TokenEnd);
}

std::unique_ptr<ESCodeBlock> Script::compile() { return compileProgram(engine.context, text); }

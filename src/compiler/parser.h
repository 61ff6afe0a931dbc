// ESParser, a recursive-descent parser that builds the tree of a whole text (syntax_tree.h) and declares its
// names on the way. parser_statements.cpp and parser_expressions.cpp hold the grammar; compilation.h drives.
#pragma once

#include "compiler/function_scope.h"
#include "compiler/lexer.h"
#include "compiler/syntax_tree.h"

#include <QString>
#include <memory>
#include <vector>

class ESContext;

class ESParser {
public:
    ESParser(ESContext& ctx, ESLexer& lexer, ESTree& tree) : ctx_(ctx), lexer_(lexer), tree_(tree) {}

    // All functions met, in order of their beginnings, and in order of their ends: inner ones first.
    std::vector<std::unique_ptr<ESFunctionScope>> functions;
    std::vector<ESFunctionScope*> finished;

    // Makes a scope current, and gives the one that was. Literals and names go there from now on.
    ESFunctionScope* setScope(ESFunctionScope* scope);
    // `return` is allowed while this is above 0.
    void setFunctionDepth(std::int32_t depth) { functionDepth_ = depth; }

    // Each raises a SyntaxError for a text that the grammar refuses.
    // Statements up to `terminator`, which stays, or the end of input.
    ESNode* parseStatementList(std::int32_t terminator);
    // Names between commas up to the end of input.
    void parseParameterText();

private:
    // Counts a level of nesting for as long as it lives.
    class Level {
    public:
        explicit Level(ESParser& parser);
        ~Level() { --parser_.nesting_; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

    private:
        ESParser& parser_;
    };

    ESNode* make(std::int32_t kind, ESNode* first = nullptr, ESNode* second = nullptr,
                 ESNode* third = nullptr);
    // A node whose child 0 is the list.
    ESNode* makeList(std::int32_t kind, const ESNodeList& list);
    ESNode* makeNamed(std::int32_t kind, ESAtom atom, ESNode* first = nullptr);
    std::int32_t next() { return lexer_.next(); }
    std::int32_t peek() { return lexer_.peek(); }
    bool takeIf(std::int32_t kind);
    ESAtom expectName();
    [[noreturn]] void unexpected(const QString& before, std::int32_t found);

    // parser_statements.cpp; null for a statement that leaves nothing.
    ESNode* parseStatement();
    ESNode* parseBlock();
    ESNode* parseParenthesised();
    ESNode* parseVarStatement();
    ESNode* parseIf();
    ESNode* parseWhile();
    ESNode* parseDo();
    ESNode* parseFor();
    ESNode* parseForIn(ESNode* target);
    ESNode* parseJump();
    ESNode* parseWith();
    ESNode* parseReturn();
    ESNode* parseSwitch();
    void parseClauses(ESNode* node);
    void parseThrow();
    void parseTry();
    ESNode* parseLabel();
    ESNode* parseExpressionStatement();
    ESNode* parseVarList();
    ESNode* parseVar();
    ESNode* parseFunction(bool allowAnonymous);
    void parseParameters();
    ESNode* functionAssignment(ESNode* function);
    void endStatement();

    // parser_expressions.cpp
    ESNode* parseExpression();
    ESNode* parseOptionalExpression();
    ESNode* parseAssignment();
    ESNode* parseLogicalOr();
    ESNode* parseLogicalAnd();
    ESNode* parseBinary(int level);
    ESNode* parseUnary();
    ESNode* parsePostfix();
    ESNode* parseLeftHandSide();
    ESNode* parseMemberByKey(ESNode* object);
    ESNode* parseCall(ESNode* callee);
    ESNode* parsePrimary();
    ESNode* parseArray();
    ESNode* parseObject();
    ESAtom parsePropertyKey(std::int32_t kind);
    ESAtom numberName(std::int32_t number);

    // A rung of an else-if or a ?: ladder, whose node is built when the whole ladder has been read.
    struct Rung {
        ESNode* condition;
        ESNode* then;
    };
    ESNode* finishLadder(std::int32_t kind, std::size_t base, ESNode* last);

    ESContext& ctx_;
    ESLexer& lexer_;
    ESTree& tree_;
    ESFunctionScope* scope_ = nullptr;
    std::int32_t functionDepth_ = 0;
    std::int32_t nesting_ = 0;
    std::vector<Rung> ladder_;
};

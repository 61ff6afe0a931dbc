// Statements, functions and declarations.
#include "compiler/parser.h"

#include "runtime/context.h"

// The functions of a list stand in a list of their own, which runs first.
ESNode* ESParser::parseStatementList(std::int32_t terminator) {
    ESNodeList declarations;
    ESNodeList statements;
    bool endsEmpty = false;
    while (peek() != terminator && peek() != TokenEnd) {
        if (takeIf(TokenFunction)) {
            declarations.append(functionAssignment(parseFunction(false)));
            continue;
        }
        ESNode* statement = parseStatement();
        endsEmpty = statement == nullptr;
        if (statement != nullptr) {
            statements.append(statement);
        }
    }
    ESNode* list = make(';');
    declarations.hangBelow(list, 0);
    statements.hangBelow(list, 1);
    list->endsEmpty = endsEmpty;
    return list;
}

ESNode* ESParser::parseStatement() {
    const Level level(*this);
    switch (peek()) {
    case ';':
        next();
        return nullptr;
    case '{':
        return parseBlock();
    case TokenVar:
        return parseVarStatement();
    case TokenIf:
        return parseIf();
    case TokenWhile:
        return parseWhile();
    case TokenDo:
        return parseDo();
    case TokenFor:
        return parseFor();
    case TokenBreak:
    case TokenContinue:
        return parseJump();
    case TokenWith:
        return parseWith();
    case TokenReturn:
        return parseReturn();
    case TokenSwitch:
        return parseSwitch();
    case TokenThrow:
        parseThrow();
        return nullptr;
    case TokenTry:
        parseTry();
        return nullptr;
    case TokenIdentifier:
        return lexer_.colonFollows() ? parseLabel() : parseExpressionStatement();
    default:
        return parseExpressionStatement();
    }
}

// A statement ends at a semicolon, in front of a closing brace or the end of input, or at a line end.
void ESParser::endStatement() {
    const std::int32_t kind = peek();
    if (kind == '}' || kind == TokenEnd || (kind != ';' && lexer_.newlineBefore())) {
        return;
    }
    lexer_.expect(';');
}

ESNode* ESParser::parseBlock() {
    lexer_.expect('{');
    ESNode* list = parseStatementList('}');
    lexer_.expect('}');
    return list;
}

ESNode* ESParser::parseParenthesised() {
    lexer_.expect('(');
    ESNode* node = parseExpression();
    lexer_.expect(')');
    return node;
}

ESNode* ESParser::parseExpressionStatement() {
    ESNode* node = parseExpression();
    endStatement();
    return node;
}

ESNode* ESParser::parseVarStatement() {
    next();
    ESNode* node = parseVarList();
    endStatement();
    return node;
}

// A ladder of else-ifs is read in this loop, so its length costs no depth.
ESNode* ESParser::parseIf() {
    const std::size_t base = ladder_.size();
    ESNode* last = nullptr;
    do {
        next();
        ESNode* condition = parseParenthesised();
        ESNode* then = parseStatement();
        ladder_.push_back({condition, then});
        if (!takeIf(TokenElse)) {
            break;
        }
        if (peek() != TokenIf) {
            last = parseStatement();
            break;
        }
    } while (true);
    return finishLadder(TokenIf, base, last);
}

ESNode* ESParser::parseWhile() {
    next();
    ESNode* condition = parseParenthesised();
    ESNode* body = parseStatement();
    return make(TokenWhile, condition, body);
}

ESNode* ESParser::parseDo() {
    next();
    ESNode* body = parseBlock();
    lexer_.expect(TokenWhile);
    lexer_.expect('(');
    ESNode* condition = parseExpression();
    ESNode* node = make(TokenDo, body, condition);
    lexer_.expect(')');
    return node;
}

ESNode* ESParser::parseFor() {
    next();
    lexer_.expect('(');
    ESNode* init = nullptr;
    if (takeIf(TokenVar)) {
        init = parseVarList();
        if (peek() == TokenIn && init->kind == ',') {
            lexer_.raise(QStringLiteral("too many variables in for-in expression"));
        }
    } else {
        init = parseOptionalExpression();
    }
    if (takeIf(TokenIn)) {
        return parseForIn(init);
    }
    lexer_.expect(';');
    ESNode* condition = parseOptionalExpression();
    lexer_.expect(';');
    ESNode* update = parseOptionalExpression();
    ESNode* node = make(TokenFor, init, condition, update);
    lexer_.expect(')');
    node->setChild(3, parseStatement());
    return node;
}

ESNode* ESParser::parseForIn(ESNode* target) {
    ESNode* object = parseExpression();
    ESNode* node = make(NodeForIn, target, object);
    lexer_.expect(')');
    node->setChild(3, parseStatement());
    return node;
}

ESNode* ESParser::parseJump() {
    ESNode* node = makeNamed(next(), nullptr);
    if (takeIf(TokenIdentifier)) {
        node->atom = lexer_.atom();
    }
    endStatement();
    return node;
}

ESNode* ESParser::parseWith() {
    next();
    ESNode* object = parseParenthesised();
    ESNode* body = parseStatement();
    return make(TokenWith, object, body);
}

ESNode* ESParser::parseReturn() {
    next();
    const std::int32_t kind = peek();
    ESNode* value = kind == ';' || kind == '}' || lexer_.newlineBefore() ? nullptr : parseExpression();
    endStatement();
    if (functionDepth_ == 0) {
        lexer_.raise(tokenName(TokenReturn) + QStringLiteral(" not in a function"));
    }
    return make(TokenReturn, value);
}

// The node is there from the start and so has the line of the word.
ESNode* ESParser::parseSwitch() {
    next();
    ESNode* node = make(TokenSwitch);
    node->setChild(0, parseParenthesised());
    lexer_.expect('{');
    parseClauses(node);
    lexer_.expect('}');
    return node;
}

void ESParser::parseClauses(ESNode* node) {
    ESNodeList clauses;
    while (peek() != '}' && peek() != TokenEnd) {
        if (peek() != TokenCase && peek() != TokenDefault) {
            lexer_.raise(QStringLiteral("expected 'case' or 'default' but found '") + tokenName(peek()) +
                         QStringLiteral("'"));
        }
        const std::int32_t kind = next();
        ESNode* clause = nullptr;
        if (kind == TokenDefault) {
            if (node->child[1] != nullptr) {
                lexer_.raise(QStringLiteral("default case already defined"));
            }
            clause = make(TokenDefault);
            node->child[1] = clause;
        } else {
            ESNode* test = parseExpression();
            clause = make(TokenCase, nullptr, test);
        }
        lexer_.expect(':');
        ESNodeList statements;
        while (peek() != '}' && peek() != TokenCase && peek() != TokenDefault && peek() != TokenEnd) {
            if (ESNode* statement = parseStatement()) {
                statements.append(statement);
            }
        }
        statements.hangBelow(clause, 2);
        clauses.append(clause);
    }
    clauses.hangBelow(node, 2);
}

// There are no exceptions at script level: the statement is read and leaves nothing behind.
void ESParser::parseThrow() {
    next();
    parseExpression();
    endStatement();
}

// As with `throw`, but for what its blocks declare.
void ESParser::parseTry() {
    next();
    parseBlock();
    bool complete = false;
    if (takeIf(TokenCatch)) {
        lexer_.expect('(');
        lexer_.expect(TokenIdentifier);
        lexer_.expect(')');
        parseBlock();
        complete = true;
    }
    if (takeIf(TokenFinally)) {
        parseBlock();
        complete = true;
    }
    if (!complete) {
        lexer_.raise(QStringLiteral("'catch' or 'finally' clause expected after 'try'"));
    }
}

ESNode* ESParser::parseLabel() {
    const ESAtom label = lexer_.atom();
    next();
    next();
    ESNode* statement = parseStatement();
    return makeNamed(NodeLabel, label, statement);
}

ESNode* ESParser::parseVarList() {
    ESNode* first = parseVar();
    if (peek() != ',') {
        return first;
    }
    ESNodeList declarations;
    declarations.append(first);
    while (takeIf(',')) {
        declarations.append(parseVar());
    }
    return makeList(',', declarations);
}

ESNode* ESParser::parseVar() {
    const ESAtom name = expectName();
    ESNode* variable = makeNamed(TokenIdentifier, name);
    declareName(ctx_, *scope_, name, DontEnum | DontDelete, false);
    if (!takeIf('=')) {
        return variable;
    }
    ESNode* value = parseAssignment();
    return make('=', variable, value);
}

// Behind the word `function`, up to the closing brace.
ESNode* ESParser::parseFunction(bool allowAnonymous) {
    const Level level(*this);
    ESAtom name = nullptr;
    if (!allowAnonymous || peek() == TokenIdentifier) {
        name = expectName();
        declareName(ctx_, *scope_, name, 0, true);
    }
    lexer_.expect('(');
    // Both switches of the scope stand right behind a token that was taken, so no literal of the one function
    // has been scanned into the other.
    ESFunctionScope* const enclosing = scope_;
    functions.push_back(std::make_unique<ESFunctionScope>(enclosing->isProgram ? nullptr : enclosing, false));
    ESFunctionScope* const scope = functions.back().get();
    scope->name = name;
    scope->blockIndex = static_cast<std::int32_t>(functions.size()) - 1;
    scope->block->needsActivation = ctx_.alwaysActivation;
    setScope(scope);
    parseParameters();
    ++functionDepth_;
    scope->body = parseBlock();
    --functionDepth_;
    setScope(enclosing);
    finished.push_back(scope);
    ESNode* node = tree_.make(TokenFunction, 0);
    node->function = scope;
    node->hasEffect = scope->body->hasEffect;
    return node;
}

void ESParser::parseParameters() {
    if (peek() != ')') {
        for (;;) {
            declareName(ctx_, *scope_, expectName(), DontDelete | ParameterSlot, true);
            if (peek() == ')') {
                break;
            }
            lexer_.expect(',');
        }
    }
    lexer_.expect(')');
}

// A function with a name, declared or not, is assigned to its name.
ESNode* ESParser::functionAssignment(ESNode* function) {
    if (function->function->name == nullptr) {
        return function;
    }
    ESNode* variable = makeNamed(TokenIdentifier, function->function->name);
    return make('=', variable, function);
}

void ESParser::parseParameterText() {
    while (peek() != TokenEnd) {
        declareName(ctx_, *scope_, expectName(), DontDelete | ParameterSlot, true);
        if (peek() != TokenEnd) {
            lexer_.expect(',');
            // What comes behind a comma is a parameter, so the end of input isn't.
            if (peek() == TokenEnd) {
                lexer_.expect(TokenIdentifier);
            }
        }
    }
    lexer_.expect(TokenEnd);
}

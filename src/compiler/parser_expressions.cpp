// Expressions, from the comma down to the literals. A node is built behind its operands, so its line is that
// of the token then looked at.
#include "compiler/parser.h"

#include "runtime/context.h"

namespace {

constexpr int binaryLevels = 8;

// The level of a binary operator, a higher one binding tighter; -1 for other tokens.
int binaryLevel(std::int32_t kind) {
    switch (kind) {
    case '|':
        return 0;
    case '^':
        return 1;
    case '&':
        return 2;
    case TokenEqual:
    case TokenNotEqual:
        return 3;
    case '<':
    case '>':
    case TokenLessEqual:
    case TokenGreaterEqual:
        return 4;
    case TokenShl:
    case TokenShr:
    case TokenUshr:
        return 5;
    case '+':
    case '-':
        return 6;
    case '*':
    case '/':
    case '%':
        return 7;
    default:
        return -1;
    }
}

bool isAssignment(std::int32_t kind) {
    return kind == '=' || (kind >= TokenAndAssign && kind <= TokenModAssign);
}

// The node kind of a unary operator, or 0.
std::int32_t unaryKind(std::int32_t kind) {
    switch (kind) {
    case TokenDelete:
    case TokenVoid:
    case TokenTypeof:
    case TokenIncrement:
    case TokenDecrement:
    case '~':
    case '!':
        return kind;
    case '+':
        return NodePlus;
    case '-':
        return NodeNegate;
    default:
        return 0;
    }
}

} // namespace

ESNode* ESParser::parseExpression() {
    ESNode* first = parseAssignment();
    if (peek() != ',') {
        return first;
    }
    ESNodeList operands;
    operands.append(first);
    while (takeIf(',')) {
        operands.append(parseAssignment());
    }
    return makeList(',', operands);
}

// In the head of a `for`.
ESNode* ESParser::parseOptionalExpression() {
    return peek() == ';' || peek() == ')' ? nullptr : parseExpression();
}

// A ladder a ? b : c ? d : … is read in this loop, so its length costs no depth.
ESNode* ESParser::parseAssignment() {
    const Level level(*this);
    const std::size_t base = ladder_.size();
    ESNode* node = parseLogicalOr();
    while (takeIf('?')) {
        ESNode* then = parseAssignment();
        lexer_.expect(':');
        ladder_.push_back({node, then});
        node = parseLogicalOr();
    }
    if (isAssignment(peek())) {
        const std::int32_t kind = next();
        ESNode* value = parseAssignment();
        node = make(kind, node, value);
    }
    return finishLadder('?', base, node);
}

ESNode* ESParser::parseLogicalOr() {
    ESNode* left = parseLogicalAnd();
    while (takeIf(TokenLogicalOr)) {
        ESNode* right = parseLogicalAnd();
        left = make(TokenLogicalOr, left, right);
    }
    return left;
}

ESNode* ESParser::parseLogicalAnd() {
    ESNode* left = parseBinary(0);
    while (takeIf(TokenLogicalAnd)) {
        ESNode* right = parseBinary(0);
        left = make(TokenLogicalAnd, left, right);
    }
    return left;
}

ESNode* ESParser::parseBinary(int level) {
    ESNode* left = parseUnary();
    if (level >= binaryLevels) {
        return left;
    }
    for (int found = binaryLevel(peek()); found >= level; found = binaryLevel(peek())) {
        const std::int32_t kind = next();
        ESNode* right = parseBinary(found + 1);
        left = make(kind, left, right);
    }
    return left;
}

ESNode* ESParser::parseUnary() {
    const std::int32_t kind = unaryKind(peek());
    if (kind == 0) {
        return parsePostfix();
    }
    const Level level(*this);
    next();
    ESNode* operand = parseUnary();
    return make(kind, operand);
}

ESNode* ESParser::parsePostfix() {
    ESNode* operand = parseLeftHandSide();
    // The look-ahead is held already, so this asks for a line end in front of it.
    if (!lexer_.newlineBefore()) {
        if (takeIf(TokenIncrement)) {
            return make(NodePostIncrement, operand);
        }
        if (takeIf(TokenDecrement)) {
            return make(NodePostDecrement, operand);
        }
    }
    return operand;
}

ESNode* ESParser::parseLeftHandSide() {
    if (peek() == TokenNew) {
        const Level level(*this);
        next();
        ESNode* operand = parseLeftHandSide();
        return make(TokenNew, operand);
    }
    ESNode* node = parsePrimary();
    for (;;) {
        switch (peek()) {
        case '.':
            next();
            expectName();
            node = makeNamed('.', lexer_.atom(), node);
            break;
        case '(':
            node = parseCall(node);
            break;
        case '[':
            node = parseMemberByKey(node);
            break;
        default:
            return node;
        }
    }
}

// A literal key makes a member by name.
ESNode* ESParser::parseMemberByKey(ESNode* object) {
    next();
    ESNode* key = parseExpression();
    ESNode* node = nullptr;
    if (key->kind == TokenString) {
        node = makeNamed('.', key->atom, object);
    } else if (key->kind == TokenNumber) {
        node = makeNamed('.', numberName(key->number), object);
    } else {
        node = make('[', object, key);
    }
    lexer_.expect(']');
    return node;
}

ESNode* ESParser::parseCall(ESNode* callee) {
    lexer_.expect('(');
    ESNodeList arguments;
    if (peek() != ')') {
        arguments.append(parseAssignment());
        while (peek() != ')') {
            lexer_.expect(',');
            arguments.append(parseAssignment());
        }
    }
    next();
    ESNode* node = make(NodeCall, callee);
    arguments.hangBelow(node, 1);
    return node;
}

ESNode* ESParser::parsePrimary() {
    const std::int32_t kind = next();
    switch (kind) {
    case TokenIdentifier:
    case TokenString:
        return makeNamed(kind, lexer_.atom());
    case TokenNumber: {
        ESNode* node = make(kind);
        node->number = lexer_.number();
        return node;
    }
    case TokenThis:
    case TokenTrue:
    case TokenFalse:
    case TokenNull:
        return make(kind);
    case '(': {
        ESNode* node = parseExpression();
        lexer_.expect(')');
        node->inParentheses = true;
        return node;
    }
    case '[':
        return parseArray();
    case '{':
        return parseObject();
    case TokenFunction:
        return functionAssignment(parseFunction(true));
    default:
        unexpected(QStringLiteral("expected an expression, found "), kind);
    }
}

// Every comma in front of the closing bracket adds an element, also the last.
ESNode* ESParser::parseArray() {
    ESNodeList elements;
    if (peek() != ']') {
        for (;;) {
            const std::int32_t kind = peek();
            elements.append(kind == ',' || kind == ']' ? make(NodeElided) : parseAssignment());
            if (peek() == ']') {
                break;
            }
            if (!takeIf(',')) {
                unexpected(QStringLiteral("']' or ',' expected, found "), peek());
            }
        }
    }
    next();
    return makeList(NodeArray, elements);
}

ESNode* ESParser::parseObject() {
    ESNodeList entries;
    for (std::int32_t kind = next(); kind != '}'; kind = next()) {
        const ESAtom key = parsePropertyKey(kind);
        lexer_.expect(':');
        ESNode* entry = makeNamed(':', key);
        entry->setChild(1, parseAssignment());
        entries.append(entry);
        if (peek() != '}') {
            lexer_.expect(',');
        }
    }
    return makeList(NodeObject, entries);
}

ESAtom ESParser::parsePropertyKey(std::int32_t kind) {
    switch (kind) {
    case TokenNumber:
        return numberName(lexer_.number());
    case TokenString:
    case TokenIdentifier:
        return lexer_.atom();
    default:
        lexer_.raise(QStringLiteral("number, string, or identifier expected in object initialiser"));
    }
}

ESAtom ESParser::numberName(std::int32_t number) {
    return ctx_.toAtom(numberValue(scope_->block->numbers[static_cast<std::size_t>(number)]));
}

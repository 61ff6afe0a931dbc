// The kinds of tokens, which are the kinds of syntax-tree nodes as well, with their printed names and the
// words of the language. lexer.h makes tokens, syntax_tree.h hangs nodes together.
#pragma once

#include <QString>
#include <cstdint>

// A kind below 128 is the code of the one character that it stands for.
enum ESToken : std::int32_t {
    TokenEnd = 128,
    TokenAndAssign = 129, // the compound assignments, 129 to 139, lie together
    TokenOrAssign = 130,
    TokenXorAssign = 131,
    TokenShlAssign = 132,
    TokenShrAssign = 133,
    TokenUshrAssign = 134,
    TokenAddAssign = 135,
    TokenSubAssign = 136,
    TokenMulAssign = 137,
    TokenDivAssign = 138,
    TokenModAssign = 139,
    TokenLogicalOr = 140,
    TokenLogicalAnd = 141,
    TokenIdentical = 142, // scanned, but no part of any expression
    TokenNotIdentical = 143,
    TokenEqual = 144,
    TokenNotEqual = 145,
    TokenLessEqual = 146,
    TokenGreaterEqual = 147,
    TokenShl = 148,
    TokenShr = 149,
    TokenUshr = 150,
    TokenIncrement = 151,
    TokenDecrement = 152,

    TokenNumber = 153,
    TokenIdentifier = 159,
    TokenString = 161,

    TokenThis = 162,
    TokenTypeof = 163,
    TokenDelete = 164,
    TokenVoid = 165,
    TokenWhile = 166,
    TokenFor = 167,
    TokenBreak = 168,
    TokenContinue = 169,
    TokenWith = 170,
    TokenReturn = 171,
    TokenFunction = 172,
    TokenVar = 173,
    TokenIf = 174,
    TokenElse = 175,
    TokenIn = 176,
    TokenNew = 177,
    TokenCase = 178,
    TokenDefault = 179,
    TokenSwitch = 180,
    TokenTrue = 181,
    TokenFalse = 182,
    TokenNull = 183,

    // Kinds that only nodes have.
    NodePostIncrement = 186,
    NodePostDecrement = 187,
    NodeNegate = 188,
    NodePlus = 189,
    NodeCall = 190,
    NodeForIn = 192,
    NodeArray = 195,
    NodeObject = 196,
    NodeElided = 197,
    NodeLabel = 198,

    TokenCatch = 199,
    TokenClass = 200,
    TokenConst = 201,
    TokenDebugger = 202,
    TokenDo = 203,
    TokenEnum = 204,
    TokenExport = 205,
    TokenExtends = 206,
    TokenFinally = 207,
    TokenImport = 208,
    TokenSuper = 209,
    TokenThrow = 210,
    TokenTry = 211,

    endOfTokens = 215,
};

enum class ESTokenRole : std::uint8_t {
    Named,         // has a printed name
    Word,          // a reserved word, which is its own printed name
    UnprintedWord, // a reserved word that prints as an unnamed kind does
};

struct ESTokenRow {
    std::int32_t kind;
    const char* text;
    ESTokenRole role;
};

constexpr ESTokenRow tokenTable[] = {
    {TokenEnd, "end of input", ESTokenRole::Named},
    {TokenAndAssign, "&=", ESTokenRole::Named},
    {TokenOrAssign, "|=", ESTokenRole::Named},
    {TokenXorAssign, "^=", ESTokenRole::Named},
    {TokenShlAssign, "<<=", ESTokenRole::Named},
    {TokenShrAssign, ">>=", ESTokenRole::Named},
    {TokenUshrAssign, ">>>=", ESTokenRole::Named},
    {TokenAddAssign, "+=", ESTokenRole::Named},
    {TokenSubAssign, "-=", ESTokenRole::Named},
    {TokenMulAssign, "*=", ESTokenRole::Named},
    {TokenDivAssign, "/=", ESTokenRole::Named},
    {TokenModAssign, "%=", ESTokenRole::Named},
    {TokenLogicalOr, "||", ESTokenRole::Named},
    {TokenLogicalAnd, "&&", ESTokenRole::Named},
    {TokenIdentical, "===", ESTokenRole::Named},
    {TokenNotIdentical, "!==", ESTokenRole::Named},
    {TokenEqual, "==", ESTokenRole::Named},
    {TokenNotEqual, "!=", ESTokenRole::Named},
    {TokenLessEqual, "<=", ESTokenRole::Named},
    {TokenGreaterEqual, ">=", ESTokenRole::Named},
    {TokenShl, "<<", ESTokenRole::Named},
    {TokenShr, ">>", ESTokenRole::Named},
    {TokenUshr, ">>>", ESTokenRole::Named},
    {TokenIncrement, "++", ESTokenRole::Named},
    {TokenDecrement, "--", ESTokenRole::Named},
    {TokenNumber, "a number", ESTokenRole::Named},
    {154, "0", ESTokenRole::Named},
    {155, "1", ESTokenRole::Named},
    {156, "2", ESTokenRole::Named},
    {157, "3", ESTokenRole::Named},
    {TokenIdentifier, "an identifier", ESTokenRole::Named},
    {TokenString, "a string", ESTokenRole::Named},
    {TokenThis, "this", ESTokenRole::Word},
    {TokenTypeof, "typeof", ESTokenRole::Word},
    {TokenDelete, "delete", ESTokenRole::Word},
    {TokenVoid, "void", ESTokenRole::Word},
    {TokenWhile, "while", ESTokenRole::Word},
    {TokenFor, "for", ESTokenRole::Word},
    {TokenBreak, "break", ESTokenRole::Word},
    {TokenContinue, "continue", ESTokenRole::Word},
    {TokenWith, "with", ESTokenRole::Word},
    {TokenReturn, "return", ESTokenRole::Word},
    {TokenFunction, "function", ESTokenRole::Word},
    {TokenVar, "var", ESTokenRole::Word},
    {TokenIf, "if", ESTokenRole::Word},
    {TokenElse, "else", ESTokenRole::Word},
    {TokenIn, "in", ESTokenRole::Word},
    {TokenNew, "new", ESTokenRole::Word},
    {TokenCase, "case", ESTokenRole::Word},
    {TokenDefault, "default", ESTokenRole::Word},
    {TokenSwitch, "switch", ESTokenRole::Word},
    {TokenTrue, "true", ESTokenRole::UnprintedWord},
    {TokenFalse, "false", ESTokenRole::UnprintedWord},
    {TokenNull, "null", ESTokenRole::UnprintedWord},
    {184, "#line", ESTokenRole::Named},
    {185, "#col", ESTokenRole::Named},
    {NodePostIncrement, "++", ESTokenRole::Named},
    {NodePostDecrement, "--", ESTokenRole::Named},
    {NodeNegate, "-", ESTokenRole::Named},
    {NodePlus, "+", ESTokenRole::Named},
    {NodeCall, "call", ESTokenRole::Named},
    {191, "newcall", ESTokenRole::Named},
    {NodeForIn, "forin", ESTokenRole::Named},
    {193, "forvar", ESTokenRole::Named},
    {194, "forvarin", ESTokenRole::Named},
    {NodeArray, "arrayinit", ESTokenRole::Named},
    {NodeObject, "objectinit", ESTokenRole::Named},
    {TokenCatch, "catch", ESTokenRole::Word},
    {TokenClass, "class", ESTokenRole::Word},
    {TokenConst, "const", ESTokenRole::Word},
    {TokenDebugger, "debugger", ESTokenRole::Word},
    {TokenDo, "do", ESTokenRole::Word},
    {TokenEnum, "enum", ESTokenRole::Word},
    {TokenExport, "export", ESTokenRole::Word},
    {TokenExtends, "extends", ESTokenRole::Word},
    {TokenFinally, "finally", ESTokenRole::Word},
    {TokenImport, "import", ESTokenRole::Word},
    {TokenSuper, "super", ESTokenRole::Word},
    {TokenThrow, "throw", ESTokenRole::Word},
    {TokenTry, "try", ESTokenRole::Word},
    {212, "try-catch", ESTokenRole::Named},
    {213, "try-finally", ESTokenRole::Named},
    {214, "try-catch-finally", ESTokenRole::Named},
};

// The name of a kind in messages. An unnamed one prints as token<N>.
QString tokenName(std::int32_t kind);
// The kind of a reserved word, or TokenIdentifier for any other text of `length` characters.
std::int32_t wordKind(const char16_t* characters, std::size_t length);

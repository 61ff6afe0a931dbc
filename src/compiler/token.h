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
    ESTokenRole role;
    const char* text;
};

constexpr ESTokenRow tokenTable[] = {
    {TokenEnd, ESTokenRole::Named, "end of input"},
    {TokenAndAssign, ESTokenRole::Named, "&="},
    {TokenOrAssign, ESTokenRole::Named, "|="},
    {TokenXorAssign, ESTokenRole::Named, "^="},
    {TokenShlAssign, ESTokenRole::Named, "<<="},
    {TokenShrAssign, ESTokenRole::Named, ">>="},
    {TokenUshrAssign, ESTokenRole::Named, ">>>="},
    {TokenAddAssign, ESTokenRole::Named, "+="},
    {TokenSubAssign, ESTokenRole::Named, "-="},
    {TokenMulAssign, ESTokenRole::Named, "*="},
    {TokenDivAssign, ESTokenRole::Named, "/="},
    {TokenModAssign, ESTokenRole::Named, "%="},
    {TokenLogicalOr, ESTokenRole::Named, "||"},
    {TokenLogicalAnd, ESTokenRole::Named, "&&"},
    {TokenIdentical, ESTokenRole::Named, "==="},
    {TokenNotIdentical, ESTokenRole::Named, "!=="},
    {TokenEqual, ESTokenRole::Named, "=="},
    {TokenNotEqual, ESTokenRole::Named, "!="},
    {TokenLessEqual, ESTokenRole::Named, "<="},
    {TokenGreaterEqual, ESTokenRole::Named, ">="},
    {TokenShl, ESTokenRole::Named, "<<"},
    {TokenShr, ESTokenRole::Named, ">>"},
    {TokenUshr, ESTokenRole::Named, ">>>"},
    {TokenIncrement, ESTokenRole::Named, "++"},
    {TokenDecrement, ESTokenRole::Named, "--"},
    {TokenNumber, ESTokenRole::Named, "a number"},
    {154, ESTokenRole::Named, "0"},
    {155, ESTokenRole::Named, "1"},
    {156, ESTokenRole::Named, "2"},
    {157, ESTokenRole::Named, "3"},
    {TokenIdentifier, ESTokenRole::Named, "an identifier"},
    {TokenString, ESTokenRole::Named, "a string"},
    {TokenThis, ESTokenRole::Word, "this"},
    {TokenTypeof, ESTokenRole::Word, "typeof"},
    {TokenDelete, ESTokenRole::Word, "delete"},
    {TokenVoid, ESTokenRole::Word, "void"},
    {TokenWhile, ESTokenRole::Word, "while"},
    {TokenFor, ESTokenRole::Word, "for"},
    {TokenBreak, ESTokenRole::Word, "break"},
    {TokenContinue, ESTokenRole::Word, "continue"},
    {TokenWith, ESTokenRole::Word, "with"},
    {TokenReturn, ESTokenRole::Word, "return"},
    {TokenFunction, ESTokenRole::Word, "function"},
    {TokenVar, ESTokenRole::Word, "var"},
    {TokenIf, ESTokenRole::Word, "if"},
    {TokenElse, ESTokenRole::Word, "else"},
    {TokenIn, ESTokenRole::Word, "in"},
    {TokenNew, ESTokenRole::Word, "new"},
    {TokenCase, ESTokenRole::Word, "case"},
    {TokenDefault, ESTokenRole::Word, "default"},
    {TokenSwitch, ESTokenRole::Word, "switch"},
    {TokenTrue, ESTokenRole::UnprintedWord, "true"},
    {TokenFalse, ESTokenRole::UnprintedWord, "false"},
    {TokenNull, ESTokenRole::UnprintedWord, "null"},
    {184, ESTokenRole::Named, "#line"},
    {185, ESTokenRole::Named, "#col"},
    {NodePostIncrement, ESTokenRole::Named, "++"},
    {NodePostDecrement, ESTokenRole::Named, "--"},
    {NodeNegate, ESTokenRole::Named, "-"},
    {NodePlus, ESTokenRole::Named, "+"},
    {NodeCall, ESTokenRole::Named, "call"},
    {191, ESTokenRole::Named, "newcall"},
    {NodeForIn, ESTokenRole::Named, "forin"},
    {193, ESTokenRole::Named, "forvar"},
    {194, ESTokenRole::Named, "forvarin"},
    {NodeArray, ESTokenRole::Named, "arrayinit"},
    {NodeObject, ESTokenRole::Named, "objectinit"},
    {TokenCatch, ESTokenRole::Word, "catch"},
    {TokenClass, ESTokenRole::Word, "class"},
    {TokenConst, ESTokenRole::Word, "const"},
    {TokenDebugger, ESTokenRole::Word, "debugger"},
    {TokenDo, ESTokenRole::Word, "do"},
    {TokenEnum, ESTokenRole::Word, "enum"},
    {TokenExport, ESTokenRole::Word, "export"},
    {TokenExtends, ESTokenRole::Word, "extends"},
    {TokenFinally, ESTokenRole::Word, "finally"},
    {TokenImport, ESTokenRole::Word, "import"},
    {TokenSuper, ESTokenRole::Word, "super"},
    {TokenThrow, ESTokenRole::Word, "throw"},
    {TokenTry, ESTokenRole::Word, "try"},
    {212, ESTokenRole::Named, "try-catch"},
    {213, ESTokenRole::Named, "try-finally"},
    {214, ESTokenRole::Named, "try-catch-finally"},
};

// The name of a kind in messages. An unnamed one prints as token<N>.
QString tokenName(std::int32_t kind);
// The kind of a reserved word, or TokenIdentifier for any other text of `length` characters.
std::int32_t wordKind(const char16_t* characters, std::size_t length);

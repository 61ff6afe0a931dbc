// ESLexer, which turns script text into tokens one at a time, on demand, with one token of look-ahead. The
// dialect has no regular expressions, and names are ASCII only. token.h lists the kinds, parser.h asks.
#pragma once

#include "compiler/function_scope.h"
#include "compiler/token.h"
#include "runtime/value.h"

#include <QString>
#include <cstdint>
#include <string>

class ESContext;

class ESLexer {
public:
    explicit ESLexer(ESContext& ctx) : ctx_(ctx) {}

    // Starts a text, at line 1.
    void setSource(const QString& text);
    // Where the literals of the text go from now on; must be set before a number is scanned.
    void setScope(ESFunctionScope* scope) { scope_ = scope; }

    // All of these raise a SyntaxError for text that is no token.
    std::int32_t next() {
        if (lookahead_ >= 0) {
            const std::int32_t kind = lookahead_;
            lookahead_ = -1;
            return kind;
        }
        return scan();
    }
    std::int32_t peek() {
        if (lookahead_ < 0) {
            lookahead_ = scan();
        }
        return lookahead_;
    }
    // Takes the next token and raises a SyntaxError when it is of another kind.
    void expect(std::int32_t kind);

    // These tell of the token scanned last, which is the held one when there is one.
    bool newlineBefore() const { return newlineBefore_; }
    std::int32_t line() const { return line_; }
    // Characters scanned so far: the end of that token, or the place of the fault behind an error.
    qsizetype offset() const { return at_ - QStringView(source_).utf16(); }
    // Of the identifier or string scanned last.
    ESAtom atom() const { return atom_; }
    // Of the number scanned last: its position in the numbers of the scope's block.
    std::int32_t number() const { return number_; }
    // A colon stands behind the token scanned last, with nothing but blanks between.
    bool colonFollows() const;

    // Raises a SyntaxError with the present line.
    [[noreturn]] void raise(const QString& message) const;

private:
    std::int32_t scan();
    std::int32_t scanSlash();
    std::int32_t scanOperator(char16_t first);
    std::int32_t scanWord(const char16_t* start);
    std::int32_t scanNumber();
    std::int32_t scanString(char16_t quote);
    void skipLineComment();
    void skipBlockComment();
    void readEscape();
    char16_t readHex(int digits);
    char16_t readOctal(char16_t first);
    // Takes the next character if it is this one.
    bool take(char16_t c) {
        if (at_ != end_ && *at_ == c) {
            ++at_;
            return true;
        }
        return false;
    }

    ESContext& ctx_;
    ESFunctionScope* scope_ = nullptr;
    QString source_;
    const char16_t* at_ = nullptr; // the next character
    const char16_t* end_ = nullptr;
    std::int32_t line_ = 1;
    std::int32_t lookahead_ = -1; // the kind held back, -1 when none
    bool newlineBefore_ = false;
    ESAtom atom_ = nullptr;
    std::int32_t number_ = 0;
    std::u16string text_; // of a string with escapes
};

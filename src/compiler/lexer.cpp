#include "compiler/lexer.h"

#include "compiler/character_class.h"
#include "compiler/number_literal.h"
#include "runtime/context.h"

void ESLexer::setSource(const QString& text) {
    source_ = text;
    const QStringView view(source_);
    at_ = view.utf16();
    end_ = at_ + view.size();
    line_ = 1;
    lookahead_ = -1;
    newlineBefore_ = false;
}

void ESLexer::expect(std::int32_t kind) {
    const std::int32_t found = next();
    if (found != kind) {
        raise(QStringLiteral("expected ") + tokenName(kind) + QStringLiteral(" found ") + tokenName(found));
    }
}

bool ESLexer::colonFollows() const {
    const char16_t* at = at_;
    while (at != end_ && (*at == u' ' || *at == u'\t' || *at == u'\v' || *at == u'\f')) {
        ++at;
    }
    return at != end_ && *at == u':';
}

void ESLexer::raise(const QString& message) const {
    ctx_.setCurrentLine(line_);
    ctx_.raiseError(ctx_.syntaxErrorConstructor, message);
}

std::int32_t ESLexer::scan() {
    newlineBefore_ = false;
    while (at_ != end_) {
        const char16_t c = *at_++;
        switch (c) {
        case u' ':
        case u'\t':
        case u'\v':
        case u'\f':
        case 26: // control-Z, the end of a text file on some systems
            continue;
        case u'\n':
            ++line_;
            newlineBefore_ = true;
            continue;
        case u'\r': // separates statements, but only a line feed counts as a line
            newlineBefore_ = true;
            continue;
        case u'/':
            if (const std::int32_t kind = scanSlash(); kind >= 0) {
                return kind;
            }
            continue;
        case u'"':
        case u'\'':
            return scanString(c);
        case u'(':
        case u')':
        case u',':
        case u':':
        case u';':
        case u'?':
        case u'[':
        case u']':
        case u'{':
        case u'}':
        case u'~':
            return c;
        case u'.':
            if (at_ != end_ && isDigit(*at_)) {
                --at_;
                return scanNumber();
            }
            return c;
        default:
            if (isNameStart(c)) {
                return scanWord(at_ - 1);
            }
            if (isDigit(c)) {
                --at_;
                return scanNumber();
            }
            return scanOperator(c);
        }
    }
    return TokenEnd;
}

// -1 for a comment.
std::int32_t ESLexer::scanSlash() {
    if (take(u'=')) {
        return TokenDivAssign;
    }
    if (take(u'/')) {
        skipLineComment();
        return -1;
    }
    if (take(u'*')) {
        skipBlockComment();
        return -1;
    }
    return '/';
}

void ESLexer::skipLineComment() {
    while (at_ != end_ && *at_ != u'\n' && *at_ != u'\r') {
        ++at_;
    }
}

// Its lines count, but they don't separate statements. Without an end it reaches to the end of the text.
void ESLexer::skipBlockComment() {
    while (at_ != end_) {
        const char16_t c = *at_++;
        if (c == u'\n') {
            ++line_;
        } else if (c == u'*' && take(u'/')) {
            return;
        }
    }
}

std::int32_t ESLexer::scanOperator(char16_t first) {
    const auto either = [this](char16_t c, std::int32_t with, std::int32_t without) {
        return take(c) ? with : without;
    };
    switch (first) {
    case u'!':
        return take(u'=') ? either(u'=', TokenNotIdentical, TokenNotEqual) : first;
    case u'%':
        return either(u'=', TokenModAssign, first);
    case u'&':
        return take(u'&') ? TokenLogicalAnd : either(u'=', TokenAndAssign, first);
    case u'*':
        return either(u'=', TokenMulAssign, first);
    case u'+':
        return take(u'+') ? TokenIncrement : either(u'=', TokenAddAssign, first);
    case u'-':
        return take(u'-') ? TokenDecrement : either(u'=', TokenSubAssign, first);
    case u'<':
        return take(u'<') ? either(u'=', TokenShlAssign, TokenShl) : either(u'=', TokenLessEqual, first);
    case u'=':
        return take(u'=') ? either(u'=', TokenIdentical, TokenEqual) : first;
    case u'>':
        if (!take(u'>')) {
            return either(u'=', TokenGreaterEqual, first);
        }
        return take(u'>') ? either(u'=', TokenUshrAssign, TokenUshr) : either(u'=', TokenShrAssign, TokenShr);
    case u'^':
        return either(u'=', TokenXorAssign, first);
    case u'|':
        return take(u'|') ? TokenLogicalOr : either(u'=', TokenOrAssign, first);
    default:
        raise(QStringLiteral("unknown character '%1'").arg(QChar(first)));
    }
}

std::int32_t ESLexer::scanWord(const char16_t* start) {
    while (at_ != end_ && isNamePart(*at_)) {
        ++at_;
    }
    const std::int32_t kind = wordKind(start, static_cast<std::size_t>(at_ - start));
    if (kind == TokenIdentifier) {
        atom_ = intern(QStringView(start, at_ - start));
    }
    return kind;
}

std::int32_t ESLexer::scanNumber() {
    number_ = scope_->addNumber(readNumberLiteral(at_, end_));
    return TokenNumber;
}

std::int32_t ESLexer::scanString(char16_t quote) {
    const char16_t* start = at_; // of the characters that text_ doesn't hold yet
    text_.clear();
    for (;;) {
        if (at_ == end_) {
            raise(QStringLiteral("end of file in string constant"));
        }
        const char16_t c = *at_;
        if (c == u'\n' || c == u'\r') {
            raise(QStringLiteral("newline in string constant"));
        }
        if (c == quote) {
            break;
        }
        if (c == u'\\') {
            text_.append(start, at_);
            ++at_;
            readEscape();
            start = at_;
        } else {
            ++at_;
        }
    }
    if (text_.empty()) {
        atom_ = intern(QStringView(start, at_ - start));
    } else {
        text_.append(start, at_);
        atom_ = intern(QStringView(text_));
    }
    ++at_;
    return TokenString;
}

// Behind a backslash. At the end of the text nothing is added: the string then misses its end.
void ESLexer::readEscape() {
    if (at_ == end_) {
        return;
    }
    const char16_t c = *at_++;
    switch (c) {
    case u'u':
        text_ += readHex(4);
        break;
    case u'x':
        text_ += readHex(2);
        break;
    case u'b':
        text_ += u'\b';
        break;
    case u'f':
        text_ += u'\f';
        break;
    case u'n':
        text_ += u'\n';
        break;
    case u't':
        text_ += u'\t';
        break;
    case u'r':
        text_ += u'\r';
        break;
    default:
        text_ += isOctalDigit(c) ? readOctal(c) : c;
        break;
    }
}

char16_t ESLexer::readHex(int digits) {
    unsigned value = 0;
    for (int i = 0; i < digits; ++i) {
        if (at_ == end_ || !isHexDigit(*at_)) {
            raise(QStringLiteral("malformed hex escape sequence"));
        }
        value = value * 16 + digitValue(*at_++);
    }
    return static_cast<char16_t>(value);
}

// Up to three digits, as long as the value stays below 256.
char16_t ESLexer::readOctal(char16_t first) {
    unsigned value = digitValue(first);
    if (at_ != end_ && isOctalDigit(*at_)) {
        value = value * 8 + digitValue(*at_++);
        if (value <= 31 && at_ != end_ && isOctalDigit(*at_)) {
            value = value * 8 + digitValue(*at_++);
        }
    }
    return static_cast<char16_t>(value);
}

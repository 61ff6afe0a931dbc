#include "check/hints.h"

#include <algorithm>
#include <iterator>

namespace {

// The tokens around a fault.
struct Place {
    const ScriptToken* found;   // the one that the compiler didn't expect
    const ScriptToken* before;  // null at the beginning of the text
    const ScriptToken* earlier; // in front of that one, or null
    const ScriptToken* behind;  // null at the end
    bool joined;                // nothing stands between the first two
    const QString& message;

    bool isFound(std::int32_t kind) const { return found->kind == kind; }
    bool isFoundWord(QStringView word) const { return isWord(found, word); }
    bool isBefore(std::int32_t kind) const { return before != nullptr && before->kind == kind; }
    bool isBehind(std::int32_t kind) const { return behind != nullptr && behind->kind == kind; }
    bool isBeforeWord(QStringView word) const { return isWord(before, word); }
    bool expected(QStringView what) const { return message.startsWith(what); }

private:
    static bool isWord(const ScriptToken* token, QStringView word) {
        return token != nullptr && token->kind == TokenIdentifier && token->atom->view() == word;
    }
};

constexpr QStringView expression = u"expected an expression";
constexpr QStringView identifier = u"expected an identifier";

bool isReserved(std::int32_t kind) {
    return std::any_of(std::begin(tokenTable), std::end(tokenTable), [kind](const ESTokenRow& row) {
        return row.kind == kind && row.role != ESTokenRole::Named;
    });
}

struct Hint {
    bool (*fits)(const Place&);
    const char* text;
};

// The first that fits is given.
constexpr Hint hints[] = {
    {[](const Place& p) { return p.isFound(TokenIdentical) || p.isFound(TokenNotIdentical); },
     "write == or !=; they convert, so compare typeof as well where that matters"},
    {[](const Place& p) { return p.isFound('>') && p.isBefore('='); },
     "there are no arrow functions: write function (x) { return ...; }"},
    {[](const Place& p) { return p.isFound(')') && p.isBefore('(') && p.isBehind('='); },
     "there are no arrow functions: write function () { return ...; }"},
    {[](const Place& p) {
         return p.isFound(TokenConst) ||
                (p.isBeforeWord(u"let") && (p.isFound(TokenIdentifier) || p.isFound('{')));
     },
     "variables are declared with var"},
    {[](const Place& p) { return p.isFound(TokenIn); },
     "there is no operator in: write object.hasOwnProperty(name)"},
    {[](const Place& p) { return p.isFoundWord(u"instanceof"); },
     "there is no operator instanceof: write Class.prototype.isPrototypeOf(value)"},
    {[](const Place& p) { return p.isFoundWord(u"of"); },
     "there is no loop over values: count an index up to the length"},
    {[](const Place& p) { return p.expected(expression) && (p.isFound('/') || p.isFound(TokenDivAssign)); },
     "there are no regular expressions: search with indexOf, or lib/text.js"},
    {[](const Place& p) {
         return p.expected(expression) && (p.isFound(TokenClass) || p.isFound(TokenSuper));
     },
     "there are no classes: write a function and give its prototype the methods"},
    {[](const Place& p) { return p.isFound(TokenImport) || p.isFound(TokenExport); },
     "there are no modules: files of one run share their global variables; name each with -load"},
    {[](const Place& p) {
         return p.isBeforeWord(u"async") || p.isBeforeWord(u"await") || p.isBeforeWord(u"yield");
     },
     "nothing is asynchronous: a call returns when its work is done"},
    {[](const Place& p) { return p.isBefore(TokenCatch); },
     "catch needs a name in parentheses; besides, nothing of a try statement ever runs"},
    {[](const Place& p) { return p.isBefore(TokenDo); }, "the body of do must be a block in braces"},
    {[](const Place& p) {
         return p.expected(u"expected :") && (p.isBeforeWord(u"get") || p.isBeforeWord(u"set"));
     },
     "there are no getters and setters: write functions"},
    {[](const Place& p) { return p.expected(u"expected :") && p.isFound('('); },
     "write name: function () { ... }"},
    {[](const Place& p) {
         return p.expected(u"expected :") && (p.isFound(',') || p.isFound('}')) && p.earlier != nullptr &&
                (p.earlier->kind == '{' || p.earlier->kind == ',');
     },
     "each name in an object needs its value: write {name: name}"},
    {[](const Place& p) {
         return p.expected(u"expected ,") && p.isFound('=') && p.isBefore(TokenIdentifier);
     },
     "parameters have no default: test for undefined in the function"},
    {[](const Place& p) {
         return p.expected(identifier) && (p.isFound('[') || (p.isFound('{') && p.isBehind(TokenIdentifier)));
     },
     "nothing is taken apart in one go: read each part by itself"},
    {[](const Place& p) { return p.isFound('.') && (p.isBefore('.') || p.isBehind('.')); },
     "there is no spread or rest (...): pass an array"},
    {[](const Place& p) { return p.isFound('*') && p.isBefore('*'); },
     "there is no **: write Math.pow(x, y)"},
    {[](const Place& p) { return p.isBefore('?') && (p.isFound('?') || p.isFound('.')); },
     "there is no ?? and no ?.: compare with undefined"},
    {[](const Place& p) {
         return (p.isFound('=') && (p.isBefore(TokenLogicalOr) || p.isBefore(TokenLogicalAnd))) ||
                (p.isFound(TokenMulAssign) && p.isBefore('*'));
     },
     "there is no such assignment: write the operation in full"},
    {[](const Place& p) { return p.isFound(TokenNumber) && p.isBefore(TokenNumber) && p.joined; },
     "a number that begins with 0 is octal"},
    {[](const Place& p) { return p.isFound(TokenIdentifier) && p.isBefore(TokenNumber) && p.joined; },
     "numbers are decimal, or hexadecimal with 0x, and have neither 0b nor _ nor a letter behind them"},
    {[](const Place& p) { return p.expected(identifier) && p.isBefore('.') && isReserved(p.found->kind); },
     "this is a reserved word: write object[\"word\"]"},
    {[](const Place& p) { return p.expected(u"number, string") && isReserved(p.found->kind); },
     "this is a reserved word: write it in quotes"},
    {[](const Place& p) {
         return (p.expected(identifier) || p.isFound(TokenEnum) || p.isFound(TokenDebugger)) &&
                isReserved(p.found->kind);
     },
     "this is a reserved word"},
};

// A character that begins no token, or a string without its end.
const char* hintForCharacter(const Script& script, const QString& message) {
    if (message.endsWith(u"in string constant")) {
        return "a string ends on its line: write \\n, and join the pieces with +";
    }
    if (!message.startsWith(u"unknown character")) {
        return nullptr;
    }
    const qsizetype at = script.lexer.offset() - 1;
    const QChar character = script.text.at(at);
    if (character == u'`') {
        return "there are no templates: join texts with +";
    }
    if (character == u'#' && at == 0) {
        return "there is no #! line: run a file with quorvane -load";
    }
    if (at == 0 && script.text.startsWith(QStringLiteral("\u00EF\u00BB\u00BF"))) {
        return "the file begins with a byte-order mark: save it without";
    }
    return character.unicode() >= 0x80 ? "characters beyond ASCII stand only in strings and comments"
                                       : nullptr;
}

} // namespace

QString syntaxHint(const Script& script, const QString& message) {
    const std::vector<ScriptToken>& tokens = script.tokens;
    std::size_t i = 0;
    while (i < tokens.size() && tokens[i].end != script.lexer.offset()) {
        ++i;
    }
    if (i == tokens.size()) {
        return QString::fromLatin1(hintForCharacter(script, message));
    }
    const auto at = [&](std::size_t index) { return index < tokens.size() ? &tokens[index] : nullptr; };
    const bool joined = i > 0 && !script.text.at(tokens[i - 1].end).isSpace();
    const Place place = {at(i), at(i - 1), at(i - 2), at(i + 1), joined, message};
    for (const Hint& hint : hints) {
        if (hint.fits(place)) {
            return QString::fromLatin1(hint.text);
        }
    }
    return {};
}

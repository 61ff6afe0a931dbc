#include "elf/arm_demangle.h"

#include "elf/demangle.h"
#include "elf/name_cursor.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace {

constexpr int maxDepth = 256; // of types within types

class Cursor : public NameCursor {
public:
    using NameCursor::NameCursor;

    // One or more digits. False, with nothing read, when there is none or the number is out of all bounds.
    bool takeNumber(std::size_t& number) {
        std::size_t length = 0;
        number = 0;
        while (length < rest_.size() && isDigit(rest_[length])) {
            number = number * 10 + static_cast<std::size_t>(rest_[length] - '0');
            if (number > maxDemangledLength) {
                return false;
            }
            ++length;
        }
        rest_.remove_prefix(length);
        return length != 0;
    }
    // One digit, or several with an underscore behind them.
    bool takeCount(std::size_t& count) {
        if (!isDigit(peek())) {
            return false;
        }
        Cursor several = *this;
        if (several.takeNumber(count) && several.take('_')) {
            *this = several;
            return true;
        }
        count = static_cast<std::size_t>(peek() - '0');
        rest_.remove_prefix(1);
        return true;
    }
    // Exactly this many characters.
    bool takeText(std::size_t length, std::string_view& text) {
        if (length > rest_.size()) {
            return false;
        }
        text = rest_.substr(0, length);
        rest_.remove_prefix(length);
        return true;
    }
};

struct Code {
    std::string_view code;
    std::string_view text;
};

constexpr std::array operators = std::to_array<Code>({
    {"nw", " new"}, {"dl", " delete"}, {"vn", " new []"}, {"vd", " delete []"}, {"as", "="},   {"eq", "=="},
    {"ne", "!="},   {"lt", "<"},       {"gt", ">"},       {"le", "<="},         {"ge", ">="},  {"pl", "+"},
    {"mi", "-"},    {"ml", "*"},       {"dv", "/"},       {"md", "%"},          {"er", "^"},   {"ad", "&"},
    {"or", "|"},    {"co", "~"},       {"nt", "!"},       {"aa", "&&"},         {"oo", "||"},  {"ls", "<<"},
    {"rs", ">>"},   {"pp", "++"},      {"mm", "--"},      {"cl", "()"},         {"vc", "[]"},  {"rf", "->"},
    {"rm", "->*"},  {"cm", ", "},      {"sz", "sizeof "}, {"apl", "+="},        {"ami", "-="}, {"amu", "*="},
    {"aml", "*="},  {"adv", "/="},     {"amd", "%="},     {"aer", "^="},        {"aad", "&="}, {"aor", "|="},
    {"als", "<<="}, {"ars", ">>="},
});

constexpr std::array fundamentals = std::to_array<Code>({
    {"v", "void"},
    {"c", "char"},
    {"s", "short"},
    {"i", "int"},
    {"l", "long"},
    {"x", "long long"},
    {"f", "float"},
    {"d", "double"},
    {"r", "long double"},
    {"b", "bool"},
    {"w", "wchar_t"},
});

template <std::size_t Size>
std::string_view textOf(const std::array<Code, Size>& codes, std::string_view code) {
    const auto found =
        std::find_if(codes.begin(), codes.end(), [&](const Code& c) { return c.code == code; });
    return found == codes.end() ? std::string_view() : found->text;
}

struct ClassName {
    std::string full;      // with its scopes and template arguments
    std::string shortName; // as its constructor is called
};

// What stands behind the base of a type. It grows at both ends, and a name may have thousands of steps.
class Declarator {
public:
    bool isEmpty() const { return before_.empty() && behind_.empty(); }
    bool isTooLong() const { return before_.size() + behind_.size() > maxDemangledLength; }
    void prepend(std::string_view text) { before_.append(text.rbegin(), text.rend()); }
    void append(std::string_view text) { behind_.append(text); }
    // What begins with * or & binds looser than what is to stand behind it.
    void wrapPointer() {
        if (!before_.empty() && (before_.back() == '*' || before_.back() == '&')) {
            wrap();
        }
    }
    void wrap() {
        prepend("(");
        append(")");
    }
    std::string text() const { return std::string(before_.rbegin(), before_.rend()) + behind_; }

private:
    std::string before_; // backwards
    std::string behind_;
};

// Every function reads one thing and returns false, with the cursor anywhere, when it isn't there.
class ArmParser {
public:
    bool name(std::string_view mangled, std::string& out);

private:
    bool localName(std::string_view mangled, std::string& out);
    bool virtualTable(std::string_view mangled, std::string& out);
    bool qualifiedAlone(std::string_view mangled, std::string& out);
    bool function(std::string_view mangled, std::string& out);
    bool templateAlone(std::string_view mangled, std::string& out);

    bool signature(Cursor cursor, std::string_view root, std::string& out);
    bool className(Cursor& cursor, ClassName& cls);
    bool qualifiedName(Cursor& cursor, ClassName& cls);
    bool classText(std::string_view text, ClassName& cls);
    bool templateArguments(std::string_view text, std::string& out);
    bool templateArgument(Cursor& cursor, std::string& out);
    bool arguments(Cursor& cursor, bool remember, std::string& out);
    bool repeated(Cursor& cursor, bool remember, std::string& out);
    bool type(Cursor& cursor, std::string& out);
    bool declarator(Cursor& cursor, Declarator& declared, bool& more);
    bool memberPointer(Cursor& cursor, Declarator& declared);
    bool baseType(Cursor& cursor, std::string& out);

    std::vector<std::string> known_; // the arguments so far, which later ones refer to by number
    int depth_ = 0;
};

class DepthCount {
public:
    explicit DepthCount(int& depth) : depth_(depth) { ++depth_; }
    DepthCount(const DepthCount&) = delete;
    DepthCount& operator=(const DepthCount&) = delete;
    ~DepthCount() { --depth_; }

private:
    int& depth_;
};

bool tooLong(const std::string& text) { return text.size() > maxDemangledLength; }

bool ArmParser::name(std::string_view mangled, std::string& out) {
    return localName(mangled, out) || virtualTable(mangled, out) || qualifiedAlone(mangled, out) ||
           function(mangled, out) || templateAlone(mangled, out);
}

// A variable of an inner block: the number of the block, and the name.
bool ArmParser::localName(std::string_view mangled, std::string& out) {
    Cursor cursor(mangled);
    std::size_t block = 0;
    if (!cursor.take("__") || !cursor.takeNumber(block) || cursor.atEnd()) {
        return false;
    }
    out = cursor.rest();
    return true;
}

bool ArmParser::virtualTable(std::string_view mangled, std::string& out) {
    Cursor cursor(mangled);
    if (!cursor.take("__vtbl__")) {
        return false;
    }
    std::vector<std::string_view> tables; // of templates as well as they are
    do {
        std::size_t length = 0;
        if (!cursor.takeNumber(length) || !cursor.takeText(length, tables.emplace_back())) {
            return false;
        }
    } while (cursor.take("__"));
    out.clear();
    for (auto table = tables.rbegin(); table != tables.rend(); ++table) {
        out.append(out.empty() ? "" : "::").append(*table);
    }
    out += " virtual table";
    return cursor.atEnd();
}

bool ArmParser::qualifiedAlone(std::string_view mangled, std::string& out) {
    Cursor cursor(mangled);
    ClassName cls;
    if (!cursor.take("__") || cursor.peek() != 'Q' || !qualifiedName(cursor, cls) || !cursor.atEnd()) {
        return false;
    }
    out = cls.full;
    return true;
}

// The name ends at the first two underscores behind its beginning, or at the last two of a longer row. Behind
// an operator's own two the first ones count in any row.
bool ArmParser::function(std::string_view mangled, std::string& out) {
    const std::size_t row = mangled.find("__");
    std::size_t separator = std::min(mangled.find_first_not_of('_', row), mangled.size()) - 2;
    if (row == 0 && separator == 0) {
        separator = mangled.find("__", 2);
    }
    if (row == std::string_view::npos || separator == std::string_view::npos) {
        return false;
    }
    const std::string_view root = mangled.substr(0, separator);
    const Cursor rest(mangled.substr(separator + 2));
    Cursor target(root);
    std::string type;
    // Of what a conversion is to only the beginning needs to be a type.
    const bool isConversion = target.take("__op") && this->type(target, type);
    return signature(rest, isConversion ? "operator " + type : std::string(root), out);
}

bool ArmParser::templateAlone(std::string_view mangled, std::string& out) {
    ClassName cls;
    if (!classText(mangled, cls) || cls.full == mangled) {
        return false;
    }
    out = cls.full;
    return true;
}

bool ArmParser::signature(Cursor cursor, std::string_view root, std::string& out) {
    ClassName cls;
    const bool isMember = isDigit(cursor.peek()) || cursor.peek() == 'Q';
    if (isMember && !qualifiedName(cursor, cls)) {
        return false;
    }
    bool isConst = false;
    bool isVolatile = false;
    bool isStatic = false;
    for (bool more = true; more;) {
        more = false;
        for (const auto& [letter, flag] : {std::pair{'C', &isConst}, {'V', &isVolatile}, {'S', &isStatic}}) {
            if (cursor.take(letter)) {
                *flag = more = true;
            }
        }
    }
    std::string list;
    const bool isFunction = cursor.take('F');
    known_.clear();
    if ((isFunction && !arguments(cursor, true, list)) || !cursor.atEnd() || !(isMember || isFunction)) {
        return false;
    }

    out = isMember ? cls.full + "::" : std::string();
    if (root == "__ct" || root == "__dt") {
        if (!isMember) {
            return false;
        }
        out += root == "__dt" ? "~" + cls.shortName : cls.shortName;
    } else if (const auto op =
                   root.starts_with("__") ? textOf(operators, root.substr(2)) : std::string_view();
               !op.empty()) {
        out.append("operator").append(op);
    } else {
        out += root;
    }
    if (isFunction) {
        out += "(" + list + ")";
    }
    out.append(isStatic ? " static" : "")
        .append(isConst ? " const" : "")
        .append(isVolatile ? " volatile" : "");
    return true;
}

bool ArmParser::className(Cursor& cursor, ClassName& cls) {
    std::size_t length = 0;
    std::string_view text;
    return cursor.takeNumber(length) && length > 0 && cursor.takeText(length, text) &&
           !isDigit(text.front()) && classText(text, cls);
}

bool ArmParser::qualifiedName(Cursor& cursor, ClassName& cls) {
    if (!cursor.take('Q')) {
        return className(cursor, cls);
    }
    std::size_t count = 0;
    if (cursor.take('_')) {
        if (!cursor.takeNumber(count) || !cursor.take('_')) {
            return false;
        }
    } else if (isDigit(cursor.peek())) {
        count = static_cast<std::size_t>(cursor.peek() - '0');
        cursor.take(cursor.peek());
        cursor.take('_');
    }
    std::string full;
    for (std::size_t i = 0; i < count; ++i) {
        if (!className(cursor, cls)) {
            return false;
        }
        full.append(i == 0 ? "" : "::").append(cls.full);
    }
    cls.shortName = cls.full; // the scheme's own oddity: with scopes the arguments stay
    cls.full = full;
    return count > 0;
}

// A template class is written into the text of its name, and the length there must fit to the end.
bool ArmParser::classText(std::string_view text, ClassName& cls) {
    const std::size_t mark = text.find("__pt__");
    if (mark != std::string_view::npos && mark > 0) {
        Cursor cursor(text.substr(mark + 6));
        std::size_t length = 0;
        if (cursor.takeNumber(length) && cursor.rest().size() == length && cursor.take('_')) {
            std::string list;
            if (!templateArguments(cursor.rest(), list)) {
                return false;
            }
            cls.shortName = text.substr(0, mark);
            cls.full = cls.shortName + "<" + list + ">";
            return true;
        }
    }
    cls.shortName = text;
    cls.full = text;
    return true;
}

bool ArmParser::templateArguments(std::string_view text, std::string& out) {
    Cursor cursor(text);
    do {
        std::string argument;
        if (!templateArgument(cursor, argument)) {
            return false;
        }
        out.append(out.empty() ? "" : ",").append(argument);
    } while (!cursor.atEnd() && !tooLong(out));
    return cursor.atEnd();
}

// A type; or "L" and a number, with "X" and its type in front or without.
bool ArmParser::templateArgument(Cursor& cursor, std::string& out) {
    std::string kind;
    if (cursor.take('X')) {
        if (!type(cursor, kind) || cursor.peek() != 'L') {
            return false;
        }
        out = "(" + kind + ")";
    }
    if (!cursor.take('L')) {
        return type(cursor, out);
    }
    if (cursor.take('-')) {
        out += '-';
    } else {
        cursor.take('+');
    }
    const bool isNumber = isDigit(cursor.peek());
    for (; isDigit(cursor.peek()); cursor.take(cursor.peek())) {
        out += cursor.peek();
    }
    return isNumber;
}

// Up to the end of the list: an underscore in a nested one, the end of the name in the outermost.
bool ArmParser::arguments(Cursor& cursor, bool remember, std::string& out) {
    while (!cursor.atEnd() && cursor.peek() != '_' && cursor.peek() != 'e') {
        if (cursor.peek() == 'T' || cursor.peek() == 'N') {
            if (!repeated(cursor, remember, out)) {
                return false;
            }
            continue;
        }
        std::string argument;
        if (!type(cursor, argument)) {
            return false;
        }
        out.append(out.empty() ? "" : ", ").append(argument);
        if (remember) {
            known_.push_back(std::move(argument));
        }
        if (tooLong(out)) {
            return false;
        }
    }
    if (cursor.take('e')) {
        out.append(out.empty() ? "..." : ",...");
    } else if (out.empty()) {
        out = "void";
    }
    return true;
}

// "T" and the number of an earlier argument, or "N", how many of it, and the number.
bool ArmParser::repeated(Cursor& cursor, bool remember, std::string& out) {
    std::size_t count = 1;
    if (!cursor.take('T') && !(cursor.take('N') && cursor.takeCount(count))) {
        return false;
    }
    std::size_t number = 0;
    if (!(known_.size() >= 10 ? cursor.takeNumber(number) : cursor.takeCount(number)) || number < 1 ||
        number > known_.size()) {
        return false;
    }
    const std::string argument = known_[number - 1];
    for (std::size_t i = 0; i < count && !tooLong(out); ++i) {
        out.append(out.empty() ? "" : ", ").append(argument);
        if (remember) {
            known_.push_back(argument);
        }
    }
    return !tooLong(out);
}

bool ArmParser::type(Cursor& cursor, std::string& out) {
    const DepthCount inside(depth_);
    Declarator declared;
    if (depth_ > maxDepth) {
        return false;
    }
    for (bool more = true; more;) {
        if (!declarator(cursor, declared, more) || declared.isTooLong()) {
            return false;
        }
    }
    if (!baseType(cursor, out)) {
        return false;
    }
    if (!declared.isEmpty()) {
        out.append(" ").append(declared.text());
    }
    return true;
}

// One step from the outside of a type to its base; `more` becomes false where the base begins. Qualifiers
// inside of types aren't shown.
bool ArmParser::declarator(Cursor& cursor, Declarator& declared, bool& more) {
    if (cursor.take('C') || cursor.take('V')) {
        return true;
    }
    if (cursor.take('P')) {
        declared.prepend("*");
        return true;
    }
    if (cursor.take('R')) {
        declared.prepend("&");
        return true;
    }
    if (cursor.take('A')) {
        std::size_t size = 0;
        declared.wrapPointer();
        if (!cursor.takeNumber(size) || !cursor.take('_')) {
            return false;
        }
        declared.append("[" + std::to_string(size) + "]");
        return true;
    }
    if (cursor.take('F')) {
        std::string list;
        declared.wrapPointer();
        if (!arguments(cursor, false, list)) {
            return false;
        }
        declared.append("(" + list + ")");
        return cursor.take('_');
    }
    if (cursor.peek() == 'M' || cursor.peek() == 'O') {
        return memberPointer(cursor, declared);
    }
    more = false;
    return true;
}

// "M" with a class and a function, or "O" with a class alone for data.
bool ArmParser::memberPointer(Cursor& cursor, Declarator& declared) {
    const bool isFunction = cursor.take('M');
    if (!isFunction && !cursor.take('O')) {
        return false;
    }
    ClassName cls;
    std::size_t length = 0;
    std::string_view plain; // a class without scopes stays as it is, a template too
    if (cursor.peek() == 'Q' ? !qualifiedName(cursor, cls)
                             : !cursor.takeNumber(length) || !cursor.takeText(length, plain)) {
        return false;
    }
    declared.prepend(cls.full.append(plain).append("::"));
    declared.wrap();
    if (isFunction) {
        while (cursor.take('C') || cursor.take('V')) {
        }
        std::string list;
        if (!cursor.take('F') || !arguments(cursor, false, list)) {
            return false;
        }
        declared.append("(" + list + ")");
    }
    return cursor.take('_');
}

bool ArmParser::baseType(Cursor& cursor, std::string& out) {
    if (isDigit(cursor.peek()) || cursor.peek() == 'Q') {
        ClassName cls;
        if (!qualifiedName(cursor, cls)) {
            return false;
        }
        out = cls.full;
        return true;
    }
    const bool isUnsigned = cursor.take('U');
    const bool isSigned = !isUnsigned && cursor.take('S');
    std::string_view letter;
    if (!cursor.takeText(1, letter)) {
        return false;
    }
    const std::string_view base = textOf(fundamentals, letter);
    out.assign(isUnsigned ? "unsigned " : isSigned ? "signed " : "").append(base);
    return !base.empty();
}

} // namespace

std::optional<std::string> demangleArm(std::string_view name) {
    constexpr std::string_view destructors = "__std__";
    constexpr std::string_view constructors = "__sti__";
    std::string out;
    std::string_view rest = name;
    while (rest.starts_with(destructors) || rest.starts_with(constructors)) {
        out +=
            rest.starts_with(destructors) ? "global destructors keyed to " : "global constructors keyed to ";
        rest.remove_prefix(destructors.size());
    }
    std::string plain;
    if (ArmParser().name(rest, plain)) {
        out += plain;
    } else if (rest.size() == name.size()) {
        return std::nullopt;
    } else {
        out += rest;
    }
    if (tooLong(out)) {
        return std::nullopt;
    }
    return out;
}

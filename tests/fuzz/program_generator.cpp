#include "program_generator.h"

#include <utility>

namespace {

constexpr int mostDepth = 5;

constexpr const char* variables[] = {"a", "b", "c", "d", "f", "g", "o", "s", "v"};

constexpr const char* memberNames[] = {"x",           "y",        "n",       "length", "prototype",
                                       "constructor", "toString", "valueOf", "f",      "name",
                                       "message",     "0",        "1",       "callee"};

constexpr const char* binaryOperators[] = {"+",   "-", "*", "/",  "%",  "&",  "|",  "^",  "<<", ">>",
                                           ">>>", "<", ">", "<=", ">=", "==", "!=", "&&", "||"};

constexpr const char* assignments[] = {
    "=", "=", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^=", "<<=", ">>=", ">>>="};

constexpr const char* literals[] = {
    "0",    "1",          "2",   "3",        "-1",           "1.5",           "100",  "4294967295",
    "1e21", "0x7fffffff", "NaN", "Infinity", "undefined",    "null",          "true", "false",
    "''",   "'x'",        "'7'", "'length'", "'some words'", "'\\x00\\u1234'"};

constexpr const char* memberFunctions[] = {"toString",
                                           "valueOf",
                                           "hasOwnProperty",
                                           "isPrototypeOf",
                                           "propertyIsEnumerable",
                                           "concat",
                                           "join",
                                           "pop",
                                           "push",
                                           "reverse",
                                           "shift",
                                           "slice",
                                           "sort",
                                           "charAt",
                                           "charCodeAt",
                                           "indexOf",
                                           "lastIndexOf",
                                           "substring",
                                           "toLowerCase",
                                           "toUpperCase",
                                           "localeCompare",
                                           "toFixed",
                                           "toLocaleString"};

// Nothing that depends on the clock.
constexpr const char* functions[] = {"Math.abs",
                                     "Math.floor",
                                     "Math.max",
                                     "Math.min",
                                     "Math.pow",
                                     "Math.round",
                                     "Math.sqrt",
                                     "String",
                                     "Number",
                                     "Boolean",
                                     "Array",
                                     "Object",
                                     "Error",
                                     "isNaN",
                                     "isFinite",
                                     "String.fromCharCode",
                                     "new Array",
                                     "new Object",
                                     "new String",
                                     "new Number",
                                     "new Boolean",
                                     "new TypeError",
                                     "ElfFile.peekUint32",
                                     "ElfFile.pokeUint32",
                                     "ElfFile.peekBytes",
                                     "ElfFile.pokeBytes",
                                     "ElfFile.crc32",
                                     "TBSys.crc32"};

// show() prints what a value is, down to some depth, by the names that a loop over it finds.
constexpr char prelude[] =
    R"(var a = 1, b = 'b', c = [1, 2, 3], d = 0, s = 'text', v, o = {x: 1, y: 'y', n: {x: 2}};
function f(x, y) { return x; }
function g(x) { this.x = x; this.y = function () { return x; }; }
g.prototype.n = 5;
function show(x, depth) {
    if (typeof x != 'object' || x == null || depth > 2) { return typeof x + ' ' + (typeof x == 'function' ? '' : x); }
    var r = '{';
    for (var k in x) { if (k != 'constructor') { r += k + ': ' + show(x[k], depth + 1) + ', '; } }
    return r + '}';
}
)";

constexpr char epilogue[] = R"(
WScript.Echo(show(a, 0) + '\n'); WScript.Echo(show(b, 0) + '\n'); WScript.Echo(show(c, 0) + '\n');
WScript.Echo(show(d, 0) + '\n'); WScript.Echo(show(s, 0) + '\n'); WScript.Echo(show(v, 0) + '\n');
WScript.Echo(show(o, 0) + '\n'); WScript.Echo(show(f.x, 0) + '\n'); WScript.Echo(show(g.x, 0) + '\n');
)";

std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            result += '\\';
        }
        result += c == '\n' ? ' ' : c;
    }
    return result + '"';
}

} // namespace

std::string ProgramGenerator::program() {
    std::string program = prelude;
    while (!choices_.isEmpty()) {
        statement(mostDepth);
        // An error ends a text, and most statements have one; eval drops it.
        const std::string text = std::exchange(text_, std::string());
        program += choices_.oneIn(8) ? text : "eval(" + quoted(text) + ");\n";
    }
    return program + epilogue;
}

void ProgramGenerator::statement(int depth) {
    if (depth > 1 && choices_.oneIn(3)) {
        nestingStatement(depth - 1);
    } else {
        simpleStatement(depth);
    }
}

void ProgramGenerator::simpleStatement(int depth) {
    switch (choices_.below(8)) {
    case 0:
        text_ += "var " + name() + " = " + expression(depth - 1) + ";\n";
        break;
    case 1:
        text_ += "WScript.Echo(" + expression(depth - 1) + " + '\\n');\n";
        break;
    case 2:
        jump();
        break;
    case 3:
        text_ += call(depth - 1) + ";\n";
        break;
    case 4:
        text_ += place(depth - 1) + " = " + expression(depth - 1) + ";\n";
        break;
    case 5:
        text_ += evaluated(depth) + ";\n";
        break;
    default:
        text_ += "v = " + expression(depth) + ";\n";
    }
}

void ProgramGenerator::nestingStatement(int depth) {
    switch (choices_.below(8)) {
    case 0:
        text_ += "if (" + expression(depth) + ") ";
        block(depth);
        if (choices_.oneIn(2)) {
            text_ += "else ";
            block(depth);
        }
        break;
    case 1:
    case 2:
        loop(depth);
        break;
    case 3:
        forIn(depth);
        break;
    case 4:
        switchStatement(depth);
        break;
    case 5:
        text_ += "with (" + expression(depth) + ") ";
        block(depth);
        break;
    default:
        functionStatement(depth);
    }
}

void ProgramGenerator::block(int depth) {
    text_ += "{\n";
    for (std::uint32_t count = choices_.below(4); count > 0; --count) {
        statement(depth);
    }
    text_ += "}\n";
}

void ProgramGenerator::loop(int depth) {
    const std::string number = std::to_string(loops_++);
    const std::string counter = "i" + number;
    const std::string limit = std::to_string(choices_.below(12));
    labels_.push_back(choices_.oneIn(2) ? "L" + number : "");
    text_ += labels_.back().empty() ? "" : labels_.back() + ": ";
    switch (choices_.below(3)) {
    case 0:
        text_ += "for (var " + counter + " = 0; " + counter + " < " + limit + "; " + counter + "++) ";
        block(depth);
        break;
    case 1: // the counter is one of the program's places, so the loop may end otherwise
        text_ += "for (" + place(depth) + " = 0, " + counter + " = 0; " + counter + "++ < " + limit + "; " +
                 expression(depth) + ") ";
        block(depth);
        break;
    default:
        text_ += "do ";
        block(depth);
        text_ += "while (d++ < " + limit + ");\n";
    }
    labels_.pop_back();
}

void ProgramGenerator::forIn(int depth) {
    const std::string target = choices_.oneIn(2) ? "var " + name() : place(depth);
    text_ += "for (" + target + " in " + expression(depth) + ") ";
    labels_.emplace_back();
    block(depth);
    labels_.pop_back();
}

void ProgramGenerator::switchStatement(int depth) {
    text_ += "switch (" + expression(depth) + ") {\n";
    const std::uint32_t count = choices_.below(4);
    const std::uint32_t byDefault = choices_.below(5);
    for (std::uint32_t i = 0; i <= count; ++i) {
        text_ += i == byDefault ? "default: " : "case " + expression(1) + ": ";
        block(depth);
        text_ += choices_.oneIn(2) ? "break;\n" : "";
    }
    text_ += "}\n";
}

void ProgramGenerator::functionStatement(int depth) {
    const std::string called = pick({"f", "g", "h"});
    text_ += "function " + called + "(" + pick({"", "x", "x, y", "a, b, c", "x, x"}) + ") ";
    const std::vector<std::string> outerLoops = std::exchange(labels_, {});
    ++functions_;
    block(depth);
    --functions_;
    labels_ = outerLoops;
    if (choices_.oneIn(2)) {
        text_ += "v = " + called + "(" + arguments(depth) + ");\n";
    }
}

void ProgramGenerator::jump() {
    if (functions_ > 0 && choices_.oneIn(2)) {
        text_ += "return " + expression(2) + ";\n";
    } else if (!labels_.empty()) {
        text_ += "if (" + expression(2) + ") " + pick({"break ", "continue "}) +
                 labels_[choices_.below(labels_.size())] + ";\n";
    }
}

std::string ProgramGenerator::expression(int depth) {
    if (depth <= 0) {
        return choices_.oneIn(2) ? literal() : name();
    }
    switch (choices_.below(10)) {
    case 0:
        return literal();
    case 1:
    case 2:
        return place(depth - 1);
    case 3:
        return call(depth - 1);
    case 4:
        return nativeCall(depth - 1);
    case 5:
        return "(" + place(depth - 1) + " " + pick(assignments) + " " + expression(depth - 1) + ")";
    default:
        return operation(depth - 1);
    }
}

std::string ProgramGenerator::operation(int depth) {
    switch (choices_.below(12)) {
    case 0:
        return "(" + expression(depth) + " ? " + expression(depth) + " : " + expression(depth) + ")";
    case 1:
        return std::string("(") + pick({"-", "+", "~", "!", "typeof ", "void ", "delete "}) + place(depth) +
               ")";
    case 2:
        return "(" + place(depth) + pick({"++", "--"}) + ")";
    case 3:
        return std::string("(") + pick({"++", "--"}) + place(depth) + ")";
    case 4:
        return "[" + arguments(depth) + "]";
    case 5:
        return "{" + std::string(pick({"x", "y", "n", "toString", "valueOf", "0"})) + ": " +
               expression(depth) + ", f: " + functionExpression(depth) + "}";
    case 6:
        return functionExpression(depth);
    default:
        return "(" + expression(depth) + " " + pick(binaryOperators) + " " + expression(depth) + ")";
    }
}

std::string ProgramGenerator::literal() { return pick(literals); }

std::string ProgramGenerator::name() {
    const std::uint32_t kind = choices_.below(16);
    if (kind < std::size(variables)) {
        return variables[kind];
    }
    if (loops_ > 0 && kind == 15) {
        return "i" + std::to_string(loops_ - 1);
    }
    return functions_ > 0 ? pick({"x", "y", "x"}) : pick({"a", "o", "u"});
}

std::string ProgramGenerator::member() { return pick(memberNames); }

std::string ProgramGenerator::place(int depth) {
    switch (choices_.below(depth > 0 ? 6 : 3)) {
    case 0:
    case 1:
        return name();
    case 2: {
        const std::string chosen = member();
        const std::string base = choices_.oneIn(4) ? functions_ > 0 ? "arguments" : "this" : name();
        return chosen[0] >= '0' && chosen[0] <= '9' ? base + "[" + chosen + "]" : base + "." + chosen;
    }
    default:
        return name() + "[" + expression(depth - 1) + "]";
    }
}

std::string ProgramGenerator::call(int depth) {
    switch (choices_.below(5)) {
    case 0:
        return "(new " + std::string(pick({"f", "g", "h", "o.f"})) + "(" + arguments(depth) + "))";
    case 1:
        return name() + ".f(" + arguments(depth) + ")";
    case 2:
        return functionExpression(depth) + "(" + arguments(depth) + ")";
    case 3:
        return name() + "(" + arguments(depth) + ")";
    default:
        return std::string(pick({"f", "g", "show"})) + "(" + arguments(depth) + ")";
    }
}

std::string ProgramGenerator::nativeCall(int depth) {
    const std::string passed = "(" + arguments(depth) + ")";
    return choices_.oneIn(2) ? name() + "." + pick(memberFunctions) + passed
                             : "(" + (pick(functions) + passed) + ")";
}

std::string ProgramGenerator::arguments(int depth) {
    std::string result;
    for (std::uint32_t count = choices_.below(4); count > 0; --count) {
        result += (result.empty() ? "" : ", ") + expression(depth - 1);
    }
    return result;
}

std::string ProgramGenerator::functionExpression(int depth) {
    std::string outer = std::exchange(text_, std::string());
    const std::vector<std::string> outerLoops = std::exchange(labels_, {});
    ++functions_;
    block(depth - 1);
    text_.insert(2, "return " + expression(depth - 1) + ";\n");
    --functions_;
    labels_ = outerLoops;
    return "(function (" + std::string(pick({"", "x", "x, y"})) + ") " +
           std::exchange(text_, std::move(outer)) + ")";
}

std::string ProgramGenerator::evaluated(int depth) {
    std::string outer = std::exchange(text_, std::string());
    const std::vector<std::string> outerLoops = std::exchange(labels_, {});
    const int outerFunctions = std::exchange(functions_, 0);
    if (depth > 1) {
        statement(depth - 2);
    }
    functions_ = outerFunctions;
    labels_ = outerLoops;
    return "v = eval(" + quoted(std::exchange(text_, std::move(outer))) + ")";
}

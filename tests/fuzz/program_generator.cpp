#include "program_generator.h"

#include "fuzz_target.h"

#include <map>
#include <sstream>
#include <utility>
#include <vector>

namespace {

// Rules with their alternatives, parted by " @ "; $name is another rule, or one of the generator's own:
//   $body    a block of a function         $local   a name within a function, else a global one
//   $jump    out of a loop or a function   $quoted  a statement as a string literal
// An alternative with # is a loop, and # its number. Below some depth an `expr` is a `leaf`, a `statement` is
// `simple`.
constexpr char grammar[] = R"(statement: $simple @ $simple @ $simple @ $nesting
simple: var $name = $expr; @ WScript.Echo($expr + '\n'); @ $jump @ $call; @ $place = $expr; @ v = eval($quoted);
 @ v = $expr; @ $name = $int; @ $place $assign $expr;
nesting: if ($expr) $block @ if ($test) $block else $block @ $loop @ $loop @ switch ($expr) { $cases }
 @ with ($expr) $block @ function $f($params) $body @ function $f($params) $body v = $f($args);
block: { } @ { $statement } @ { $statement $statement } @ { $statement $statement $statement }
loop: L#: for (var i# = 0; i# < $limit; i#++) $block @ L#: for ($place = 0, i# = 0; i#++ < $limit; $expr) $block
 @ L#: do $block while (d++ < $limit); @ i# = $limit; L#: while (i#-- > 0) $block @ L#: for ($place in $expr) $block
 @ L#: for (var $name in $expr) $block
limit: 0 @ 1 @ 2 @ 3 @ 5 @ 8 @ 11
cases: $case @ $case $case @ $case default: $block $case @ default: $block break; $case @ $case $case $case default: $block
case: case $expr: $block @ case $int & 3: $block break;
params:  @ x @ x, y @ a, b, c @ x, x
args:  @ $expr @ $expr, $expr @ $expr, $expr, $expr
f: f @ g @ h
expr: $literal @ $place @ $place @ $call @ $native @ ($place $assign $expr) @ $operation @ $operation @ $operation @ $int
leaf: $literal @ $name
operation: ($expr ? $expr : $expr) @ ($unary$place) @ ($place$step) @ ($step$place) @ [$args] @ $function
 @ {$key: $expr, f: $function} @ ($expr $binary $expr) @ ($expr $binary $expr) @ ($expr $binary $expr)
 @ ($int $binary $int) @ ($text + $expr) @ ($test)
int: ($expr | 0) @ ($expr & 15) @ ($int + $int | 0) @ $name @ $small
small: 0 @ 1 @ 2 @ 7 @ 65537
test: $int $compare $int @ $expr && $expr @ $text $compare $text @ !$expr
text: s @ 'x' @ ('' + $expr) @ (s + $int).slice($small) @ c.join('-')
unary: - @ + @ ~ @ ! @ typeof  @ void  @ delete 
step: ++ @ --
compare: < @ <= @ > @ >= @ == @ !=
binary: + @ - @ * @ / @ % @ & @ | @ ^ @ << @ >> @ >>> @ && @ || @ $compare @ $compare
assign: = @ += @ -= @ *= @ /= @ %= @ &= @ |= @ ^= @ <<= @ >>= @ >>>=
literal: $small @ 3 @ -1 @ 1.5 @ 100 @ 4294967295 @ 1e21 @ 0x7fffffff @ NaN @ Infinity @ undefined @ null @ true
 @ false @ '' @ 'x' @ '7' @ 'length' @ 'some words' @ '\x00\u1234'
name: a @ b @ c @ d @ f @ g @ o @ s @ v @ $local @ $local @ $local
global: a @ o @ u
place: $name @ $name @ $name.$member @ $self.$member @ c[$small] @ $name[$expr] @ $name[$expr]
self: this @ arguments @ o @ c
member: x @ y @ n @ length @ prototype @ constructor @ toString @ valueOf @ f @ name @ message @ callee
key: x @ y @ n @ toString @ valueOf @ 0
call: (new $f($args)) @ (new o.f($args)) @ $name.f($args) @ $function($args) @ $name($args) @ $f($args) @ show($args)
function: (function ($params) $body)
native: $name.$method($args) @ ($callable($args))
method: toString @ valueOf @ hasOwnProperty @ isPrototypeOf @ propertyIsEnumerable @ concat @ join @ pop @ push
 @ reverse @ shift @ slice @ sort @ charAt @ charCodeAt @ indexOf @ lastIndexOf @ substring @ toLowerCase @ toUpperCase
 @ localeCompare @ toFixed @ toLocaleString
callable: Math.abs @ Math.floor @ Math.max @ Math.min @ Math.pow @ Math.round @ Math.sqrt @ String @ Number @ Boolean
 @ Array @ Object @ Error @ isNaN @ isFinite @ String.fromCharCode @ new Array @ new Object @ new String @ new Number
 @ new Boolean @ new TypeError @ ElfFile.peekUint32 @ ElfFile.pokeUint32 @ ElfFile.peekBytes @ ElfFile.pokeBytes
 @ ElfFile.crc32 @ TBSys.crc32
)";

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
var all = [a, b, c, d, s, v, o, f.x, g.x];
for (var at = 0; at < 9; at++) { WScript.Echo(show(all[at], 0) + '\n'); }
)";

using Rules = std::map<std::string, std::vector<std::string>>;

Rules readGrammar() {
    Rules rules;
    std::istringstream lines{std::string(grammar)};
    std::string rule;
    for (std::string line; std::getline(lines, line);) {
        if (line[0] != ' ') {
            rule = line.substr(0, line.find(':'));
            line.replace(0, rule.size() + 1, " @");
        }
        for (std::size_t at = 0, end = 0; end != std::string::npos; at = end) {
            end = line.find(" @ ", at + 3);
            rules[rule].push_back(line.substr(at + 3, end - at - 3));
        }
    }
    return rules;
}

std::string quoted(const std::string& text) {
    std::string result = "\"";
    for (const char c : text) {
        result += c == '"' || c == '\\' ? std::string("\\") + c : std::string(1, c);
    }
    return result + '"';
}

class Generator {
public:
    explicit Generator(std::span<const std::uint8_t> bytes) : choices_(bytes) {}

    std::string program() {
        std::string program = prelude;
        while (!choices_.isEmpty()) {
            // An error ends a text, and most statements have one; eval drops it.
            const std::string text = made("statement", mostDepth);
            program += choices_.oneIn(8) ? text + "\n" : "eval(" + quoted(text) + ");\n";
        }
        return program + epilogue;
    }

private:
    static constexpr int mostDepth = 5;

    std::string made(std::string rule, int depth) {
        static const std::map<std::string, std::string> atDepth = {
            {"expr", "leaf"}, {"statement", "simple"}, {"int", "small"}};
        if (const auto shallow = atDepth.find(rule); shallow != atDepth.end()) {
            rule = depth-- > 0 ? rule : shallow->second;
        } else if (rule == "local") {
            rule = functions_ > 0 ? choices_.oneIn(2) ? "y" : "x" : "global";
        } else if (rule == "jump") {
            return jump(depth);
        } else if (rule == "body" || rule == "quoted") {
            return apart(rule, depth);
        }
        static const Rules rules = readGrammar();
        const auto found = rules.find(rule);
        // The names of a function's parameters stand for themselves.
        return found == rules.end() ? rule
                                    : filled(found->second[choices_.below(found->second.size())], depth);
    }

    std::string filled(const std::string& form, int depth) {
        const bool isLoop = form.find('#') != std::string::npos;
        if (isLoop) {
            loops_.push_back(loopsMade_++);
        }
        std::string text;
        for (std::size_t at = 0; at < form.size();) {
            const char c = form[at++];
            if (c == '$') {
                const std::size_t end =
                    std::min(form.find_first_not_of("abcdefghijklmnopqrstuvwxyz_", at), form.size());
                text += made(form.substr(at, end - at), depth);
                at = end;
            } else {
                text += c == '#' ? std::to_string(loops_.back()) : std::string(1, c);
            }
        }
        if (isLoop) {
            loops_.pop_back();
        }
        return text;
    }

    std::string jump(int depth) {
        if (functions_ > 0 && choices_.oneIn(2)) {
            return "return " + made("expr", depth) + ";";
        }
        if (loops_.empty()) {
            return ";";
        }
        const std::string label = " L" + std::to_string(loops_[choices_.below(loops_.size())]);
        return "if (" + made("expr", depth) + ") " + (choices_.oneIn(2) ? "break" : "continue") +
               (choices_.oneIn(2) ? label : "") + ";";
    }

    // What no loop of this place reaches into: the statements of a function, and those of a text. Each
    // quoting doubles the escapes of the texts within, so they nest a few times only.
    std::string apart(const std::string& rule, int depth) {
        const std::vector<int> outerLoops = std::exchange(loops_, {});
        const int outerFunctions = std::exchange(functions_, rule == "body" ? functions_ + 1 : 0);
        const std::string text = rule == "body"
                                     ? "{ " + made("block", depth) + " return " + made("expr", depth) + "; }"
                                     : quoted(depth > 0 ? made("statement", depth - 1) : "");
        functions_ = outerFunctions;
        loops_ = outerLoops;
        return text;
    }

    Choices choices_;
    std::vector<int> loops_; // the numbers of those around this place within its function
    int loopsMade_ = 0;
    int functions_ = 0; // around this place
};

} // namespace

std::string generateProgram(std::span<const std::uint8_t> bytes) { return Generator(bytes).program(); }

#!/usr/bin/env python3
"""Both sides of every limit, and recursion without end on a native stack of 1 MiB.

usage: check_limits.py PROGRAM...

Each program runs all of the generated scripts. A run that goes too far ends with its message and status 1.
"""
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1]))
from support import finish, run

INTERNAL = "Internal error detected\n"
SMALL_STACK = 1 << 10  # KiB
TINY_STACK = 1 << 8


def error(text):
    return "error: line 1: %s\n" % text


def numbered(pattern, count):
    return "".join(pattern.replace("#", str(i)) for i in range(count))


# What each limit bounds: a script of size n, the largest n that runs, and what the next one ends with. Each
# script prints n, or something that it could only reach with all of its parts in place.
EDGES = [
    # A level keeps its argument, the sum's left side and the place of the result: 3 of 1024 entries.
    ("calls of a function that keeps three values",
     lambda n: "function f(n) { return n == 0 ? 0 : 1 + f(n - 1); } WScript.Echo(f(%d));" % n, 340, INTERNAL),
    ("calls of one that keeps nothing",
     lambda n: "var n = 0; function f() { if (++n < %d) f(); } f(); WScript.Echo(n);" % n, 1024, INTERNAL),
    ("numbers of a function",
     lambda n: "var x;" + numbered("x=#.5;", n) + "WScript.Echo(x + .5);", 65536, INTERNAL),
    ("variables of a function",
     lambda n: "function f() { var %s; return s%d + 1; } WScript.Echo(f());"
     % (numbered("s#=#,", n)[:-1], n - 1), 65536, INTERNAL),
    ("functions of a run",
     lambda n: numbered("function f() { return #; }", n) + "WScript.Echo(f() + 1);", 65536, INTERNAL),
    ("cases within a jump's reach",
     lambda n: "switch (%d) {%s WScript.Echo(%d); }" % (n - 1, numbered("case #:", n), n), 8190, INTERNAL),
    ("parentheses",
     lambda n: "WScript.Echo(" + "(" * n + str(n) + ")" * n + ");", 997, error("nesting too deep")),
    ("blocks", lambda n: "{" * n + "WScript.Echo(%d);" % n + "}" * n, 997, error("nesting too deep")),
    ("functions within each other",
     lambda n: "function f(){" * n + "}" * n + "WScript.Echo(%d)" % n, 1000, error("nesting too deep")),
    ("the characters of a text",
     lambda n: "var s = 'abcd'; for (var i = 2; i < 29; ++i) s += s; var t = s.substring(0, %d - s.length);"
               "s += t; WScript.Echo(s.length);" % n, (1 << 30) - 1, error("length too large")),
]

MOVING_EDGES = [
    ("names of a run",
     lambda n: "var o = {};" + numbered("o.a#=#;", n) + "WScript.Echo(o.a%d + 1);" % (n - 1)),
    ("global variables",
     lambda n: "var " + numbered("s#=#,", n)[:-1] + "; WScript.Echo(s%d + 1);" % (n - 1)),
]

ENDLESS = {
    "a call": "function f() { f(); } f();",
    "new": "function f() { return new f(); } new f();",
    "valueOf": "var o = new Object(); o.valueOf = function () { return o + 1; }; o + 1;",
    "toString": "var o = new Object(); o.toString = function () { return '' + this; }; '' + o;",
    "two arrays within each other": "var a = [1], b = [a]; a[1] = b; a.concat(b).join(a);",
    "a comparator": "function c(x, y) { return [x, y].sort(c); } [2, 1].sort(c);",
    "eval": "function f() { eval('f()'); } f();",
    "eval of its own text": "var t = 'eval(t)'; eval(t);",
    "load": "load('endless.js');",
    "a name that is looked up with": "function f(o) { with (o) { f({a: o}); } } f({});",
    "a for-in over what it makes": "function f(o) { for (var n in o) { f({n: o}); } } f({a: 1});",
    "everything in turn":
        "var o = {}; o.valueOf = function () { return eval('[2, 1].sort(c)'); };"
        "function c(x, y) { return new f(x); } function f(x) { this.x = Function('return o + 1')(); } o + 1;",
}

# Texts that nest without end; what doesn't end is no program either.
NESTED = ["(", "[", "{", "f(", "a[", "({a:", "!", "new ", "a=", "0?", "1+(", "if(0)", "L:", "while(0)",
          "function f(){", "x=function(){", "switch(0){case 0:", "with(0)", "for(;;)", "do{", "1?(", "typeof "]


class Checker:
    def __init__(self, program, folder):
        self.program, self.folder, self.faults, self.runs = program, folder, [], 0

    def expect(self, what, words, expected, stack=8 << 10):
        self.runs += 1
        done = run(["prlimit", "--stack=%d" % (stack << 10), self.program, *words], self.folder, 60)
        if done[:3] != expected:
            self.faults.append("%s: %s: %.300r; expected is %r" % (self.program.name, what, done[:3], expected))
        return done

    def expect_script(self, what, text, *expected, stack=8 << 10):
        (self.folder / "endless.js").write_text(text, "latin-1")
        return self.expect(what, ["-load", "endless.js"], expected, stack)

    def edges(self):
        for what, make, largest, message in EDGES:
            self.expect_script("%d %s" % (largest, what), make(largest), 0, str(largest), "")
            self.expect_script("%d %s" % (largest + 1, what), make(largest + 1), 1, "", message)
        # The system's own names and globals count too, so the limit lies somewhat lower.
        for what, make in MOVING_EDGES:
            self.expect_script("too many " + what, make(65600), 1, "", INTERNAL)
            self.expect_script("many " + what, make(65000), 0, "65000", "")

    def endless(self):
        for what, text in ENDLESS.items():
            self.expect_script("endless recursion of " + what, text, 1, "", INTERNAL, stack=SMALL_STACK)
        for text in NESTED:
            self.expect_script("%s without end" % text, text * 300000, 1, "", error("nesting too deep"))
        # eval drops the error, and the script goes on.
        evals = "".join("eval('%s');" % (text * 5000) for text in NESTED)
        self.expect_script("all of them in eval", evals + "WScript.Echo(1);", 0, "1", "")
        # With too little native stack for what the text may nest, the run ends; eval must not hide that.
        for text in NESTED[:6]:
            self.expect_script("%s with a small stack" % text, "eval('%s');" % (text * 900), 1, "", INTERNAL,
                               stack=TINY_STACK)

    def words(self):
        for count, expected in ((256, (0, "1", "")), (257, (1, "", "%s: error: too many words in indirect file words(1)\n" % self.program))):
            (self.folder / "words").write_text("; " * (count - 1) + "WScript.Echo(1)\n")
            self.expect("%d words of a line" % count, ["@words"], expected)
        # A line of 1023 characters is one; what is beyond them is a word of its own.
        for length, expected in ((1023, (0, "1", "")), (1024, (1, "", error("newline in string constant")))):
            (self.folder / "line").write_text("WScript.Echo(1);'%s'\n" % ("x" * (length - 18)))
            self.expect("a line of %d characters" % length, ["@line"], expected)


def main():
    faults, runs = [], 0
    for program in sys.argv[1:]:
        with tempfile.TemporaryDirectory(prefix="quorvane-") as folder:
            checker = Checker(Path(program).resolve(), Path(folder))
            checker.edges()
            checker.endless()
            checker.words()
            faults += checker.faults
            runs += checker.runs
    finish(faults if runs else ["no program"], "%d runs" % runs)


if __name__ == "__main__":
    main()

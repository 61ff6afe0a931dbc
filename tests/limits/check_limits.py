#!/usr/bin/env python3
"""Both sides of every limit, and recursion without end on a native stack of 1 MiB.

usage: check_limits.py PROGRAM...

Each program runs all of the generated scripts. A run that goes too far ends with its message and status 1.
"""
import re
import resource
import subprocess
import sys
import tempfile
from pathlib import Path

INTERNAL = "Internal error detected\n"
SMALL_STACK = 1 << 20
TINY_STACK = 1 << 18


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

# The names and global variables that the system itself brings take part of these two, so only the order of
# size is looked at; on either side of the limit a run works wholly or is refused.
MOVING_EDGES = [
    ("names of a run",
     lambda n: "var o = {};" + numbered("o.a#=#;", n) + "WScript.Echo(o.a%d + 1);" % (n - 1)),
    ("global variables",
     lambda n: "var " + numbered("s#=#,", n)[:-1] + "; WScript.Echo(s%d + 1);" % (n - 1)),
]

ENDLESS = {
    "a call": "function f() { f(); } f();",
    "a call with arguments and locals": "function f(a, b) { var c = f(b, a); return c; } f(1, 2);",
    "a method": "var o = {f: function () { return this.f(); }}; o.f();",
    "new": "function f() { return new f(); } new f();",
    "valueOf": "var o = new Object(); o.valueOf = function () { return o + 1; }; o + 1;",
    "toString": "var o = new Object(); o.toString = function () { return '' + this; }; '' + o;",
    "toString of keys": "var o = {}; o.toString = function () { return o[o]; }; o[o];",
    "an array within itself": "var a = [1]; a[1] = a; '' + a;",
    "two arrays within each other": "var a = [1], b = [a]; a[1] = b; a.concat(b).join(a);",
    "a comparator": "function c(x, y) { return [x, y].sort(c); } [2, 1].sort(c);",
    "eval": "function f() { eval('f()'); } f();",
    "eval of its own text": "var t = 'eval(t)'; eval(t);",
    "load": "load('endless.js');",
    "a made function": "function f() { Function('f()')(); } f();",
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
        self.program, self.folder, self.faults, self.runs = program, folder, 0, 0

    def run(self, words, stack=8 << 20):
        self.runs += 1
        result = subprocess.run([self.program] + words, cwd=self.folder, stdin=subprocess.DEVNULL,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60, check=False,
                                preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_STACK, (stack, stack)))
        return result.returncode, result.stdout.decode("latin-1"), result.stderr.decode("latin-1")

    def run_script(self, text, stack=8 << 20):
        (self.folder / "endless.js").write_text(text, "latin-1")
        return self.run(["-load", "endless.js"], stack)

    def expect(self, what, outcome, status, out, err):
        if outcome != (status, out, err):
            self.faults += 1
            print("%s: %s: status %d, prints %.200r and %.200r; expected are %d, %r and %r"
                  % ((self.program.name, what) + outcome + (status, out, err)))

    def edges(self):
        for what, make, largest, message in EDGES:
            self.expect("%d %s" % (largest, what), self.run_script(make(largest)), 0, str(largest), "")
            self.expect("%d %s" % (largest + 1, what), self.run_script(make(largest + 1)), 1, "", message)
        for what, make in MOVING_EDGES:
            low, high = 65000, 65600
            while high - low > 1:
                middle = (low + high) // 2
                outcome = self.run_script(make(middle))
                runs = outcome[0] == 0
                self.expect("%d %s" % (middle, what), outcome, *((0, str(middle), "") if runs else (1, "", INTERNAL)))
                low, high = (middle, high) if runs else (low, middle)
            if low == 65000 or high == 65600:
                self.faults += 1
                print("%s: no limit on %s between 65000 and 65600" % (self.program.name, what))

    def endless(self):
        for what, text in ENDLESS.items():
            self.expect("endless recursion of " + what, self.run_script(text, SMALL_STACK), 1, "", INTERNAL)
        for text in NESTED:
            self.expect("%s without end" % text, self.run_script(text * 300000), 1, "", error("nesting too deep"))
        # eval drops the error, and the script goes on.
        evals = "".join("eval('%s');" % (text * 5000) for text in NESTED)
        self.expect("all of them in eval", self.run_script(evals + "WScript.Echo(1);"), 0, "1", "")
        # With too little native stack for what the text may nest, the run ends; eval must not hide that.
        for text in NESTED[:6]:
            self.expect("%s with a small stack" % text,
                        self.run_script("eval('%s');" % (text * 900), TINY_STACK), 1, "", INTERNAL)

    def words(self):
        (self.folder / "self").write_text("@self\n")
        self.expect("a file that names itself", self.run(["@self"]), 1, "",
                    "%s: error: too many indirect files\n" % self.program)
        for depth, ends in ((100, True), (101, False)):
            for i in range(1, depth):
                (self.folder / ("%d" % i)).write_text("@%d\n" % (i + 1))
            (self.folder / str(depth)).write_text("WScript.Echo(%d)\n" % depth)
            self.expect("%d indirect files" % depth, self.run(["@1"]),
                        *((0, str(depth), "") if ends
                          else (1, "", "%s: error: too many indirect files\n" % self.program)))
        for count, ends in ((256, True), (257, False)):
            (self.folder / "words").write_text("; " * (count - 1) + "WScript.Echo(1)\n")
            self.expect("%d words of a line" % count, self.run(["@words"]),
                        *((0, "1", "") if ends
                          else (1, "", "%s: error: too many words in indirect file words(1)\n" % self.program)))
        # A line of 1023 characters is one; what is beyond them is a word of its own.
        for length, ends in ((1023, True), (1024, False)):
            (self.folder / "line").write_text("WScript.Echo(1);'%s'\n" % ("x" * (length - 18)))
            self.expect("a line of %d characters" % length, self.run(["@line"]),
                        *((0, "1", "") if ends else (1, "", error("newline in string constant"))))


def main():
    checkers = []
    for program in sys.argv[1:]:
        with tempfile.TemporaryDirectory(prefix="quorvane-") as folder:
            checker = Checker(Path(program).resolve(), Path(folder))
            checker.edges()
            checker.endless()
            checker.words()
            checkers.append(checker)
            print("%s: %d runs, %d faults" % (checker.program.name, checker.runs, checker.faults))
    sys.exit(1 if not checkers or any(checker.faults for checker in checkers) else 0)


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
"""Checks that what a script costs grows in proportion to what it does.

usage: growth.py [--quorvane PATH] [--short] [case ...]

Every case runs at three sizes (with --short at the two smaller ones, each a quarter as large), and its cost is that
of the process less that of an empty script, in instructions of user code: counted by perf where the machine lets it,
else by valgrind. Between two sizes the cost may grow as n log n does, with generous slack: 6 times for 4 times the
work; 8 times for a sort, which is a Shell sort because scripts see the order of comparisons. A step that takes more
is marked, and makes the exit status 1. A case is named by a part of its name.
"""
import argparse
import math
import os
import sys
import tempfile
from pathlib import Path

import firmware

SLACK = math.log(6, 4)  # the exponent that makes 6 of 4
SORT_SLACK = 1.5

# Each has `n` before it, and prints nothing. Name, smallest size, step, text.
SCRIPTS = [
    ("array in order", 50000, 4, "var a = []; for (var i = 0; i < n; i++) a[i] = i; for (i = 0; i < n; i++) a[i];"),
    ("array backwards", 50000, 4, "var a = []; for (var i = n; i-- > 0;) a[i] = i; for (i = n; i-- > 0;) a[i];"),
    ("array with gaps", 20000, 4,
     "var a = []; for (var i = 0; i < n; i++) a[i * 3] = i; for (i = 0; i < 3 * n; i++) a[i];"),
    ("array outside in", 20000, 4, "var a = []; for (var i = 0; i < n; i++) { a[i] = i; a[2 * n - i] = i; }"),
    ("array cut from end", 50000, 4,
     "var a = []; for (var i = 0; i < n; i++) a[i] = i; for (; i > 0; i--) a.length = i;"),
    ("queue of 10,000", 50000, 4,
     "var a = []; for (var i = 0; i < 10000; i++) a.push(i); for (i = 0; i < n; i++) { a.push(i); a.shift(); }"),
    ("queue filled, drained", 50000, 4,
     "var a = []; for (var i = 0; i < n; i++) a.push(i); while (a.length) a.shift();"),
    ("stack", 50000, 4, "var a = []; for (var i = 0; i < n; i++) a.push(i); while (a.length) a.pop();"),
    ("concat, slice, reverse", 50000, 4,
     "var a = []; for (var i = 0; i < n; i++) a[i] = i; a.concat(a).slice(1).reverse().join(',');"),
    ("sort numbers, comparator", 5000, 4,
     "var a = [], x = 1; for (var i = 0; i < n; i++) a[i] = x = (x * 69069 + 5) & 0x7FFFFFFF;"
     "a.sort(function (p, q) { return p - q; });"),
    ("sort sorted", 5000, 4,
     "var a = []; for (var i = 0; i < n; i++) a[i] = i; a.sort(function (p, q) { return p - q; });"),
    ("sort reversed", 5000, 4,
     "var a = []; for (var i = 0; i < n; i++) a[i] = n - i; a.sort(function (p, q) { return p - q; });"),
    ("sort organ pipe", 5000, 4,
     "var a = []; for (var i = 0; i < n; i++) a[i] = i < n / 2 ? i : n - i;"
     "a.sort(function (p, q) { return p - q; });"),
    ("sort few values", 5000, 4,
     "var a = []; for (var i = 0; i < n; i++) a[i] = i % 3; a.sort(function (p, q) { return p - q; });"),
    ("sort texts", 5000, 4,
     "var a = [], x = 1; for (var i = 0; i < n; i++) a[i] = 'k' + (x = (x * 69069 + 5) & 0x7FFFFFFF); a.sort();"),
    ("map", 1000, 16, "var m = {}; for (var i = 0; i < n; i++) m['k' + i] = i; for (i = 0; i < n; i++) m['k' + i];"),
    ("map, missing keys", 1000, 16,
     "var m = {}; for (var i = 0; i < n; i++) m['k' + i] = i; for (i = 0; i < n; i++) m['x' + i];"),
    ("map, deletes in order", 1000, 16,
     "var m = {}; for (var i = 0; i < n; i++) m['k' + i] = i; for (i = 0; i < n; i++) delete m['k' + i];"),
    ("map, deletes backwards", 1000, 16,
     "var m = {}; for (var i = 0; i < n; i++) m['k' + i] = i; for (i = n; i-- > 0;) delete m['k' + i];"),
    ("map, keys come and go", 1000, 16,
     "var m = {}; for (var i = 0; i < n; i++) { m['k' + i] = i; if (i > 500) delete m['k' + (i - 500)]; }"),
    ("map, same key again", 1000, 16, "var m = {a: 1, b: 2}; for (var i = 0; i < n; i++) { m.c = i; delete m.c; }"),
    ("global comes and goes", 1000, 16, "var g = this; for (var i = 0; i < n; i++) { g.c = i; delete g.c; }"),
    ("for in", 10000, 4, "var m = {}; for (var i = 0; i < n; i++) m['k' + i] = i; for (var k in m) m[k];"),
    ("for in with delete", 10000, 4,
     "var m = {}; for (var i = 0; i < n; i++) m['k' + i] = i; for (var k in m) delete m[k];"),
    ("for in of an array", 10000, 4, "var a = []; for (var i = 0; i < n; i++) a[i] = i; for (var k in a) a[k];"),
    ("for in, first only", 10000, 4,
     "var o; for (var i = 0; i < n; i++) { o = {a: 1, b: 2}; for (var k in o) break; }"),
    ("s += x", 1 << 16, 4, "var s = ''; for (var i = 0; i < n; i++) s += '0123456789abcdef'; s.charAt(0);"),
    ("s = s + x", 1 << 16, 4, "var s = ''; for (var i = 0; i < n; i++) s = s + '0123456789abcdef'; s.charAt(0);"),
    ("s = x + s", 1 << 16, 4, "var s = ''; for (var i = 0; i < n; i++) s = '0123456789abcdef' + s; s.charAt(0);"),
    ("s += x, read each time", 1 << 14, 4,
     "var s = ''; for (var i = 0; i < n; i++) { s += '0123456789abcdef'; s.charAt(i); s.length; }"),
    ("o.s += x, read each time", 1 << 14, 4,
     "var o = {s: ''}; for (var i = 0; i < n; i++) { o.s += '0123456789abcdef'; o.s.charCodeAt(i); }"),
    ("s = x + s, looked at", 1 << 14, 4, "var s = ''; for (var i = 0; i < n; i++) { s = 'x' + s; s.charAt(0); }"),
    ("search that nearly fits", 1 << 14, 4,
     "var s = 'a', t; while (s.length < n) s += s; t = s.substring(n / 2); s.indexOf(t + 'b') + s.lastIndexOf('b' + t);"),
    ("s += x + y", 1 << 14, 4, "var s = ''; for (var i = 0; i < n; i++) s += i + ', '; s.indexOf('x');"),
    ("two texts by turns", 1 << 14, 4,
     "var s = '', t = ''; for (var i = 0; i < n; i++) { s += 'ab'; t += s.charAt(i); }"),
    ("text cut in front", 1 << 14, 4,
     "var s = ''; for (var i = 0; i < n; i++) s += 'ab'; while (s.length) s = s.substring(1);"),
    ("text cut in front, as key", 250, 4,
     "var s = '', m = {}; for (var i = 0; i < n; i++) s += 'ab,'; for (i = 0; i < n; i++) m[s.charAt(i)] = i;"),
    ("characters of a text", 1 << 14, 4,
     "var s = ''; for (var i = 0; i < n; i++) s += 'ab'; for (i = 0; i < n; i++) { s.charCodeAt(i); s.charAt(i); }"),
    ("join", 1 << 14, 4, "var a = []; for (var i = 0; i < n; i++) a[i] = 'line ' + i; a.join('\\n');"),
    ("text through a file", 1 << 14, 4,
     "var s = ''; for (var i = 0; i < n; i++) s += 'line\\n';"
     "TBSys.writeStringToFile('text', s); TBSys.readStringFromFile('text');"),
    ("prototype chain, depth", 4000, 4,
     "var o = {}; o.last = 1; for (var i = 0; i < n; i++) { function F() {} F.prototype = o; o = new F; }"
     "for (i = 0; i < 100; i++) { o.last; o.missing; }"),
    ("objects", 20000, 4, "var a = []; for (var i = 0; i < n; i++) a[i] = {x: i, y: 'a', z: []};"),
    ("objects of a class", 20000, 4,
     "function P(x) { this.x = x; this.y = 1; } var a = []; for (var i = 0; i < n; i++) a[i] = new P(i);"),
    ("closures", 20000, 4,
     "function make(i) { return function () { return i; }; } var a = [];"
     "for (var i = 0; i < n; i++) a[i] = make(i); for (i = 0; i < n; i++) a[i]();"),
    ("linked list", 20000, 4,
     "var l = null; for (var i = 0; i < n; i++) l = {next: l}; for (var c = 0; l; l = l.next) c++;"),
    ("eval of small texts", 5000, 4, "for (var i = 0; i < n; i++) eval('var v' + (i % 10) + ' = ' + i);"),
    ("functions made of texts", 2000, 4, "for (var i = 0; i < n; i++) (new Function('a', 'return a + ' + i))(i);"),
    ("bytes to a number", 20000, 4,
     "var b = []; for (var i = 0; i < n; i++) b[i] = i & 255; for (i = 0; i < 20; i++) TBSys.crc32(b);"),
]


def bytes_of(unit, size, join=""):
    """A text of about `size` bytes out of unit(0), unit(1), ..."""
    parts, length, i = [], 0, 0
    while length < size:
        parts.append(unit(i))
        length += len(parts[-1]) + len(join)
        i += 1
    return join.join(parts)


# Texts for the compiler: name, step sizes in KiB, and what makes the text.
TEXTS = [
    ("text: statements", (64, 256, 1024), lambda size: bytes_of(lambda i: "v%d = v%d + 1;\n" % (i % 50, i % 37), size)),
    ("text: globals declared", (64, 256, 512), lambda size: bytes_of(lambda i: "var g%d;\n" % i, size)),
    ("text: functions", (64, 256, 1024),
     lambda size: bytes_of(lambda i: "function f%d(a, b) { var c = a * b; return c + %d; }\n" % (i, i % 100), size)),
    ("text: locals of a function", (16, 64, 256),
     lambda size: "function f() {" + bytes_of(lambda i: "var l%d = %d;\n" % (i, i % 10), size) + "}"),
    ("text: one long sum", (16, 64, 256),
     lambda size: "function f(a) { return " + bytes_of(lambda i: "a", size, " + ") + "; }"),
    ("text: one long text sum", (64, 256, 1024),
     lambda size: "var s = " + bytes_of(lambda i: "'line\\n'", size, " +\n") + ";"),
    ("text: one array literal", (16, 64, 256),
     lambda size: "var a = [" + bytes_of(lambda i: str(i % 256), size, ", ") + "];"),
    ("text: one table of objects", (16, 64, 256),
     lambda size: "var a = [" + bytes_of(lambda i: "{k: %d}" % (i % 256), size, ", ") + "];"),
    ("text: one table of steps", (16, 64, 256),
     lambda size: "var i = 0, a = [" + bytes_of(lambda i: "i++, i", size, ", ") + "];"),
    ("text: one table of choices", (2, 8, 32),
     lambda size: "var c, a = [" + bytes_of(lambda i: "c ? c : 1", size, ", ") + "];"),
    ("text: one object literal", (64, 256, 512),
     lambda size: "var o = {" + bytes_of(lambda i: "k%d: %d" % (i, i % 256), size, ", ") + "};"),
    ("text: numbers, all different", (64, 256, 512), lambda size: bytes_of(lambda i: "x = %d.5;\n" % i, size)),
    ("text: one switch", (4, 16, 64),
     lambda size: "function f(x) { switch (x) {" + bytes_of(lambda i: "case %d:\n" % i, size) + "} }"),
    ("text: else if", (2, 8, 32),
     lambda size: "function f(x) {" + bytes_of(lambda i: "if (x == %d) x = 1;" % i, size, " else ") + "}"),
    ("text: comments", (64, 256, 1024), lambda size: bytes_of(lambda i: "/* nothing */ // here\n", size)),
    ("text: one string", (64, 256, 1024), lambda size: "var s = '" + bytes_of(lambda i: "\\x41\\n", size) + "';"),
]

LOOKUP = ("ElfFile.load('image'); var missing = 0; for (var i = 0; i < %d; i++) "
          "if (ElfFile.symbolValue(%s) == undefined) missing++; WScript.Echo(missing);")
# Images: name, sizes, names of the symbols, the expression that is looked up, how many are missing.
IMAGES = [
    ("image: each symbol", (1000, 16000, 256000), firmware.cpp_names, firmware.CPP_TEXT, lambda n: 0),
    ("image: missing names", (1000, 16000, 256000), firmware.cpp_names,
     firmware.CPP_TEXT.replace("const", "volatile"), lambda n: n),
    ("image: plain names", (1000, 16000, 256000), lambda n: ("symbol_%d" % i for i in range(n)), "'symbol_' + i",
     lambda n: 0),
    ("image: overloads of one name", (1000, 16000, 256000),
     lambda n: ("_ZN5board8transferE" + "P" * (1 + i % 40) + "N3mod%d%sE" % (len("t%d" % i), "t%d" % i)
                for i in range(n)),
     "'board::transfer(mod::x' + i + ')'", lambda n: n),
    ("image: one name n times", (1000, 16000, 256000), lambda n: ("_ZN5board8transferEv" for i in range(n)),
     "'board::transfer()' + (i & 1 ? '' : 'x')", lambda n: n // 2),
]


def cases(folder):
    """Yields (name, unit sizes, function that prepares a size and gives (script text, output))."""
    for name, smallest, step, text in SCRIPTS:
        yield name, [smallest, smallest * step, smallest * step * step], \
            lambda n, text=text: ("var n = %d; %s" % (n, text), "")
    # Straight code, so that a program may be as long as this.
    yield "globals", [4000, 16000, 64000], lambda n: (
        "".join("g%d = %d;\n" % (i, i % 10) for i in range(n))
        + "var all = this; (function () { for (var i = 0; i < %d; i++) all['g' + i]; })();" % n, "")
    for name, sizes, make in TEXTS:
        yield name, [size * 1024 for size in sizes], lambda n, make=make: (make(n), "")
    for name, sizes, names, asked, missing in IMAGES:
        def prepare(n, names=names, asked=asked, missing=missing):
            firmware.write_image(folder / "image", names(n))
            return LOOKUP % (n, asked), str(missing(n))
        yield name, list(sizes), prepare
    for name, script, segments in (
            ("image: CRC over n segments", "for (var i = 0; i < 100; i++) ElfFile.crc32(%#x, 16 * n)", lambda n: n),
            ("image: bytes of n segments",
             "for (var i = 0; i < n; i++) ElfFile.peekBytes(%#x + 16 * i, 8)", lambda n: n),
            # Of as many segments as images have: a word is looked for in one after the other.
            ("image: words of 16 segments",
             "for (var i = 0; i < n; i++) ElfFile.pokeUint32(%#x + 16 * (i & 15), i)", lambda n: 16)):
        def prepare_segments(n, script=script, segments=segments):
            firmware.write_image(folder / "image", [],
                                 [(firmware.CODE_BASE + 16 * i, b"segment.") for i in range(segments(n))])
            return "var n = %d; ElfFile.load('image'); " % n + script % firmware.CODE_BASE, ""
        yield name, [1000, 4000, 16000], prepare_segments


class Meter:
    def __init__(self, program, folder):
        self.command, self.folder, self.empty = [program, "-load"], folder, 0
        self.empty = self.cost("", "")

    def cost(self, script, expected):
        """In millions of instructions, without what an empty script costs."""
        path = self.folder / "case.js"
        path.write_text(script)
        counted = firmware.instructions(self.command + [str(path)], expected)
        return counted / 1e6 - self.empty


def report(case, sizes, costs, floor):
    """Prints a line; tells whether the costs are in proportion. What is below the floor divides nothing."""
    slack = SORT_SLACK if case.startswith("sort") else SLACK
    steps = [(max(b, floor) / max(a, floor), (m / n) ** slack)
             for a, b, n, m in zip(costs, costs[1:], sizes, sizes[1:])]
    good = all(ratio <= limit for ratio, limit in steps)
    print("%-30s %28s  %31s  %s%s" % (case, " ".join("%8d" % n for n in sizes),
                                     " ".join("%10.2f" % c for c in costs),
                                     " ".join("%6.2f" % ratio for ratio, _ in steps),
                                     "" if good else "  <-- grows too fast"), flush=True)
    return good


def main():
    parser = argparse.ArgumentParser(usage=__doc__.split("\n\n")[1][7:])
    parser.add_argument("--quorvane", metavar="PATH", default="build/release/quorvane")
    parser.add_argument("--short", action="store_true", help="two smaller sizes")
    parser.add_argument("case", nargs="*")
    options = parser.parse_args()
    program = str(Path(options.quorvane).resolve())

    too_fast = []
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        os.chdir(folder)  # where the scripts find their files
        meter = Meter(program, folder)
        print("cost in millions of instructions beyond the %.2f of an empty script\n" % meter.empty)
        print("%-30s %28s  %31s  %s" % ("", "n", "cost", "ratios"))
        for case, sizes, prepare in cases(folder):
            if options.case and not any(part in case for part in options.case):
                continue
            if options.short:
                sizes = [size // 4 for size in sizes[:2]]
            if not report(case, sizes, [meter.cost(*prepare(n)) for n in sizes], meter.empty / 10):
                too_fast.append(case)
    print("\n%s" % ("all in proportion" if not too_fast else "too fast: " + ", ".join(too_fast)))
    sys.exit(1 if too_fast else 0)


if __name__ == "__main__":
    main()

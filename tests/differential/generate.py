"""Makes programs from the part of the language where the dialect and ECMAScript agree.

usage: generate.py SEED COUNT   prints one script of COUNT functions, each printing one line

What the dialect does otherwise is left out here, and only here:
  - numbers that aren't whole of 32 bits print six digits and convert otherwise: every result goes through |0
  - the empty text is NaN, NaN is true, null isn't undefined: no such value meets a condition or an operator
  - operands of > and >=, assignments and calls run in another order: operands have no side effects
  - `for in` shows inherited members, and names in the order of their first use: names are filtered and sorted
  - join passes over undefined elements, separator and all: lists hold none
  - `new` takes the whole chain behind it: nothing is called on a new object at once
  - no try, throw, ===, regular expressions, getters, parseInt, split, replace, arguments, call, apply
"""
import random
import sys


class Program:
    def __init__(self, seed):
        self.random = random.Random(seed)
        self.lines = []
        self.depth = 1
        self.numbers = ["a", "b", "c"]
        self.loops = 0
        self.inner = 0

    def pick(self, *choices):
        return self.random.choice(choices)

    def say(self, text):
        self.lines.append("    " * self.depth + text)

    def number(self, depth=3):
        """A whole number of 32 bits, without side effects."""
        r = self.random
        if depth == 0 or r.random() < 0.2:
            return self.pick(*self.numbers, str(r.choice([0, 1, 2, 3, 4, 5, 7, 10, 100, 255, 1000, 65537])),
                             "(list[%s] | 0)" % self.index(), "o.n", "o.deep.m", "g")
        x, y = self.number(depth - 1), self.number(depth - 1)
        kind = r.randrange(13)
        if kind < 3:
            return "(%s %s %s | 0)" % (x, self.pick("+", "-"), y)
        if kind == 3:
            return "((%s & 4095) * (%s & 4095) | 0)" % (x, y)
        if kind == 4:
            return "((%s) %s ((%s & 63) + 1) | 0)" % (x, self.pick("%", "/"), y)
        if kind < 7:
            return "(%s %s %s)" % (x, self.pick("&", "|", "^"), y)
        if kind == 7:
            return "(%s %s (%s & 15))" % (x, self.pick("<<", ">>"), y)
        if kind == 8:
            return "(%s >>> 5)" % x
        if kind == 9:
            return "(%s ? %s : %s)" % (self.condition(depth - 1), x, y)
        if kind == 10:
            return self.pick("(-%s | 0)", "(~%s)", "(+%s)") % x
        if kind == 11:
            return "%s.length" % self.text(depth - 1)
        return self.pick("Math.abs(%s)", "twice(%s)", "o.method(%s)", "add(%s, 3)", "next(%s)") % x if depth > 1 else x

    def index(self):
        return self.pick("0", "1", "2", "(%s & 3)" % self.pick(*self.numbers))

    def condition(self, depth=2):
        if depth == 0 or self.random.random() < 0.5:
            op = self.pick("<", "<=", ">", ">=", "==", "!=")
            return "%s %s %s" % (self.number(1), op, self.number(1))
        kind = self.random.randrange(5)
        if kind == 0:
            return "!(%s)" % self.condition(depth - 1)
        if kind == 1:
            return "%s %s %s" % (self.text(1), self.pick("==", "!=", "<", "<="), self.text(1))
        return "(%s %s %s)" % (self.condition(depth - 1), self.pick("&&", "||"), self.condition(depth - 1))

    def text(self, depth=2):
        if depth == 0 or self.random.random() < 0.3:
            return self.pick("s", "t", '"x"', '"some words"', "o.name", '("" + %s)' % self.number(1))
        kind = self.random.randrange(5)
        if kind == 0:
            return "(%s + %s)" % (self.text(depth - 1), self.number(1))
        if kind == 1:
            return "(%s + %s)" % (self.text(depth - 1), self.text(depth - 1))
        if kind == 2:
            return "(%s + '.').%s(%s & 7)" % (self.text(depth - 1), self.pick("charAt", "substring", "slice"), self.number(1))
        if kind == 3:
            return "(%s ? %s : %s)" % (self.condition(1), self.text(depth - 1), self.text(depth - 1))
        return "list.join(%s)" % self.pick('"-"', '","')

    def statement(self, depth, loop=None):
        r = self.random
        kind = r.randrange(17)
        if kind < 3:
            self.say("%s = %s;" % (self.pick("a", "b", "c"), self.number()))
        elif kind == 3:
            self.say("%s %s %s;" % (self.pick("a", "b", "o.n", "list[%s]" % self.index(), "o.deep.m", 'o["n"]', "g"),
                                    self.pick("+=", "-=", "^=", "|=", "&="), self.number(2)))
            self.say("a |= 0; b |= 0; o.n |= 0; o.deep.m |= 0; g |= 0;")
            self.say("for (var z = 0; z < 4; z++) list[z] |= 0;")
        elif kind == 4:
            step = self.pick("%s++", "++%s", "%s--", "--%s") % self.pick("a", "c", "o.n", "list[1]", "o.deep.m", "g")
            self.say(self.pick("%s;" % step, "b = %s;" % step))
        elif kind == 5:
            self.say("%s = (%s).slice(0, 40);" % (self.pick("s", "t", "o.name"), self.text(3)))
        elif kind == 6:
            self.say("list[%s] = %s;" % (self.index(), self.number(2)))
        elif kind == 7:
            self.say(self.pick("c = hidden();", "c = counter() | 0;", "list.push(%s); c = list.pop();" % self.number(1),
                               "c = list.slice(1).length;", "list.reverse();"))
        elif kind == 8 and depth > 0:
            self.say("if (%s) {" % self.condition())
            self.block(depth - 1, loop)
            if r.random() < 0.5:
                self.say("} else {")
                self.block(depth - 1, loop)
            self.say("}")
        elif kind in (9, 10) and depth > 0:
            self.loop(depth)
        elif kind == 11 and depth > 0:
            self.switch(depth, loop)
        elif kind == 12 and loop is not None:
            self.say("if (%s) %s;" % (self.condition(1), self.pick("break", "continue", "break " + loop, "continue " + loop)))
        elif kind == 13 and depth > 0:
            self.function(depth)
        elif kind == 14 and depth > 0:
            self.say("with (o) { n = %s; deep.m = n + 1 | 0; }" % self.pick("n + 1 | 0", "a", "(n & 7)"))
        elif kind == 15:
            self.say("o = {n: %s, name: %s, deep: {m: %s}, method: o.method};"
                     % (self.number(1), self.text(1), self.number(1)))
        else:
            self.say("var pair = new Pair(%s, %s); b = pair.sum() | 0;" % (self.number(1), self.number(1)))

    def block(self, depth, loop):
        self.depth += 1
        for _ in range(self.random.randrange(1, 4)):
            self.statement(depth, loop)
        self.depth -= 1

    def loop(self, depth):
        self.loops += 1
        n, label = "i%d" % self.loops, "L%d" % self.loops
        limit = self.random.randrange(2, 9)
        self.numbers.append("(%s | 0)" % n)  # undefined before its loop
        kind = self.random.randrange(3)
        if kind == 0:
            self.say("%s: for (var %s = 0; %s < %d; %s++) {" % (label, n, n, limit, n))
        elif kind == 1:
            self.say("var %s = %d;" % (n, limit))
            self.say("%s: while (%s-- > 0) {" % (label, n))
        else:
            self.say("var %s = 0;" % n)
            self.say("%s: do {" % label)
            self.say("    if (%s > %d) break;" % (n, limit))
            self.say("    %s++;" % n)
        self.block(depth - 1, label)
        self.say("} while (%s < %d);" % (n, limit) if kind == 2 else "}")

    def switch(self, depth, loop):
        self.say("switch (%s) {" % self.pick("a & 3", "s.length & 3", "list.length & 1", "(g & 1) + 1"))
        clauses = ["case %d:" % i for i in range(self.random.randrange(1, 5))] + ["default:"]
        self.random.shuffle(clauses)
        for clause in clauses:
            self.say(clause)
            self.block(depth - 1, None)
            if self.random.random() < 0.7:
                self.say("    break;")
        self.say("}")

    def function(self, depth):
        self.inner += 1
        f = "f%d" % self.inner
        self.say("function %s(x, y) {" % f)
        self.depth += 1
        self.say("var v = (x + %d) | 0;" % self.random.randrange(50))
        if self.random.random() < 0.6:
            self.say("captured = (captured + v + a) | 0;")
        if self.random.random() < 0.4:
            self.say("if (x > 0 && x < 20) return %s(x - 1, v);" % f)
        self.say("return (v ^ (y | 0)) | 0;")
        self.depth -= 1
        self.say("}")
        self.say("a = %s(%s, %s);" % (f, self.number(1), self.number(1)))
        self.say("b = %s(%s, %s, %s);" % (f, self.number(1), self.number(1), self.number(1)))


def program(name, seed):
    p = Program(seed)
    p.lines.append("function %s() {" % name)
    for text in ["var a = %d, b = %d, c = 1, captured = 0;" % (p.random.randrange(100), p.random.randrange(100)),
                 "var s = 'start', t = 'end';", "var list = [%d, 2, 3, 4];" % p.random.randrange(50),
                 "var o = {n: 7, name: 'o', deep: {m: 9}, method: function (x) { return (x + this.n) | 0; }};",
                 "var counter = makeCounter(%d);" % p.random.randrange(9),
                 "function hidden() { captured = captured + 1; return captured + c | 0; }", "g = 5;"]:
        p.say(text)
    for _ in range(p.random.randrange(4, 14)):
        p.statement(3)
    p.say("return a + ' ' + b + ' ' + c + ' ' + captured + ' ' + g + ' ' + o.n + ' ' + o.deep.m + ' ' + list.join()")
    p.say("    + ' ' + names(o) + ' ' + s + ' ' + t + ' ' + o.name;")
    p.lines.append("}")
    return "\n".join(p.lines)


PRELUDE = """var g = 0;
function twice(x) { return (x * 2) | 0; }
function add(x, y) { return (x + y) | 0; }
var counts = 0;
function next(x) { return (x & 3) + 1; }
function makeCounter(from) { var n = from; return function () { n = n + 3; return n; }; }
function Pair(x, y) { this.x = x; this.y = y; }
Pair.prototype.sum = function () { return (this.x + this.y) | 0; };
function names(o) {
    var found = [];
    for (var k in o) { if (o.hasOwnProperty(k)) { found.push(k); } }
    found.sort();
    return found.join("");
}
"""


def main():
    seed, count = int(sys.argv[1]), int(sys.argv[2])
    print(PRELUDE)
    for i in range(count):
        print(program("p%d" % i, seed * 100003 + i))
        print('WScript.Echo(%d + " " + p%d() + "\\n");' % (i, i))


if __name__ == "__main__":
    main()

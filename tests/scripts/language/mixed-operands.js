// expect: minus: -5 -5 -1 0 -5 -5 NaN
// expect: plus: 5 5 1 0 5 5 NaN
// expect: not: -6 -6 -2 -1 -6 -6 -1
// expect: add: 6 51 2 1 51 6 five1
// expect: loosely equal: true true false false true true false
// expect: the other way: true true false false true true false
// expect: equal to a text: true true false false true true false
// expect: a text equal to: true true false false true true false
// expect: equal to true: false false true false false false false
// expect: unequal: false false true true false false true
// expect: void: undefined undefined undefined undefined undefined undefined undefined
// expect: keys: ab=3 truen1=3 true5=2 23=3 falsexy=3 trueab=3 true
// expect: keys: ab=3 truen1=3 true5=2 23=3 falsexy=3 trueab=3 true
// expect: kept: k0 k0 undefined
// expect: kept: k1 k1 k1
// expect: kept: k2 k2 undefined
// expect: put: undefined 3, undefined undefined, undefined 1, 1 1, 1 1
// expect: this: 6 7
// expect: steps of elements: 1 3 3 1 1, 1 3 3 1 1, NaN NaN NaN NaN 4
// expect: steps of fields: 11, 11, 9
// expect: delete: false number false number false
// expect: delete in a scope: true undefined 2 false false
// expect: delete a variable: false false number number
// expect: calls by name: inner object 12, inner object 14, 0
// expect: calls by key: zero true zero true
// expect: calls on texts: ab2 5true
// Operators whose operands are not what the machine guesses first, and sites that see several kinds.
// args: -load {root}/tests/support/show.js
function text(o) { return {toString: function () { return o; }, valueOf: function () { return o; }}; }
var values = [5, "5", true, null, text("5"), text(5), "five"];
function each(label, f) {
    var s = "";
    for (var i = 0; i < values.length; ++i) s += " " + f(values[i]);
    show(label, s.substring(1, s.length));
}
each("minus", function (v) { return -v; });
each("plus", function (v) { return +v; });
each("not", function (v) { return ~v; });
each("add", function (v) { return v + 1; });
each("loosely equal", function (v) { return v == 5; });
each("the other way", function (v) { return 5 == v; });
each("equal to a text", function (v) { return v == "5"; });
each("a text equal to", function (v) { return "5" == v; });
each("equal to true", function (v) { return true == v; });
each("unequal", function (v) { return v != 5; });
each("void", function (v) { return void v; });

// A sum that is made to be a key: of texts, of numbers, of objects, met before and new.
function keys(a, b) {
    var map = {}, names = "";
    map[a + b] = 1;
    map[a + b] += 1;
    map["" + a + b] = map[a + b] + 1;
    for (var k in map) if (map.hasOwnProperty(k)) names += k + "=" + map[k] + " ";
    return names + (map[a + b] == map["" + a + b]);
}
for (var round = 0; round < 2; ++round) show("keys", keys("a", "b") + keys("n", 1) + keys(2, 3) + keys(text("x"), "y") + keys("", "ab"));
var sum = "k";
for (var n = 0; n < 3; ++n) { var o = {}; o[sum + n] = sum + n; show("kept", o[sum + n] + " " + (sum + n) + " " + o.k1); }

// Properties of values that are no objects.
function put(v) { v.mark = 1; v[0] = 2; return v.mark + " " + v.length; }
show("put", put("abc") + ", " + put(5) + ", " + put(true) + ", " + put({length: 1}) + ", " + put([]));
function Counter(n) { this.n = n; this.n = n + 1; this.add = function () { this.n += 2; this.m = this.n; this.m++; return this; }; }
var counter = new Counter(1);
show("this", counter.add().add().n + " " + counter.m);
function steps(a) {
    var s = a[0]++ + " " + ++a[0] + " " + a[0]-- + " " + --a[0];
    a[1] += 2; a[1] -= 1; a[1] *= 6; a[1] /= 4; a[1] |= 8; a[1] &= 11; a[1] ^= 1; a[1] <<= 2; a[1] >>= 1; a[1] %= 7;
    return s + " " + a[1];
}
show("steps of elements", steps([1, 3]) + ", " + steps(["1", "3"]) + ", " + steps({}));
function fields(o) { o.x += 2; o.x -= 1; o.x *= 6; o.x /= 4; o.x |= 8; o.x &= 11; o.x ^= 1; o.x++; --o.x; return o.x; }
show("steps of fields", fields({x: 3}) + ", " + fields({x: "3"}) + ", " + fields({}));

// Names: deleted, called through scopes, hidden and uncovered.
undeclared = 1;
var declared = 2;
show("delete", delete undeclared + " " + typeof undeclared + " " + delete declared + " " + typeof declared + " " + delete never);
var box = {x: 1, y: 2};
with (box) { var gone = delete x; var hidden = delete declared; var unknown = delete never; }
show("delete in a scope", gone + " " + box.x + " " + box.y + " " + hidden + " " + unknown);
function local(a) { var v = 1; return delete a + " " + delete v + " " + typeof a + " " + typeof v; }
show("delete a variable", local(1));
function outer() {
    function inner() { return "inner " + typeof this; }
    var step = 0;
    with ({step: 10}) {
        var f = function () { ++step; step++; return inner() + " " + step; };
    }
    return f() + ", " + f() + ", " + step;
}
show("calls by name", outer());
var table = {"0": function () { return "zero"; }, one: function () { return this.one == table.one; }};
show("calls by key", table["0"]() + " " + table["one"]() + " " + table[0]() + " " + table["o" + "ne"]());
show("calls on texts", "abc".charAt() + "abc".charAt(1) + "abc".indexOf("c") + " " + (5).toString() + true.toString());

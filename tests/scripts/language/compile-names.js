// Declarations, hoisting, and which variable a name means.
// args: -load {root}/tests/support/show.js
show("before its declaration", early() + " " + typeof later + " " + typeof late);
function early() { return "early"; }
var later = 1;
function early2() { return inner(); function inner() { return "inner"; } }
show("inside", early2());
if (true) { show("in a block", blocked()); function blocked() { return "blocked"; } }
function twice(a, a) { return a; }
show("the last parameter", twice(1, 2));
function shadow(a) { var a; return a; }
show("var and parameter", shadow(3));
function inner(a) { function a() {} return typeof a; }
show("function and parameter", inner(3));
function repeated() { var x = 1; var x; { var x; } return x; }
show("repeated", repeated());
function args(a) { a = 2; return typeof arguments + a; }
show("arguments", args(1));
function own(arguments) { return typeof arguments; }
show("a parameter of that name", own(1));
function loops(o) { var s = ""; for (var k in o) for (var l in o) { s = s + k + l; } return s.length > 0; }
show("hidden variables", loops({q: 1}));
function counter() { var n = 0; return {up: function () { return ++n; }, down: function () { return n--; }}; }
var one = counter();
var two = counter();
one.up(); one.up(); two.up(); one.down();
show("closures", one.up() + " " + two.up());
function deep(a) { return function (b) { return function (c) { a += b; b += c; return a + b + c; }; }; }
show("three levels", deep(1)(2)(3) + " " + deep(1)(2)(3));
var named = function fact(n) { return n < 2 ? 1 : n * fact(n - 1); };
show("named expression", named(5) + " " + typeof fact);
function setter() { undeclared = 7; }
show("an undeclared name", typeof undeclared);
setter();
show("set", undeclared);
var seen = "";
for (var p in this) { if (p == "mentioned" || p == "undeclared" || p == "declared") seen = seen + p + " "; }
var declared = 1;
function never() { mentioned(); }
show("enumerable", seen);
function evaluated() { var local = 1; return eval("typeof local"); }
show("eval sees globals", evaluated() + " " + eval("var made = 4; later + made") + " " + made);
function built() { var local = 1; return Function("return typeof local")() + (new Function("n", "return n + later"))(2); }
show("Function", built());
// Called by name, a function gets the activation where the name was found as `this`, and can add names to it.
function top(which) {
    var n = "outer";
    function middle() {
        function add() { this[which] = "added"; }
        function look() { add(); return n; }
        return look();
    }
    return middle();
}
show("names added to an activation", top("m") + " " + top("n") + " " + top("m"));
function keeper() {
    var kept = "outer";
    function seen() { var own = "own"; eval("with ({}) found = own + kept"); return found + kept; }
    return seen();
}
show("eval under with", keeper());
// expect: before its declaration: early undefined undefined
// expect: inside: inner
// expect: in a block: blocked
// expect: the last parameter: 2
// expect: var and parameter: 3
// expect: function and parameter: function
// expect: repeated: 1
// expect: arguments: undefined2
// expect: a parameter of that name: undefined
// expect: hidden variables: true
// expect: closures: 2 2
// expect: three levels: 11 11
// expect: named expression: 120 function
// expect: an undeclared name: undefined
// expect: set: 7
// expect: enumerable: undeclared mentioned 
// expect: eval sees globals: undefined 5 4
// expect: Function: undefined3
// expect: names added to an activation: outer added outer
// expect: eval under with: ownouterouter

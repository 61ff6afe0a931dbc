// Function, which compiles text at run time, and Function.prototype.
// args: -load {root}/tests/support/show.js
var name = "global name";
function made() {
    var name = "local name";
    return Function("return name");
}
var order = "";
function spy(text) {
    var s = new Object();
    s.toString = function () { order = order + "[" + text + "]"; return text; };
    return s;
}
var one = Function("return 1");
var sum = new Function("a", "b", "return a + b");
var many = Function("a,b", "c", "return a + b + c");
show("called", one() + " " + sum(1, 2) + " " + many(1, 2, 3));
show("no text", Function()() + " " + (typeof new Function()));
show("scope", made()());
show("lengths", one.length + " " + sum.length + " " + many.length + " " + Function.length + " " +
     Function.prototype.length);
sum.length = 7;
Function.prototype.length = 7;
show("lengths stay", sum.length + " " + Function.prototype.length);
show("prototype", (sum.prototype.constructor == sum) + " " + (new sum()).constructor.length);
show("conversions", Function(spy("p"), spy("q"), spy("return p + q"))(2, 3) + " " + order);
show("nested", Function("n", "function twice(x) { return x + x; } return function () { return twice(n); };")(4)());
show("this", (Function("return this")() == this) + " " + (new Function("return this"))().hasOwnProperty("show"));
show("toString", one.toString() + show + Math.sqrt + Function.prototype + (function () {}));
show("Function.prototype()", Function.prototype() + " " + Function.prototype(1, 2));
show("inherits", Function.prototype.isPrototypeOf(one) + " " + Function.prototype.isPrototypeOf(Math.sqrt) + " " +
     (one.constructor == Function));
show("failing texts", eval("Function('', '1 +')") + " " + eval("Function('1', 'x')") + " " +
     eval("Function('return', 'x')"));
var names = "";
for (var k in one) {
    names = names + k + " ";
}
show("enumeration", names);
Function("a", "return 1;\nreturn 1 +");
// expect: called: 1 3 6
// expect: no text: undefined function
// expect: scope: global name
// expect: lengths: 0 2 3 1 0
// expect: lengths stay: 2 0
// expect: prototype: true 2
// expect: conversions: 5 [p][q][return p + q]
// expect: nested: 8
// expect: this: true true
// expect: toString: <<function>><<function>><<function>><<function>><<function>>
// expect: Function.prototype(): undefined undefined
// expect: inherits: true true true
// expect: failing texts: undefined undefined undefined
// expect: enumeration: constructor toString toLocaleString valueOf hasOwnProperty isPrototypeOf propertyIsEnumerable 
// expect error: line 2: expected an expression, found end of input

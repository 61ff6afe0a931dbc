// The global functions and values. A text that fails inside eval is dropped, so its value shows as undefined.
// args: -load {root}/tests/support/show.js
var x = "global x";
function evalInside() {
    var x = "local x";
    eval("var madeByEval = 1");
    return eval("x");
}
function nested(depth) {
    return depth == 0 ? eval("missing()") + eval("1+") + eval("deepest = 5; deepest") : nested(depth - 1);
}
var log = "";
var spy = new Object();
spy.toString = function () { log = log + "text "; return "7"; };
spy.valueOf = function () { log = log + "number "; return 7; };

show("eval()", eval());
show("eval(5)", eval(5));
show("eval(Number)", eval(new Number(5)) + 1);
show("eval(String)", eval(new String("1+2")));
show("eval(object)", eval(spy) == spy);
show("eval('')", eval(""));
show("eval('1+2')", eval("1+2"));
show("eval('1 +')", eval("1 +"));
show("eval of a failing call", eval("log = 'ran'; undefinedName(); log = 'went on'"));
show("what ran before it", log);
show("eval sees", evalInside());
show("made by eval", madeByEval);
show("registers after failures", nested(3) + " " + x + " " + evalInside());
show("this in eval", eval("this.x"));

log = "";
show("parseInt", parseInt("12", 10));
show("parseInt(object)", parseInt(spy, spy));
show("parseFloat(object)", parseFloat(spy));
show("conversions", log);

show("isNaN", isNaN("abc") + " " + isNaN("12") + " " + isNaN("") + " " + isNaN() + " " + isNaN(null));
show("isFinite", isFinite(1 / 0) + " " + isFinite("1") + " " + isFinite(-1 / 0) + " " + isFinite(0 / 0));
show("lengths", eval.length + " " + parseInt.length + " " + parseFloat.length + " " + load.length);
show("names", "" + (eval == this.eval) + " " + this);

NaN = 1;
show("NaN", NaN);
var found = "";
for (var k in this) {
    if (k == "NaN" || k == "undefined" || k == "Infinity" || k == "WScript") {
        found = found + k;
    } else if (k == "isNaN" || k == "x") {
        found = found + k + " ";
    }
}
show("enumerable", found);
show("new eval()", eval("new eval()"));
new isNaN();
// expect: eval(): undefined
// expect: eval(5): 5
// expect: eval(Number): 6
// expect: eval(String): 3
// expect: eval(object): true
// expect: eval(''): undefined
// expect: eval('1+2'): 3
// expect: eval('1 +'): undefined
// expect: eval of a failing call: undefined
// expect: what ran before it: ran
// expect: eval sees: global x
// expect: made by eval: 1
// expect: registers after failures: NaN global x global x
// expect: this in eval: global x
// expect: parseInt: undefined
// expect: parseInt(object): undefined
// expect: parseFloat(object): undefined
// expect: conversions: text number text 
// expect: isNaN: true false true true false
// expect: isFinite: false true false false
// expect: lengths: 1 2 1 1
// expect: names: true [object global]
// expect: NaN: 1
// expect: enumerable: isNaN 
// expect: new eval(): undefined
// expect error: line 55: new must be given a constructor object

// The six error classes: data alone makes them differ.
// args: -load {root}/tests/support/show.js
function describe(name, make) {
    var e = make("text");
    var inherited = make();
    var own = e.hasOwnProperty("message") + " " + inherited.hasOwnProperty("message");
    var enumerated = "";
    for (var k in e) {
        enumerated = enumerated + k + " ";
    }
    show(name, e.name + " " + e.message + " [" + inherited.message + "] " + own + " " + e + " " + enumerated);
}
describe("Error", function (m) { return new Error(m); });
describe("RangeError", function (m) { return RangeError(m); });
describe("ReferenceError", function (m) { return new ReferenceError(m); });
describe("SyntaxError", function (m) { return new SyntaxError(m); });
describe("TypeError", function (m) { return new TypeError(m); });
describe("EvalError", function (m) { return EvalError(m); });

show("null", (new Error(null)).message + " " + (new Error(null)).hasOwnProperty("message"));
show("not converted", (new Error(5)).message + 1);
show("String()", String(new Error("x")));
show("chain", Error.prototype.isPrototypeOf(new TypeError()) + " " + TypeError.prototype.isPrototypeOf(new Error()) +
     " " + Object.prototype.isPrototypeOf(Error.prototype));
show("constructors", (TypeError.prototype.constructor == TypeError) + " " + TypeError.length + " " +
     (new TypeError()).constructor.prototype.name);
show("deleting", (delete Error.prototype.message) + " " + (delete RangeError.prototype.name) + " " +
     (delete EvalError.prototype.name) + " " + (new RangeError()).name);
SyntaxError.prototype.name = "y";
Error.prototype.name = "z";
show("assigning", (new SyntaxError()).name + " " + (new Error()).name + " " + (new RangeError()).name);
TypeError("unused")();
// expect: Error: Error text [] true false [object Error] constructor toString toLocaleString valueOf hasOwnProperty isPrototypeOf propertyIsEnumerable message 
// expect: RangeError: RangeError text [] true false [object Error] constructor toString toLocaleString valueOf hasOwnProperty isPrototypeOf propertyIsEnumerable name message 
// expect: ReferenceError: ReferenceError text [] true false [object Error] constructor toString toLocaleString valueOf hasOwnProperty isPrototypeOf propertyIsEnumerable name message 
// expect: SyntaxError: SyntaxError text [] true false [object Error] constructor toString toLocaleString valueOf hasOwnProperty isPrototypeOf propertyIsEnumerable name message 
// expect: TypeError: TypeError text [] true false [object Error] constructor toString toLocaleString valueOf hasOwnProperty isPrototypeOf propertyIsEnumerable name message 
// expect: EvalError: EvalError text [] true false [object Error] constructor toString toLocaleString valueOf hasOwnProperty isPrototypeOf propertyIsEnumerable message 
// expect: null: null true
// expect: not converted: 6
// expect: String(): [object Error]
// expect: chain: true false true
// expect: constructors: true 1 TypeError
// expect: deleting: false true false Error
// expect: assigning: y z z
// expect error: line 32: not a function object

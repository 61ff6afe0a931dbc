// Boolean and its prototype.
// args: -load {root}/tests/support/show.js

show([Boolean(), Boolean(0), Boolean(-0), Boolean(""), Boolean(null), Boolean("false"), Boolean(NaN), Boolean([])]);
// expect: false|false|false|false|false|true|true|true
show([new Boolean(false) ? "object" : "false", (new Boolean(1)).valueOf(), new Boolean("") + "", typeof new Boolean(1), typeof Boolean(1)]);
// expect: object|true|false|object|boolean
show([true.toString(), false.valueOf(), typeof true.valueOf(), (new Boolean()).toString().length]);
// expect: true|false|boolean|5

Boolean.prototype.length = 9;
show([Boolean.prototype.length, delete Boolean.prototype.length, Boolean.prototype.propertyIsEnumerable("length"), Boolean.length, true.length]);
// expect: 1|false|false|1|1
show([Boolean.prototype.valueOf(), Boolean.prototype.toString.length, Boolean.prototype.valueOf.length, Boolean.prototype.constructor == Boolean]);
// expect: false|0|0|true

var o = new Object();
o.f = Boolean.prototype.valueOf;
o.f();
// expect error: line 19: Boolean.prototype.toString called on non-Boolean object

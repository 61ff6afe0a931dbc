// Number, its constants, and the digits that toString and toFixed print.
// args: -load {root}/tests/support/show.js

show([Number(), Number(""), Number("  "), Number("0x10"), Number(null), Number(true), Number("1e3"), Number("12abc")]);
// expect: NaN|NaN|NaN|16|0|1|1000|NaN
show([typeof Number("1"), typeof new Number(1), new Number(), (new Number(5)).valueOf(), new Number("7") + 1]);
// expect: number|object|NaN|5|8
show([Number.length, Number.prototype.valueOf(), Number.prototype.toString(), Number.prototype.length, Number.prototype.constructor == Number]);
// expect: 1|0|0|undefined|true
show([Number.prototype.toString.length, Number.prototype.toFixed.length, Number.prototype.valueOf.length, Number.prototype.toPrecision]);
// expect: 1|1|0|undefined

Number.MAX_VALUE = 1;
show([Number.MAX_VALUE == 1, delete Number.MAX_VALUE, Number.propertyIsEnumerable("NaN"), Number.NaN, Number.NEGATIVE_INFINITY, Number.POSITIVE_INFINITY]);
// expect: false|false|false|NaN|-Infinity|Infinity
show([Number.MAX_VALUE * 2, Number.MAX_VALUE / 2 * 2 == Number.MAX_VALUE, Number.MIN_VALUE > 0, Number.MIN_VALUE / 2]);
// expect: Infinity|true|true|0

show([(255).toString(), (255).toString(0), (255).toString(undefined), (255).toString(16), (255).toString("2"), (35).toString(36), (255).toString(10)]);
// expect: 255|255|255|ff|11111111|z|255
// 2^32 comes to 0, and so to radix 10; a fraction prints in decimal whatever the radix.
show([(8).toString(4294967296), (9).toString(8.9), (0.5).toString(2), (0).toString(2), (0/0).toString(2), (-1/0).toString(16)]);
// expect: 8|11|0.5|0|NaN|-Infinity
show([(-1).toString(16), (-255).toString(10), (4294967296).toString(16)]);
// expect: ffffffffffffffff|-255|100000000

show([(2).toFixed(), (2).toFixed(2), (1.005).toFixed(2), (2.5).toFixed(0), (3.5).toFixed(0), (-1.5).toFixed(2.9), (0.000001).toFixed(7)]);
// expect: 2|2.00|1.00|2|4|-1.50|0.0000010
show([(1).toFixed(20), (1).toFixed(19.5), (0.1).toFixed(20), (1).toFixed("3"), (5).toFixed(NaN), (1e21).toFixed(0)]);
// expect: 1.00000000000000000000|1.0000000000000000000|0.10000000000000000555|1.000|5|1000000000000000000000
show([(0/0).toFixed(2), (1/0).toFixed(2), (-1/0).toFixed(2), (-0.2).toFixed(0), Number.MAX_VALUE.toFixed(1).length]);
// expect: nan|inf|-inf|-0|311

// toFixed asks nobody who they are: any object's wrapped value will do, and none is NaN.
var o = new Object();
o.toFixed = Number.prototype.toFixed;
var s = new String("2.25");
s.toFixed = Number.prototype.toFixed;
show([o.toFixed(1), s.toFixed(1), Number.prototype.toFixed(1)]);
// expect: nan|2.2|0.0

// The digits are converted before the value is looked at, and the type of `this` before the radix.
var digits = new Object();
digits.valueOf = function () { n.value = 1; return 3; };
var n = new Number(1.5);
show([n.toFixed(digits), n.value, (new Number(8)).toString(digits)]);
// expect: 1.500|1|22

// Texts to numbers, numbers to 32 bits, and back to texts.
WScript.Echo([+" 12 ", +"0XfF", +"1e3", +"-1.5", +"+7", +"007", +"0xffffffff", +".5", +"5.", +"1e-3"].join() + "\n");
// expect: 12,255,1000,-1.5,7,7,4294967295,0.5,5,0.001
WScript.Echo([+"", +"   ", +"0x", +"0x100000000", +"12abc", +"0xg", +"1 2", +"-", +".", +"0x0x10", +"0x+5", +"0x 5"].join() + "\n");
// expect: NaN,NaN,NaN,NaN,NaN,NaN,NaN,NaN,NaN,NaN,NaN,NaN
WScript.Echo([4294967296 | 0, 2147483648 | 0, -1.5 | 0, 1e300 | 0, -4294967297 | 0, 18446744073709555712 | 0, Infinity | 0, NaN | 0].join() + "\n");
// expect: 0,-2147483648,-1,0,-1,4096,0,0
WScript.Echo([(255).toString(16), (-1).toString(16), -0, (35).toString(36), 9007199254740993, -1e21, (18446744073709551616).toString(16)].join() + "\n");
// expect: ff,ffffffffffffffff,0,z,9007199254740992,-1000000000000000000000,10000000000000000

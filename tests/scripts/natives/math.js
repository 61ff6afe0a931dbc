// Math: its members, its constants and what is registered.
function show(list) {
    var text = "";
    for (var i = 0; i < list.length; i++) {
        var item = list[i];
        text += (i > 0 ? "|" : "") + (typeof item == "number" && item == 0 && 1 / item < 0 ? "-0" : item);
    }
    WScript.Echo(text + "\n");
}

show([Math.abs(-1.5), Math.abs(-0), Math.abs("-3"), Math.abs(), Math.abs(null), Math.abs(-1/0)]);
// expect: 1.5|0|3|NaN|0|Infinity
show([Math.ceil(1.2), Math.ceil(-0.5), Math.floor(-1.2), Math.floor(-0), Math.floor("2.9")]);
// expect: 2|-0|-2|-0|2
show([Math.round(2.5), Math.round(-2.5), Math.round(-0.2), Math.round(-0.5), Math.round(-0.51), Math.round(0.49), Math.round(-0), Math.round(0)]);
// expect: 3|-2|-0|-0|-1|0|-0|0
show([Math.round(), Math.round(-1/0), Math.round(1/0), Math.round(4503599627370497) - 4503599627370497]);
// expect: NaN|-Infinity|Infinity|1
show([Math.sqrt(144), Math.sqrt(-1), Math.exp(0), Math.exp(-1/0), Math.log(0), Math.log(-1), Math.log(Math.E)]);
// expect: 12|NaN|1|0|-Infinity|NaN|1
show([Math.sin(0), Math.sin(1), Math.cos(0), Math.cos(1), Math.tan(1), Math.sin(-0)]);
// expect: 0|0.841471|1|0.540302|1.55741|-0
show([Math.asin(1) * 2 == Math.PI, Math.acos(-1) == Math.PI, Math.atan(1) * 4 == Math.PI, Math.acos(2)]);
// expect: true|true|true|NaN
show([Math.atan2(1, 0) * 2 == Math.PI, Math.atan2(0, 1), Math.atan2(-0, 1), Math.atan2(0, -0) == Math.PI, Math.atan2(1)]);
// expect: true|0|-0|true|NaN
show([Math.pow(2, 10), Math.pow(2, -1), Math.pow(9, 0.5), Math.pow(-8, 1/3), Math.pow(1, NaN), Math.pow(NaN, 0), Math.pow(2)]);
// expect: 1024|0.5|3|NaN|1|1|NaN

show([Math.max(), Math.min(), Math.max(1.5, 1.2), Math.min(-1.5, 2), Math.max("2", 1), Math.max("a"), Math.max(1, NaN, 3), Math.min(1, undefined)]);
// expect: -Infinity|Infinity|1.5|-1.5|2|NaN|NaN|NaN
show([Math.max(-0, 0), Math.max(0, -0), Math.max(-0, -0), Math.max(-0), Math.min(0, -0), Math.min(-0, 0), Math.min(0, 0), Math.min(3, 1, 2, -7, 5)]);
// expect: 0|0|-0|-0|-0|-0|0|-7

// The first NaN ends max and min: what stands behind it isn't converted. The others go from left to right.
var log = "";
function noisy(name, value) {
    var object = new Object();
    object.valueOf = function () { log += name; return value; };
    return object;
}
Math.max(noisy("a", 1), noisy("b", NaN), noisy("c", 2));
Math.min(noisy("d", 1), noisy("e", 2));
Math.pow(noisy("f", 1), noisy("g", 2));
Math.atan2(noisy("h", 1), noisy("i", 2));
show([log, Math.max(NaN, noisy("never", 1)), log]);
// expect: abdefghi|NaN|abdefghi

Math.PI = 3;
show([Math.PI == 3, delete Math.PI, delete Math.abs, Math.abs, Math.propertyIsEnumerable("E"), Math.propertyIsEnumerable("sin")]);
// expect: false|false|true|undefined|false|true
show([Math.PI == 3.141592653589793, Math.E == 2.718281828459045, Math.LN10 == 2.302585092994046, Math.LN2 == 0.6931471805599453]);
// expect: true|true|true|true
show([Math.LOG2E == 1.4426950408889634, Math.LOG10E == 1 / Math.LN10, Math.SQRT2 == 1.4142135623730951, Math.SQRT1_2 == 0.7071067811865476]);
// expect: true|true|true|true
show([Math.toString(), typeof Math, Math.constructor == Object, this.propertyIsEnumerable("Math")]);
// expect: [object Object]|object|true|false
var names = "";
for (var name in Math) {
    if (Math.hasOwnProperty(name)) {
        names += " " + name + Math[name].length;
    }
}
show([names]);
// expect:  acos1 asin1 atan1 atan22 ceil1 cos1 exp1 floor1 log1 max0 min0 pow2 random0 round1 sin1 sqrt1 tan1

// Date objects: how they are made, what is registered, and the order of conversions.
// args: -load {root}/tests/support/show.js
var epoch = 210866803200000; // 1 January 1970

// Without an argument the present moment, which doesn't go backwards in between.
var now = new Date();
show([now.valueOf() == now.getTime(), now.getFullYear() > 2023, new Date() - now >= 0, new Date() - now < 60000, typeof now]);
// expect: true|true|true|true|object

var copied = new Date(epoch + 0.5);
show([new Date(copied) - epoch, copied - epoch, (new Date(1e16)).valueOf(), (new Date(1/0)).valueOf()]);
// expect: 0.5|0.5|NaN|Infinity
show([new Date(1970, 0) - epoch, new Date(1970, 1, 2) - epoch, new Date(1970, 0, 1, 1, 2, 3, 4) - epoch, new Date(1970, 0, 1, 25, 61) - epoch]);
// expect: 0|2764800000|3723004|93660000
show([(new Date(1970, 12)).valueOf(), (new Date(1970, 1, 30)).valueOf(), (new Date(1970, NaN)).valueOf(), (new Date(1970, 0, 1, NaN)).valueOf()]);
// expect: NaN|NaN|NaN|NaN
// Anything else isn't looked at.
var spy = new Object();
spy.valueOf = function () { WScript.Echo("converted\n"); return 1; };
show([(new Date(spy)).valueOf(), (new Date("1970")).valueOf(), (new Date(undefined)).valueOf(), (new Date(1970, "0")).valueOf(), (new Date(1970, 0, 1, 0, 0, 0, 0, 0)).valueOf()]);
// expect: NaN|NaN|NaN|NaN|NaN

show([Date.length, (new Date()).length, Date.prototype.length, Date.parse, Date.UTC, Date.prototype.valueOf(), Date.prototype.constructor == Date]);
// expect: 1|7|7|undefined|undefined|NaN|true
Date.prototype.length = 1;
show([Date.prototype.length, delete Date.prototype.length, Date.prototype.propertyIsEnumerable("length")]);
// expect: 7|false|false
var members = "";
for (var name in Date.prototype) {
    if (Date.prototype.hasOwnProperty(name) && Date.prototype[name].length > 0 && name != "constructor") {
        members += " " + name + Date.prototype[name].length;
    }
}
show([members]);
// expect:  setTime1 setMilliseconds1 setUTCMilliseconds1 setSeconds2 setUTCSeconds2 setMinutes2 setUTCMinutes3 setHours4 setUTCHours4 setDate1 setUTCDate1 setMonth2 setUTCMonth2 setFullYear3 setUTCFullYear3

// All arguments are converted, in order, before the moment is read.
var log = "";
function noisy(name, value) {
    var object = new Object();
    object.valueOf = function () { log += name; return value; };
    return object;
}
var d = new Date(epoch);
d.setHours(noisy("a", 1), noisy("b", 2), noisy("c", 3), noisy("d", 4), noisy("e", 5));
d.setFullYear(noisy("f", 1980), noisy("g", 2), noisy("h", 3), noisy("i", 4));
d.setTime(noisy("j", epoch));
d.setDate(noisy("k", 7), noisy("l", 8));
show([log, d]);
// expect: abcdfghjk|Wed Jan 7 00:00:00 1970

// A setter converts its first argument even where the object is no Date.
var o = new Object();
o.getTimezoneOffset = Date.prototype.getTimezoneOffset;
show([o.getTimezoneOffset()]);
// expect: 0
o.setHours = Date.prototype.setHours;
o.setHours({valueOf: function () { WScript.Echo("first\n"); return 1; }}, spy);
// expect: first
// expect error: line 58: Date object required

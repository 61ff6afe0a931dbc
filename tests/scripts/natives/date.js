// Date: reading, printing and changing a moment. Day 0 of the count is Julian day 0, and there are no zones.
// env: TZ=Europe/Berlin
// args: -load {root}/tests/support/show.js
function at(time) {
    var d = new Date(0);
    d.setTime(time);
    return d;
}
function local(d) {
    return d.getFullYear() + "-" + d.getMonth() + "-" + d.getDate() + "/" + d.getDay() + " " + d.getHours() + ":"
        + d.getMinutes() + ":" + d.getSeconds() + "." + d.getMilliseconds();
}
function universal(d) {
    return d.getUTCFullYear() + "-" + d.getUTCMonth() + "-" + d.getUTCDate() + "/" + d.getUTCDay() + " " + d.getUTCHours()
        + ":" + d.getUTCMinutes() + ":" + d.getUTCSeconds() + "." + d.getUTCMilliseconds();
}
var epoch = 210866803200000; // 1 January 1970

// --- Reading
show([local(at(epoch)), universal(at(epoch)), at(epoch).getTimezoneOffset()]);
// expect: 1970-0-1/4 0:0:0.0|1970-0-1/4 0:0:0.0|0
show([local(at(211818671999999)), universal(at(211818671999999)), local(at(211818672000000))]);
// expect: 2000-1-29/2 23:59:59.999|2000-1-29/2 23:59:59.999|2000-2-1/3 0:0:0.0
show([local(at(148731206400000)), local(at(464269103999999))]);
// expect: 1-0-1/1 0:0:0.0|9999-11-31/5 23:59:59.999
var d = at(epoch + 0.5);
show([d.valueOf() == epoch + 0.5, d.getTime() == epoch, d - epoch, d.getMilliseconds()]);
// expect: true|true|0.5|0

// --- Printing. In a sum the text comes first, in arithmetic the number.
d = at(211850485567008);
show([d, d.toString(), d.toLocaleString(), d.toUTCString()]);
// expect: Sun Mar 4 05:06:07 2001|Sun Mar 4 05:06:07 2001|Sun Mar 4 05:06:07 2001|Sun Mar 4 05:06:07 2001
show([d.toDateString(), d.toLocaleDateString(), d.toTimeString(), d.toLocaleTimeString(), d + 1, d - 1]);
// expect: Sun Mar 4 2001|Sun Mar 4 2001|05:06:07|05:06:07|Sun Mar 4 05:06:07 20011|211850485567007
show([at(epoch).toString(), at(epoch).toDateString(), at(epoch).toTimeString()]);
// expect: Thu Jan 1 00:00:00 1970|Thu Jan 1 1970|00:00:00
// An hour that the clocks of the environment's zone never show.
show([new Date(2021, 2, 28, 2, 30)]);
// expect: Sun Mar 28 02:30:00 2021

// --- Changing the time of day: what is too large runs over.
show([at(epoch).setHours(1), at(epoch).setHours(1, 2, 3, 4), at(epoch).setUTCHours(1, 2, 3, 4), at(epoch).setHours(1.9, 2.9)]);
// expect: 210866806800000|210866806923004|210866806923004|210866806920000
var setters = ["setMilliseconds", "setUTCMilliseconds", "setSeconds", "setUTCSeconds", "setMinutes", "setUTCMinutes",
    "setHours", "setUTCHours"];
for (var i = 0; i < setters.length; i++) {
    var one = at(211850485567008);
    var all = at(211850485567008);
    one[setters[i]](90);
    all[setters[i]](10, 20, 30, 40);
    show([setters[i], local(one), local(all)]);
}
// expect: setMilliseconds|2001-2-4/0 5:6:7.90|2001-2-4/0 5:6:7.10
// expect: setUTCMilliseconds|2001-2-4/0 5:6:7.90|2001-2-4/0 5:6:7.10
// expect: setSeconds|2001-2-4/0 5:7:30.8|2001-2-4/0 5:6:10.20
// expect: setUTCSeconds|2001-2-4/0 5:7:30.8|2001-2-4/0 5:6:10.20
// expect: setMinutes|2001-2-4/0 6:30:7.8|2001-2-4/0 5:10:20.30
// expect: setUTCMinutes|2001-2-4/0 6:30:7.8|2001-2-4/0 5:10:20.30
// expect: setHours|2001-2-7/3 18:6:7.8|2001-2-4/0 10:20:30.40
// expect: setUTCHours|2001-2-7/3 18:6:7.8|2001-2-4/0 10:20:30.40
show([at(epoch).setMinutes(1, undefined, 5) - epoch, at(epoch).setSeconds(-1) - epoch, at(epoch).setHours(1, NaN), at(epoch).setHours()]);
// expect: 60005|-1000|NaN|NaN

// --- Changing the date: nothing runs over, and the time of day stays.
setters = ["setDate", "setUTCDate", "setMonth", "setUTCMonth", "setFullYear", "setUTCFullYear"];
for (var i = 0; i < setters.length; i++) {
    var one = at(211850485567008);
    var all = at(211850485567008);
    one[setters[i]](11);
    all[setters[i]](11, 5, 6);
    show([setters[i], local(one), local(all)]);
}
// expect: setDate|2001-2-11/0 5:6:7.8|2001-2-11/0 5:6:7.8
// expect: setUTCDate|2001-2-11/0 5:6:7.8|2001-2-11/0 5:6:7.8
// expect: setMonth|2001-11-4/2 5:6:7.8|2001-11-5/3 5:6:7.8
// expect: setUTCMonth|2001-11-4/2 5:6:7.8|2001-11-5/3 5:6:7.8
// expect: setFullYear|11-2-4/5 5:6:7.8|11-5-6/1 5:6:7.8
// expect: setUTCFullYear|11-2-4/5 5:6:7.8|11-5-6/1 5:6:7.8
show([at(epoch).setMonth(1, 30), at(epoch).setDate(32), at(epoch).setDate(0), at(epoch).setMonth(12), at(epoch).setFullYear(1/0), at(epoch).setMonth(1e300)]);
// expect: NaN|NaN|NaN|NaN|NaN|NaN
show([local(at(epoch + 1.5 * 3600000)), at(epoch + 5400000).setDate(31) - epoch, at(epoch).setDate(2.9) - epoch, at(epoch).setFullYear(2000, 1, 29) - epoch]);
// expect: 1970-0-1/4 1:30:0.0|2597400000|86400000|951782400000

// --- Limits of a time value
d = at(epoch);
show([d.setTime(NaN), d.setTime(1e16), d.setTime(8.64e15) == 8.64e15, d.setTime(1/0), d.setTime(-1/0), d.setTime(-1e300) == -1e300, d.setTime("5"), d.setTime()]);
// expect: NaN|NaN|true|Infinity|-Infinity|true|5|NaN

// --- What no calendar has reads as the parts of a null date.
show(["[" + at(NaN) + "]", "[" + at(1/0).toDateString() + "]", "[" + at(NaN).toTimeString() + "]", at(NaN).valueOf(), local(at(NaN))]);
// expect: []|[]|[]|NaN|0--1-0/0 -1:-1:-1.-1
show([at(-1e20).getFullYear(), at(-1e25).getDate(), at(-1.7e308).getDate(), at(-1/0).getFullYear()]);
// expect: 0|0|0|0
show([at(-1e300).getFullYear(), "[" + at(-1e300) + "]", at(NaN).setDate(1), at(NaN).getTimezoneOffset()]);
// expect: 0|[]|NaN|0

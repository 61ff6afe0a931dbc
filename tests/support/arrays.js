// For scripts that hold arrays against models: what an array holds, and a comparison that reports.
var u = undefined;
var failures = 0;
function state(a) {
    var text = a.length + ":";
    for (var i = 0; i < a.length + 3; i++) {
        text += (a.hasOwnProperty(i) ? a[i] : "-") + ",";
    }
    return text;
}
function check(what, actual, expected) {
    if (actual != expected && failures++ < 10) {
        WScript.Echo(what + " gives " + actual + " instead of " + expected + "\n");
    }
}
function copy(from, to) {
    for (var i = 0; i < from.length; i++) {
        if (from.hasOwnProperty(i)) { to[i] = from[i]; }
    }
    to.length = from.length;
    return to;
}

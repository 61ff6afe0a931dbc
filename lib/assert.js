// Assert: ends a run that must not go on. There is no exit() and nothing to throw, so a script stops a build
// by an error: the reason is printed as a line of its own on stdout, the error goes to stderr, and the
// status is 1.
//
//   Assert.fail(text)                        prints "error: " and the text, and ends the run
//   Assert.that(condition, text)             fails unless the condition is true; NaN fails as well
//   Assert.equal(actual, expected, text)     fails unless both are the same, without conversion (1 and "1"
//                                            differ, NaN equals NaN); arrays element by element
//   Assert.defined(value, name)              gives `value`, or fails with the -define that is missing
//
// In a text that runs under eval() or load(), an error ends that text alone and the script goes on behind
// the call: give files to -load instead. Needs no other file.

var Assert = {};

Assert.fail = function (text) {
    WScript.Echo("error: " + text + "\n");
    Assert.theReasonIsOnStdout(); // there is no such member: the call is the error that ends the run
};

Assert.that = function (condition, text) {
    if (!condition || condition != condition) {
        Assert.fail(text);
    }
};

Assert.isArray = function (value) {
    return typeof value == "object" && value != null && value.constructor == Array;
};

Assert.same = function (a, b) {
    if (typeof a != typeof b) {
        return false;
    }
    if (Assert.isArray(a) && Assert.isArray(b)) {
        for (var i = 0; i < a.length && a.length == b.length; i++) {
            if (!Assert.same(a[i], b[i])) {
                return false;
            }
        }
        return a.length == b.length;
    }
    return a == b || a != a && b != b;
};

Assert.shown = function (value) {
    if (Assert.isArray(value)) {
        var text = "";
        for (var i = 0; i < value.length; i++) {
            text += (i > 0 ? ", " : "") + Assert.shown(value[i]);
        }
        return "[" + text + "]";
    }
    return typeof value == "string" ? "\"" + value + "\"" : String(value);
};

Assert.equal = function (actual, expected, text) {
    if (!Assert.same(actual, expected)) {
        Assert.fail((text == undefined ? "" : text + ": ") + "expected " + Assert.shown(expected) + ", got " +
                    Assert.shown(actual));
    }
};

Assert.defined = function (value, name) {
    if (value == undefined) {
        Assert.fail("needs -define " + name + "=...");
    }
    return value;
};

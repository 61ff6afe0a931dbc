// The members that move elements, against plain loops, over every small mixture of values, undefined and gaps
// in several representations of the same array.
// args: -load {root}/tests/support/arrays.js
function make(code, count) { // base 3 digits: a value, undefined, a gap
    var a = new Array(count);
    for (var i = 0; i < count; i++) {
        var kind = code % 3;
        code = (code - kind) / 3;
        if (kind == 0) {
            a[i] = "v" + i;
        } else if (kind == 1) {
            a[i] = u;
        }
    }
    return a;
}
function backwards(a) { // the same, stored from the end
    var b = new Array(a.length);
    for (var i = a.length - 1; i >= 0; i--) {
        if (a.hasOwnProperty(i)) { b[i] = a[i]; }
    }
    return b;
}
function tailDeleted(a) { // the same, behind which elements have come and gone
    var b = a.slice(0);
    b.length = a.length;
    b.push(0);
    b.push(1);
    b.push(2);
    b.length = a.length;
    return copy(a, b);
}
function lookalike(a) { // the same as a plain object
    var o = copy(a, new Object());
    var members = ["slice", "reverse", "shift", "pop", "join"];
    for (var i = 0; i < members.length; i++) { o[members[i]] = a[members[i]]; }
    return o;
}
function plainReverse(a) {
    for (var i = 0; i < Math.floor(a.length / 2); i++) {
        var x = a[i];
        var y = a[a.length - 1 - i];
        if (y == u) { delete a[i]; } else { a[i] = y; }
        if (x == u) { delete a[a.length - 1 - i]; } else { a[a.length - 1 - i] = x; }
    }
}
function plainShift(a) {
    var n = a.length;
    if (n == 0) { return u; }
    var first = a[0];
    for (var i = 1; i < n; i++) {
        a[i - 1] = a[i];
    }
    delete a[n - 1];
    a.length = n - 1;
    return first;
}
function plainSlice(a, start, end) {
    var b = [];
    for (var i = start; i < end; i++) {
        if (a.hasOwnProperty(i)) {
            b[i - start] = a[i];
        }
    }
    return b;
}
function plainConcat(a, b) {
    var c = [];
    for (var i = 0; i < a.length + b.length; i++) {
        var x = i < a.length ? a[i] : b[i - a.length];
        if (x != u) { c[c.length] = x; }
    }
    return c;
}
function plainText(a, separator, isJoin) {
    var text = "";
    for (var i = 0; i < a.length; i++) {
        if (a[i] != u || !isJoin) { text += (i == 0 ? "" : separator) + String(a[i]); }
    }
    return text;
}

function checkForm(what, form, code, count) {
    var name = what + " " + code + "/" + count + " ";
    var model = make(code, count);
    var a = form(model);
    check(name + "made", state(a), state(model));
    check(name + "join", a.join(";"), plainText(model, ";", true));
    for (var start = 0; start <= count; start++) {
        var end = count - start % 2;
        check(name + "slice " + start, state(a.slice(start, end)), state(plainSlice(model, start, end)));
    }
    if (form != lookalike) {
        check(name + "concat", state(a.concat(backwards(a))), state(plainConcat(model, model)));
        check(name + "toString", "" + a, plainText(model, ",", false));
        a.length = count - 1;
        model.length = count - 1;
        check(name + "length", state(a), state(model));
    }
    a = form(make(code, count));
    plainReverse(model = make(code, count));
    a.reverse();
    check(name + "reverse", state(a), state(model));
    a.push = model.push;
    a.push("new");
    model[model.length] = "new";
    if (form == lookalike) {
        a.length++;
    }
    check(name + "push", state(a), state(model));
    for (var i = 0; i < 3; i++) {
        check(name + "shift", a.shift() + state(a), plainShift(model) + state(model));
        var last = model.length == 0 ? u : model[model.length - 1];
        if (model.length > 0) {
            model.length = model.length - 1;
        }
        check(name + "pop", a.pop() + state(a), last + state(model));
    }
}
var runs = 0;
for (var count = 1; count <= 5; count++) {
    for (var code = 0; code < Math.pow(3, count); code++) {
        checkForm("array", function (a) { return make(code, count); }, code, count);
        checkForm("backwards", backwards, code, count);
        checkForm("tail deleted", tailDeleted, code, count);
        checkForm("object", lookalike, code, count);
        runs++;
    }
}
WScript.Echo(runs + " runs, " + failures + " failures\n");
// expect: 363 runs, 0 failures

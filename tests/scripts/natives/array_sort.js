// The sort isn't stable, so what it compares, and in which order, shows in its results. All its roads are
// checked against the plain algorithm.
// args: -load {root}/tests/support/arrays.js
var seed = 12345;
function random(below) {
    seed = (seed * 16807) % 2147483647;
    return seed % below;
}
function plainSort(a, after) {
    var n = a.length;
    for (var g = Math.floor((n + 3) / 5); g > 0; g = Math.floor((g + 1) / 3)) {
        for (var i = n - 1; i >= g; i--) {
            var x = a[i - g];
            var free = -1;
            for (var j = i; j < n; j = j + g) {
                var y = a[j];
                if (x == u ? y == u : y == u || !after(x, y)) {
                    break;
                }
                a[j - g] = y;
                free = j;
            }
            if (free >= 0) {
                if (x == u) { delete a[free]; } else { a[free] = x; }
            }
        }
    }
}
function textAfter(x, y) {
    var first = String(x); // a comparison with > would convert y first
    var second = String(y);
    return second < first;
}
var log = "";
function byTens(x, y) { // equal tens stay as the sort has them
    log = log + x + "?" + y + " ";
    return Math.floor(x / 10) - Math.floor(y / 10);
}
function tensAfter(x, y) {
    return byTens(x, y) > 0;
}
function boxed(text) {
    var o = new Object();
    o.toString = function () { log = log + text + " "; return text; };
    return o;
}
for (var run = 0; run < 60; run++) {
    var count = run < 20 ? run : random(120);
    var a = new Array(count);
    var numbers = [];
    var objects = [];
    for (var i = 0; i < count; i++) {
        var kind = random(9);
        a[i] = kind == 0 ? u : kind == 1 ? null : kind == 2 ? random(2) == 1 : kind == 3 ? "t" + random(50)
             : kind == 4 ? random(100) / 8 : random(1000);
        if (kind == 5) {
            delete a[i];
        }
        numbers[i] = random(100);
        objects[i] = run < 30 && i % 3 == 0 ? boxed("o" + random(9)) : random(40);
    }
    var model = copy(a, []);
    plainSort(model, textAfter);
    var o = copy(a, new Object());
    o.sort = a.sort;
    check("the result of run " + run, state(copy(a, []).sort()), state(model));
    check("an object in run " + run, state(o.sort()), state(model));

    log = "";
    model = copy(numbers, []);
    plainSort(model, tensAfter);
    var expected = log + state(model);
    log = "";
    check("the comparisons of run " + run, state(copy(numbers, []).sort(byTens)) && log + state(model), expected);
    check("the order of run " + run, state(copy(numbers, []).sort(byTens)), state(model));

    model = copy(objects, []);
    log = "";
    plainSort(model, textAfter);
    expected = log;
    log = "";
    var sorted = copy(objects, []).sort();
    check("the conversions of run " + run, log, expected);
    check("objects in run " + run, state(sorted), state(model));
}
// args: -load {root}/tests/support/show.js
show("failures", failures);
show("texts", [3, 20, 100].sort() + ";" + ["b", null, "a"].sort().join() + ";" + ["b", "B", "\xe9", "a"].sort());
show("undefined", state([3, u, 1].sort()) + state([u, u, 1].sort()) + state((gap = [3, 0, 1, u], delete gap[1], gap.sort())));
show("code units", ["\uffff", "\ud800\udc00"].sort()[0].charCodeAt(0));
show("no number", [1, 2].sort(function () {}) + ";" + [1, 2, 3].sort(function () { return "1"; }) + ";" +
     [1, 2].sort(function () { return null; }));
var ok;
var self = [2, 1];
show("this and result", self.sort(function (x, y) { ok = this == self; return x - y; }) + ok);
self = [5, 3, 8, 1, 9, 2];
self.sort(function (x, y) { self.length = 2; return x - y; });
var model = [5, 3, 8, 1, 9, 2];
plainSort(model, function (x, y) { model.length = 2; return x > y; });
show("a comparator that cuts", state(self) == state(model) ? "as told" : state(self) + " " + state(model));
self = [5, 3, 8, 1];
show("a comparator that fails", eval("self.sort(function (x, y) { if (x == 3) { missing(); } return x - y; })"));
show("leaves", self.join());
show("own put", state(eval("var p = [2, 1]; p.length = 5; p.sort()")));
[2, 1].sort(5);
// expect: failures: 0
// expect-raw: "texts: 100,20,3;a,b;B,a,b,\xe9\n"
// expect: undefined: 3:1,3,-,-,-,-,3:1,-,-,-,-,-,4:1,3,-,undefined,-,-,-,
// expect: code units: 55296
// expect: no number: 2,1;3,2,1;1,2
// expect: this and result: 1,2true
// expect: a comparator that cuts: as told
// expect: a comparator that fails: undefined
// expect: leaves: 5,3,1,8
// expect: own put: 5:1,2,-,-,-,-,-,-,
// expect error: line 105: Array.prototype.sort argument is not a function

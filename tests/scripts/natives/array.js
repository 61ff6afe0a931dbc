// What each member of Array.prototype makes of gaps, undefined and null, and how length follows.
function show(label, value) {
    WScript.Echo(label + ": " + value + "\n");
}
function slots(a) { // what is there, gaps told from undefined
    var text = "";
    for (var i = 0; i < a.length; i++) {
        text = text + (i == 0 ? "" : "|") + (a.hasOwnProperty(i) ? a[i] : "-");
    }
    return text + " (" + a.length + ")";
}
var u = undefined;

show("constructor", slots(Array()) + slots(new Array(3)) + slots(new Array("3")) + slots(Array(1, u)) +
     slots(new Array(null)) + (new Array(4294967295)).length + slots(new Array(-0)));
show("bad lengths", eval("Array(-1)") + " " + eval("Array(1.5)") + " " + eval("new Array(4294967296)") + " " +
     eval("Array(0/0)"));
show("join", [1, null, 3].join() + ";" + [null, 1].join() + ";" + [1, u, "x"].join(" - ") + ";" +
     new Array(3).join() + ";" + [[1, 2], [3]].join("+") + ";" + [1, 2].join(u) + ";" + [1, 2].join(null));
show("toString", [1, null, 3] + ";" + new Array(3) + ";" + [null, 1] + ";" + [1, [2, u]] + ";" +
     [true, 1.5, "s"].toLocaleString());
show("concat", slots([1, u, 2].concat([u, 3], u)) + slots([].concat(new Array(5), "x", null)) +
     slots([1].concat([[2]])));
show("pop", [].pop() + " " + (a = [1, 2]).pop() + slots(a) + (a = new Array(2)).pop() + slots(a));
show("push", (a = [1]).push(2, 3) + slots(a) + a.push() + (a = new Array(4294967295)).push(1, 2) + " " + a.length +
     a["4294967295"] + a[0]);
show("reverse", slots([1, u, 3].reverse()) + slots([1, 2, u, u].reverse()) + slots([u, 2].reverse()) +
     slots([1, 2, 3].reverse()));
show("shift", [].shift() + " " + (a = [1, 2]).shift() + slots(a) + (a = new Array(3)).shift() + slots(a));
show("slice", slots([1, 2, 3].slice(1)) + slots([1, 2, 3].slice(-2, -1)) + slots([1, 2, 3].slice(2, 1)) +
     slots([1, 2, 3].slice(-9, 9)) + slots([1, 2, 3].slice()) + slots(new Array(5).slice(1)));

// length and elements
var a = [1, 2, 3];
a.length = 1;
show("shorter", slots(a) + a[2]);
a.length = "2";
show("longer", slots(a) + (typeof a.length));
a = [];
a[5] = 1;
show("gap", slots(a) + a["5"]);
a["05"] = a["1.5"] = a["-1"] = 9;
a[2147483647] = 8;
show("no index", a.length + " " + a["05"] + " " + a[2147483647]);
a[2147483646] = 7;
show("last index", a.length + " " + a["2147483646"]);
a.length = 0;
show("cut", a.length + " " + a[5] + " " + a[2147483646] + " " + a["05"]);
a = [1, 2, 3];
delete a.length;
show("length deleted", a.length + " " + a[2] + " " + a.pop() + " " + a.length);
a[4] = 1;
show("length comes back", a.length);
a = [1, 2, 3, 4];
var shrinking = new Object();
shrinking.valueOf = function () { a[6] = 6; return 2; };
a.length = shrinking;
show("length converted after the old one was read", slots(a) + a[6]);
a = [3, 2, 1];
for (var i = 9; i >= 0; i--) {
    a[i] = i;
}
show("filled backwards", slots(a) + slots(a.slice(7)) + a.pop() + a.shift() + slots(a));
delete a[7];
delete a[3];
a[7] = "again";
show("deleted", slots(a));

// any object will do
var o = new Object();
o.length = 2;
o[0] = "a";
o[1] = "b";
o.push = Array.prototype.push;
o.pop = Array.prototype.pop;
o.join = Array.prototype.join;
o.sort = Array.prototype.sort;
o.shift = Array.prototype.shift;
o.concat = Array.prototype.concat;
o.reverse = Array.prototype.reverse;
o.slice = Array.prototype.slice;
show("push on an object", o.push(9) + slots(o) + o[2]);
show("others on an object", o.join("") + slots(o.reverse()) + slots(o.sort()) + slots(o.slice(1)) +
     (o.concat(1)[0] == o) + o.shift() + slots(o) + o.pop() + slots(o) + o.pop() + o.length);
var s = new String("cab");
s.join = Array.prototype.join;
s.slice = Array.prototype.slice;
s.sort = Array.prototype.sort;
show("on a String object", s.join("-") + s.slice(1).length + s.sort());
Array.prototype[1] = "inherited";
a = [1, , 3];
show("elements of the prototype", a.join() + slots(a) + slots(a.slice(0)) + slots(new Array(3).concat()) +
     slots([4, 5, 6].reverse()) + (a = new Array(2)).sort() + slots(a));
delete Array.prototype[1];

o = [];
o[0] = o.length;
show("full names", [].push.length + " " + o.toString() + " " + Array.length + " " + Array.prototype.length);
show("toString on an object", eval("o = new Object(); o.toString = [].toString; o + ''"));
new [].push();
// expect error: x

// What each member of Array.prototype makes of gaps, undefined and null, and how length follows.
// args: -load {root}/tests/support/show.js
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
     (new Array(3)).join() + ";" + [[1, 2], [3]].join("+") + ";" + [1, 2].join(u) + ";" + [1, 2].join(null));
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
     slots([1, 2, 3].slice(-9, 9)) + slots([1, 2, 3].slice()) + slots((new Array(5)).slice(1)));

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
delete a.length;
a[1] = 7;
show("length comes back by a store to what is there", slots(a) + (delete a.length) + a[0]++ + slots(a));
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
s[1] = "x";
show("on a String object", s.join("-") + s.slice(1).length + s.sort() + s[0]);
Array.prototype[1] = "inherited";
a = [1, u, 3];
delete a[1];
show("elements of the prototype", a.join() + slots(a) + slots(a.slice(0)) + slots((new Array(3)).concat()) +
     slots([4, 5, 6].reverse()) + (a = new Array(2)).sort() + slots(a));
delete Array.prototype[1];

show("functions of the class", [].push.length + " " + [].slice.length + " " + Array.length + " " + [1].concat([].slice).length +
     " " + [1].concat(Math.sqrt).length);
show("toString on an object", eval("o = new Object(); o.toString = [].toString; o + ''"));
new [].push();
// expect: constructor:  (0)-|-|- (3)3 (1)1|undefined (2)null (1)4294967295 (0)
// expect: bad lengths: undefined undefined undefined undefined
// expect: join: 1,3;,1;1 - x;;1,2+3;1,2;1null2
// expect: toString: 1,,3;undefined,undefined,undefined;,1;1,2,undefined;true,1.5,s
// expect: concat: 1|2|3|undefined (4)x|null (2)1|2 (2)
// expect: pop: undefined 21 (1)undefined- (1)
// expect: push: 31|2|3 (3)31 429496729512
// expect: reverse: 3|undefined|1 (3)-|-|2|1 (4)2|- (2)3|2|1 (3)
// expect: shift: undefined 12 (1)undefinedundefined|undefined (2)
// expect: slice: 2|3 (2)2 (1) (0)1|2|3 (3)1|2|3 (3) (0)
// expect: shorter: 1 (1)undefined
// expect: longer: 1|- (2)number
// expect: gap: -|-|-|-|-|1 (6)1
// expect: no index: 6 9 8
// expect: last index: 2147483647 7
// expect: cut: 0 undefined undefined 9
// expect: length deleted: 0 3 undefined 0
// expect: length comes back: 5
// expect: length comes back by a store to what is there: 1|7 (2)true12 (1)
// expect: length converted after the old one was read: 1|2 (2)6
// expect: filled backwards: 0|1|2|3|4|5|6|7|8|9 (10)7|8|9 (3)901|2|3|4|5|6|7|8 (8)
// expect: deleted: 1|2|3|-|5|6|7|again (8)
// expect: push on an object: 3a|b (2)9
// expect: others on an object: abb|a (2)a|b (2)b (1)trueab (1)b (0)undefined0
// expect: on a String object: -x1cabx
// expect: elements of the prototype: 1,inherited,31|-|3 (3)1|inherited|3 (3)inherited (1)6|5|4 (3)inherited,inheritedinherited|- (2)
// expect: functions of the class: 0 2 0 1 2
// expect: toString on an object: undefined
// expect error: line 102: new must be given a constructor object

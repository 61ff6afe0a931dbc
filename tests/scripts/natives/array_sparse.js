// Lengths far beyond what is there cost nothing.
// max memory: 50
// args: -load {root}/tests/support/show.js
function names(a) {
    var text = "";
    for (var k in a) {
        if (k != "length" && a.hasOwnProperty(k)) {
            text = text + k + "=" + a[k] + " ";
        }
    }
    return text + "(" + a.length + ")";
}
function sparse() {
    var a = ["first", "second"];
    a[1000000] = "middle";
    a.length = 4294967295;
    a["4294967293"] = "high";
    return a;
}
var a = sparse();
show("join", a.join());
show("names", names(a));
show("slice", names(a.slice(999999)) + names(a.slice(-2147483648, 2)) + names(a.slice(-2)));
show("concat", names(a.concat(sparse())));
show("reverse", names(a.reverse()));
show("reversed again", names(a.reverse()));
show("sort", names(a.sort()));
show("sort with a comparator", names(sparse().sort(function (x, y) { return x < y ? 1 : -1; })));
show("pop", a.pop() + " " + a.length);
a = sparse();
a.length = 1000001;
show("cut high", names(a));
a.length = 0;
show("cut", names(a));
a = new Array(4294967295);
a.length = 0;
a.push(1);
show("empty", names(a) + names((new Array(4294967295)).sort()) + (new Array(4294967295)).join("-"));
a = new Array(50000);
show("toString", ("" + a).length + " " + ("" + a).slice(0, 25));
a[100] = "x";
a[200] = null;
show("toString with elements", ("" + a).length + " " + ("" + a).slice(995, 1020));
var o = new Object();
o.toString = function () { a[49998] = "late"; return "o"; };
a[300] = o;
show("an element that adds one", a.join("") + " " + a.join(""));
show("too long", eval("'' + new Array(4294967295)") + eval("(new Array(4294967295)).shift()"));
Object.prototype[70000] = "inherited";
a = new Array(100000);
show("inherited", a.join(";") + " " + names(a.slice(69999)) + a.reverse()[29999]);
delete Object.prototype[70000];
"" + new Array(4294967295);
// expect: join: first,second,middle,high
// expect: names: 0=first 1=second 1000000=middle 4294967293=high (4294967295)
// expect: slice: 1=middle 4293967294=high (2)(0)0=high (1)
// expect: concat: 0=first 1=second 2=middle 3=high 4=first 5=second 6=middle 7=high (8)
// expect: reverse: 1=high 4294967293=second 4293967294=middle 4294967294=first (4294967295)
// expect: reversed again: 0=first 1=second 1000000=middle 4294967293=high (4294967295)
// expect: sort: 0=first 1=high 2=middle 3=second (4294967295)
// expect: sort with a comparator: 0=second 1=middle 2=high 3=first (4294967295)
// expect: pop: undefined 4294967294
// expect: cut high: 0=first 1=second 1000000=middle (1000001)
// expect: cut: (0)
// expect: empty: 0=1 (1)(4294967295)
// expect: toString: 499999 undefined,undefined,undef
// expect: toString with elements: 499982 ined,x,undefined,undefine
// expect: an element that adds one: xolate xolate
// expect: too long: NaN
// expect: inherited: ;inherited 1=inherited (2)inherited
// expect error: line 53: length too large

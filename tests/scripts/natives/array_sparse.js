// Lengths far beyond what is there cost nothing.
// max cpu: 1.0
// max memory: 80
function show(label, value) {
    WScript.Echo(label + ": " + value + "\n");
}
function names(a) {
    var text = "";
    for (var k in a) {
        if (a.hasOwnProperty(k)) {
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
show("empty", names(a) + names(new Array(4294967295).sort()) + new Array(4294967295).join("-"));
a = new Array(50000);
show("toString", ("" + a).length + " " + ("" + a).slice(0, 25));
a[100] = "x";
a[200] = null;
show("toString with elements", ("" + a).length + " " + ("" + a).slice(995, 1020));
var o = new Object();
o.toString = function () { a[49998] = "late"; return "o"; };
a[300] = o;
show("an element that adds one", a.join("") + " " + a.join(""));
show("too long", eval("'' + new Array(4294967295)") + eval("new Array(4294967295).shift()"));
Object.prototype[70000] = "inherited";
a = new Array(100000);
show("inherited", a.join(";") + " " + names(a.slice(69999)) + a.reverse()[29999] + a.sort()[0]);
delete Object.prototype[70000];
"" + new Array(4294967295);
// expect error: x

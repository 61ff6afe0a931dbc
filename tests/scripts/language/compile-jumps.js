// Where break and continue go, out of with too, and which clauses of a switch run.
var log = "";
function n(x) { log = log + x; return x; }
function show(label) { WScript.Echo(label + ": " + log + "\n"); log = ""; }

function dispatch(x) {
    switch (x) {
    default: n("d");
    case 1: n("1"); break;
    case "1": n("s");
    case n(2): { n("2"); return; }
    }
    n(".");
}
dispatch(1); n(" "); dispatch("1"); n(" "); dispatch(2); n(" "); dispatch(3); show("switch");
for (var i = 0; i < 6; i++) { if (i == 1) continue; if (i == 4) break; n(i); } show("for");
i = 0; while (true) { if (++i == 2) continue; if (i > 4) break; n(i); } show("while");
i = 0; do { if (++i == 2) continue; n(i); } while (i < 4); show("do");
for (i = 0; i < 3; i++) switch (i) { case 1: continue; default: n(i); break; } show("continue in switch");
var o = {first: 1, second: 2, third: 3};
for (var k in o) { if (k.length > 5) continue; if (o[k]) n(k + " "); } show("for in");
for (o.m in {first: 1}) if (o.m.length == 5) n(o.m); show("for in a member");
outer: for (i = 0; i < 3; i++) {
    for (var j = 0; j < 3; j++) {
        if (j == 1) continue outer;
        if (i == 2) break outer;
        n(i); n(j);
    }
}
show("labels");
block: { n("in"); if (true) break block; n("not"); }
both: again: for (i = 0; i < 2; i++) { n(i); continue both; }
show("labelled");
continue; n("on"); show("nowhere to go");

var here = "global";
function leave(times) {
    var here = "local";
    var m = 5;
    out: for (var i = 0; i < times; i++) {
        with ({here: "one"}) {
            n(here + " ");
            if (i == 1) continue;
            with ({here: "two"}) {
                n(here + " ");
                if (i == 2) break out;
                m++;
            }
        }
    }
    whole: with ({here: "three"}) { if (m) break whole; }
    return here + m + (function () { return here; })();
}
n(leave(5)); show("with");
l: with ({here: "object"}) { for (;;) break l; }
n(here); show("with at program level");
function find(o, wanted) { for (var k in o) with (o) if (k == wanted) return k; return "none"; }
n(find({second: 1}, "second") + find(o, "x") + here); show("return");
// expect: switch: 1. s2 22 2d1.
// expect: for: 023
// expect: while: 134
// expect: do: 134
// expect: continue in switch: 02
// expect: for in: first third 
// expect: for in a member: first
// expect: labels: 0010
// expect: labelled: in01
// expect: nowhere to go: on
// expect: with: one two one one two local6local
// expect: with at program level: global
// expect: return: secondnoneglobal

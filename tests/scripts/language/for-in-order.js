// Names come in the order in which their texts were first met. Keys are computed: a literal one counts from its
// compilation on, before all of these.
function list(o) {
    var text = "";
    for (var k in o) text += o.hasOwnProperty(k) ? " " + k : "";
    WScript.Echo(text + "\n");
}
var i, x, m = "m", c = 400, o = {};
o.zz = 1; o.aa = 2; o[5] = 3; o["b" + "c"] = 4; list(o);
// expect:  5 zz aa bc
o = {}; x = "v" + 1; x = "u" + 1; o[x] = 1; o["v" + 1] = 2; list(o);
// expect:  v1 u1
o = []; for (i = c + 2; i >= c; i--) x = o[i]; o = {}; for (i = c - 1; i < c + 3; i++) o[i] = 1; list(o);
// expect:  402 401 400 399
o = []; o[c + 9] = o[c + 8] = 1; for (i = 0; i < c + 10; i++) o[i] = i; o = {}; for (i = c + 7; i < c + 10; i++) o[i] = 1; list(o);
// expect:  408 409 407
// A text counts from its making, though it is no key then; an argument that is converted doesn't.
o = {}; for (i = 0; i < 3; i++) x = "k" + i; for (i = 2; i >= 0; i--) o["k" + i] = 1; list(o);
// expect:  k0 k1 k2
o = {}; x = -2.5 + ""; x = 3.5; "ab".indexOf(x); o[-1.5] = 1; o[x] = 1; o[-2.5] = 1; list(o);
// expect:  -2.5 -1.5 3.5
o = {}; x = "mn".concat("o", "p"); x += "q"; o[m + "no"] = 1; o[m + "nopq"] = 1; o[m + "nop"] = 1; list(o);
// expect:  mnop mnopq mno
// Members of Array that pass over empty places name them as they go.
o = {}; x = new Array(620); x.slice(618); for (i = 621; i > 616; i--) o[i] = 1; list(o);
// expect:  618 619 621 620 617
o = {}; x = new Array(720); x.concat(); for (i = 721; i > 716; i--) o[i] = 1; list(o);
// expect:  717 718 719 721 720
o = {}; x = new Array(820); x.sort(); for (i = 821; i > 816; i--) o[i] = 1; list(o);
// expect:  819 818 817 821 820
o = {}; x = new Array(9000); x[1] = 1; x.reverse(); for (i = 950; i < 952; i++) o[i] = o[i + 7099] = 1; list(o);
// expect:  8050 950 8049 951

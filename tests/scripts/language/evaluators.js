// A text sees the variables of the function that runs it, and changes them, by whatever name and way the function
// comes to eval, load or Function. Each function here keeps its variables where nobody else could see them.
// args: -load {root}/tests/support/show.js
// file: loaded.js
//| with ({}) a = a + "-loaded";
var F = Function, e = eval, l = load, a = "global", kept;
function byName(a) { var z = arguments; return F("with ({}) { return a; }")(); }
function byConstructor(a) { var z = arguments; return byName.constructor("with ({}) { return a; }")(); }
function byNew(a) { var z = arguments; return "<" + (new F("with ({}) { return a; }"))() + ">"; }
function byLoad(a) { var z = arguments; l("loaded.js"); return a; }
function bySort(a) { var z = arguments; ["with ({}) a = a + '-sorted'", "1"].sort(e); return a; }
function amidst(a) { var z = arguments, y = 3; return [1, y, e("with ({}) a = y = 4"), a, y, 5].join(); }
function kept(a) { var z = arguments, n; kept = F("with ({}) { return a + n; }"); for (n = 1; n < 4; n++) a += n; return kept(); }
function Maker(a) { var z = arguments; this.a = e("with ({}) a += '!'") || a; }
function failing(a) { var z = arguments; e("with ({}) { a = 'changed'; nothing(); }"); return a; }
function deep(a) { var z = arguments; return a == 0 ? e("with ({}) a = 7") || a : deep(a - 1) + a; }
show([byName("x"), byConstructor("x"), byNew("x"), byLoad("x"), bySort("x"), amidst("x"), kept("x"), kept()]);
// expect: x|x|<x>|x-loaded|x-sorted|1,3,4,4,5|x1234|x1234
show([(new Maker("m")).a, failing("f"), deep(3), a]);
// expect: m!|changed|13|global

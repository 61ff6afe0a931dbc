// The order in which operands run, and what runs at all.
var log = "";
function n(name, value) { log = log + name; return value; }
function show(label) { WScript.Echo(label + ": " + log + "\n"); log = ""; }
var o = {k: 1};
var other = {k: 10};

n("a", 1) + n("b", 2) * n("c", 3) + n("", 0); show("arithmetic");
n("a", 1) < n("b", 2); n("c", 1) > n("d", 2); n("e", 1) >= n("f", 2) <= n("g", 3); show("comparison");
n("a", 0) && n("b", 1) || n("c", 1) || n("d", 1); show("logic");
n("f", function () { n("!", 0); })(n("a", 1), n("b", 2)); show("call of a value");
n("o", {m: function () {}})[n("k", "m")](n("a", 1)); show("call of a member");
n("o", o)[n("k", "k")] = n("v", 1); show("assignment");
n("o", o)[n("k", "k")] += n("v", 1); show("compound");
n("o", o)[n("k", "k")]++; delete n("p", o)[n("l", "l")]; show("step and delete");
n("a", 1), n("b", 2) ? n("c", 3) : n("d", 4); show("comma and conditional");
new (n("f", Array))(n("a", 1)); show("new");
[n("a", 1), , n("b", 2)]; ({y: n("c", 1), x: n("d", 1)}); show("literals");
void n("a", 1); !n("b", 1); typeof n("c", 1); show("unary");
throw n("throw", 1);
try { n("try", 1); } catch (e) { n("catch", 1); } finally { n("finally", 1); }
show("throw and try");
var target = o;
target.k = (target = other, 5); WScript.Echo(o.k + " " + other.k + "\n");
var x = 1;
x += (x = 10, 5); WScript.Echo(x + "\n");
var s = "5";
var old = s++; WScript.Echo(typeof old + " " + s + "\n");
o.k = "5";
old = o.k++; WScript.Echo(typeof old + " " + o.k + " " + (--o["k"]) + " " + (o.k--) + " " + o.k + "\n");
// Converting the key runs script, while the value waits.
var key = {toString: function () { return n("k", "key"); }};
var keyed = {};
keyed[key] = 5;
keyed[key] += 2; WScript.Echo(keyed.key + "\n");
var list = [1, 2, 3];
list.length = {valueOf: function () { return n("v", 2); }}; WScript.Echo(list.length + "\n");
// So does stepping a variable, while its old value waits.
function seven() { return {valueOf: function () { return n("s", 7); }}; }
function stepped(argument) {
    var local = seven(), kept = function () { return local + argument; };
    var of_argument = argument++, of_local = local++;
    return typeof of_argument + " " + typeof of_local + " " + kept();
}
function plain(argument) { var old = argument--; return typeof old + " " + argument; }
var global = seven(), of_global = 1 + (2, global++);
WScript.Echo(stepped(seven()) + " " + plain(seven()) + " " + of_global + " " + global + "\n");
// expect: arithmetic: abc
// expect: comparison: abdcfeg
// expect: logic: ac
// expect: call of a value: abf!
// expect: call of a member: aok
// expect: assignment: vok
// expect: compound: vok
// expect: step and delete: okpl
// expect: comma and conditional: abc
// expect: new: af
// expect: literals: abcd
// expect: unary: abc
// expect: throw and try: 
// expect: 3 5
// expect: 6
// expect: string 6
// expect: number 6 5 5 4
// expect: 7
// expect: 2
// expect: object object 16 object 6 8 8

// String objects: `length`, properties, members on other objects, order of conversions, what is registered.
// args: -load {root}/tests/support/show.js

var s = new String("abc");
s.length = 1;
s.extra = "kept";
s[0] = "zero";
show([s.length, s.extra, s[0], s[1], s + "", "abc".length, s.hasOwnProperty("length"), delete s.length]);
// expect: 3|kept|zero|undefined|abc|3|false|true

// An object that merely inherits from a String object has neither its length nor its members' help.
function Heir() {}
Heir.prototype = s;
var heir = new Heir();
show([heir.length, heir.extra]);
// expect: undefined|kept

// The members are objects of their own class: the length is that of the full name.
show([String.length, String.fromCharCode.length, "".charAt.length, "".toLocaleUpperCase.length]);
// expect: 6|19|23|34
show([String.prototype.length, String.prototype == "", String.prototype.toString() == "", String.prototype.constructor == String]);
// expect: 0|true|true|true
var names = "";
for (var name in String.prototype) {
    if (String.prototype.hasOwnProperty(name)) {
        names += " " + name;
    }
}
// The order is that in which the names came up first, and Array has two of them before String.
show([names]);
// expect:  constructor toString valueOf concat slice charAt charCodeAt indexOf lastIndexOf localeCompare match replace search split substring toLowerCase toLocaleLowerCase toUpperCase toLocaleUpperCase

// The members work on any object, through its text.
var o = new Object();
o.charAt = String.prototype.charAt;
o.length = 77;
o.slice = String.prototype.slice;
show([o.charAt(1), o.slice(8, -1), o.length]);
// expect: o|Object|77
var n = new Number(1250);
n.indexOf = String.prototype.indexOf;
n.upper = String.prototype.toUpperCase;
show([n.indexOf(5), n.indexOf("0"), n.upper()]);
// expect: 2|3|1250

// Who is converted, and in which order.
var log = "";
function noisy(name, value) {
    var object = new Object();
    object.toString = function () { log += name + " "; return value; };
    object.valueOf = function () { log += name + "! "; return value; };
    return object;
}
function order(member) {
    var self = noisy("this", "abcabc");
    self.member = String.prototype[member];
    log = member + ": ";
    var result = self.member(noisy("first", "1"), noisy("second", "2"));
    WScript.Echo(log + "-> " + result + "\n");
}
order("charAt");
// expect: charAt: this first! -> b
order("charCodeAt");
// expect: charCodeAt: this first! -> 98
order("concat");
// expect: concat: this first second -> abcabc12
order("indexOf");
// expect: indexOf: first second! this -> -1
order("lastIndexOf");
// expect: lastIndexOf: first second! this -> -1
order("slice");
// expect: slice: this first! second! -> b
order("substring");
// expect: substring: this first! second! -> b
order("toUpperCase");
// expect: toUpperCase: this -> ABCABC
order("replace");
// expect: replace: -> undefined
order("split");
// expect: split: -> undefined
log = "";
var self = noisy("this", "a");
self.compare = String.prototype.localeCompare;
show([self.compare(noisy("that", "b")) < 0, String.fromCharCode(noisy("x", 72), noisy("y", 105)), log + "end"]);
// expect: true|Hi|that this x! y! end

// A String object converts by its own toString, then by that of String.prototype, and so do plain strings.
s.toString = function () { return "own"; };
show([s.charAt(0), s.concat("!"), s.length, s.valueOf()]);
// expect: o|own!|3|abc
var born = String.prototype.toString;
String.prototype.toString = function () { return "replaced"; };
show(["abc".charAt(0), "abc".length, "abc".indexOf("place"), "abc".slice(-1), "abc".substring(0, 3), "abc".charCodeAt(0)]);
// expect: r|3|2|d|rep|114
delete String.prototype.toString;
show(["abc".slice(0, 30), "abc".valueOf()]);
// expect: [object String]|abc
String.prototype.toString = born;
show(["abc".charAt(0), "abc".toString(), "abc".slice(1)]);
// expect: a|abc|bc

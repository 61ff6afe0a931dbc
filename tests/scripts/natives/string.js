// What the members of String and String.prototype give.
// args: -load {root}/tests/support/show.js

show([String(), String(null), String(1.5), String("x"), typeof String(1)]);
// expect: undefined|null|1.5|x|string
show([new String(), (new String()).length, typeof new String(1), new String("abc") == "abc"]);
// expect: undefined|9|object|true
show([String.fromCharCode(), String.fromCharCode(65, "66", 67.9, 0x10041), String.fromCharCode(-1).charCodeAt(0)]);
// expect: |ABCA|65535
show([String.fromCharCode(0x263a).length, "a\u263ab".charCodeAt(1), "\ud83d\ude00".length]);
// expect: 1|9786|2

show(["abc".charAt(), "abc".charAt(NaN), "abc".charAt(-0.9), "abc".charAt(2.9), "abc".charAt("1"), "abc".charAt(null)]);
// expect: a|a|a|c|b|a
show(["abc".charAt(-1), "abc".charAt(3), "abc".charAt(Infinity), "abc".charAt(4294967296), "".charAt(0)]);
// expect: ||||
show(["abc".charCodeAt(), "abc".charCodeAt(2), "abc".charCodeAt(3), "abc".charCodeAt(-1), "\xe9".charCodeAt(0)]);
// expect: 97|99|NaN|NaN|233
show(["a".concat(), "a".concat("b", 1, null, undefined, [2, 3]), "".concat("")]);
// expect: a|ab1nullundefined2,3|

show(["abcabc".indexOf("c"), "abcabc".indexOf("c", 3), "abcabc".indexOf("c", 2.9), "abc".indexOf("c", -5), "abc".indexOf("C")]);
// expect: 2|5|2|2|-1
show(["abc".indexOf("a", Infinity), "abc".indexOf("a", 2147483648), "abc".indexOf("a", 2147483647), "abc".indexOf("a", 1)]);
// expect: 0|0|-1|-1
show(["abc".indexOf(""), "abc".indexOf("", 3), "abc".indexOf("", 4), "".indexOf(""), "".indexOf("a")]);
// expect: 0|3|-1|0|-1
show(["an undefined word".indexOf(), "a1b".indexOf(1), "abc".indexOf("abcd"), "abc".indexOf("bc", NaN)]);
// expect: 3|1|-1|1
show(["abcabc".lastIndexOf("c"), "abcabc".lastIndexOf("c", 4), "abcabc".lastIndexOf("abc", 3), "abcabc".lastIndexOf("abc", 2)]);
// expect: 5|2|3|0
show(["abc".lastIndexOf("c", 99), "abc".lastIndexOf("a", Infinity), "abc".lastIndexOf("b", Infinity), "abc".lastIndexOf("b", -1)]);
// expect: 2|0|-1|-1
show(["abc".lastIndexOf(""), "abc".lastIndexOf("", 1), "abc".lastIndexOf("", 99), "".lastIndexOf(""), "abc".lastIndexOf("abcd")]);
// expect: 3|1|3|0|-1
var ab = "abababababababab", long = ab + ab + ab + ab + ab;
show([("x" + long + "c" + long + "c").indexOf(long + "c", 2), ("cab" + long + "c").lastIndexOf("ab" + long), long.indexOf(long + "a")]);
// expect: 82|1|-1
show(["a".localeCompare("b") < 0, "b".localeCompare("a") > 0, "a".localeCompare("a"), "1".localeCompare(1)]);
// expect: true|true|0|0

show(["abc".slice(-2), "abc".slice(2, 1), "abc".slice(0, -1), "abc".slice(), "abc".slice(1, undefined), "abc".slice(1, null)]);
// expect: bc||ab|abc|bc|
show(["abc".slice(-Infinity, Infinity), "abc".slice(-9, 2), "abc".slice(3), "abc".slice(1.9, 2.9), "abc".slice("1"), "abc".slice(-4294967297)]);
// expect: abc|ab||b|bc|abc
show(["abc".substring(2, 0), "abc".substring(NaN, 2), "abc".substring(-1, 2), "abc".substring(1), "abc".substring()]);
// expect: ab|ab|ab|bc|abc
show(["abc".substring(Infinity, 1), "abc".substring(5, 9), "abc".substring(1, null), "abc".substring("1", "2"), "abc".substring(0.9, 1.9)]);
// expect: bc||a|b|a
show(["abc".match("a"), "abc".replace("a", "b"), "abc".search("a"), "a,b".split(",")]);
// expect: undefined|undefined|undefined|undefined

show(["aZ9_".toLowerCase(), "aZ9_".toUpperCase(), "aZ9_".toLocaleLowerCase(), "aZ9_".toLocaleUpperCase(), "".toUpperCase(), "q".toUpperCase()]);
// expect: az9_|AZ9_|az9_|AZ9_||Q
// A character stays one character, also where the published mapping has two.
show(["x\xe9".toUpperCase() == "X\xc9", "X\xc9".toLowerCase() == "x\xe9", "\xdf".toUpperCase() == "\xdf", "x\xff".toUpperCase().charCodeAt(1), "\u0130".toLowerCase(), "\u1fb3".toUpperCase().charCodeAt(0)]);
// expect: true|true|true|376|i|8124

// Parts of parts, and parts of a text that went on growing.
var grown = "";
for (var i = 0; i < 100; i++) {
    grown += "0123456789";
}
var part = grown.substring(500, 530);
grown += "tail";
show([part.slice(5, 15), part.slice(5, 15).substring(3, 6), grown.slice(-6), grown.length, part.length]);
// expect: 5678901234|890|89tail|1004|30

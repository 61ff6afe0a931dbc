// args: -load {root}/lib/text.js
// args: -load {root}/tests/support/show.js
function listed(array) { // every element between bars, so that empty ones are seen
    var text = "";
    for (var i = 0; i < array.length; i++) {
        text += "|" + array[i];
    }
    return text + "| " + array.length;
}

show("split", listed(Text.split("a,b,,c,", ",")) + listed(Text.split("", ",")) + listed(Text.split("abc", "")) +
     listed(Text.split("a--b-c", "--")) + listed(Text.split(",", ",")) + listed(Text.split(102, 0)) +
     listed(Text.split("aaa", "aa")) + listed(Text.split("", "")));
show("lines", listed(Text.lines("a\r\n\nb\n")) + listed(Text.lines("")) + listed(Text.lines("a\nb\r")) +
     listed(Text.lines("\n")) + Text.lines("a\rb\n\n")[0].length);
show("words", listed(Text.words(" \t a  b\r\nc")) + listed(Text.words(" ")) + listed(Text.words(7)));
show("join", Text.join([1, null, undefined, "", "x"], "-") + ";" + Text.join([null, 1]) + ";" + Text.join([]) + ";" +
     Text.join(new Array(3), "+") + ";" + Text.join(["a"], ", "));
show("replaceFirst", Text.replaceFirst("a.a.a", ".", "$1") + ";" + Text.replaceFirst("abc", "x", "y") + ";" +
     Text.replaceFirst("abc", "", "y") + ";" + Text.replaceFirst("abc", "abc", ""));
show("replaceAll", Text.replaceAll("a.a.a", "a", "aa") + ";" + Text.replaceAll("aaaa", "aa", "a") + ";" +
     Text.replaceAll("abc", "", "-") + ";" + Text.replaceAll("abc", "c", undefined) + ";" +
     Text.replaceAll("\\a\\", "\\", "/"));
show("trim", "<" + Text.trim(" \t\r\n a b \n") + "><" + Text.trim("") + "><" + Text.trim(" \n ") + ">");
show("pad", Text.padLeft("7", 3) + Text.padLeft(7, 3, "0") + Text.padLeft("long", 3) + Text.padRight("a", 6, "xyz") +
     Text.padLeft("a", 3, "") + "<" + Text.padRight("b", 3) + ">" + Text.padLeft("", 0, "x"));
show("repeat", Text.repeat("ab", 3) + Text.repeat("x", 0) + Text.repeat("x", -1) + Text.repeat("y", 1.5));
show("ends", [Text.startsWith("abc", "ab"), Text.startsWith("abc", "abcd"), Text.startsWith("abc", ""),
     Text.endsWith("abc", "bc"), Text.endsWith("abc", "abcd"), Text.endsWith("abc", ""), Text.endsWith("abab", "ab"),
     Text.contains("abc", "b"), Text.contains("abc", "d"), Text.startsWith(123, 12)]);
show("bytes", Text.bytes("a\u00ff\u0141") + " " + Text.bytes("").length + " " + Text.fromBytes([113, 118]) + Text.fromBytes([255]).charCodeAt(0));

// Nothing grows out of proportion: a text of a megabyte, cut and put together again.
var big = Text.repeat("0123456789abcde\n", 65536);
show("a megabyte", big.length + " " + Text.lines(big).length + " " +
     (Text.replaceAll(Text.replaceAll(big, "\n", "--"), "--", "\n") == big) + " " + Text.words(big).length);
// expect: split: |a|b||c|| 5|| 1|a|b|c| 3|a|b-c| 2||| 2|1|2| 2||a| 2| 0
// expect: lines: |a||b| 3| 0|a|b| 2|| 13
// expect: words: |a|b|c| 3| 0|7| 1
// expect: join: 1----x;,1;;++;a
// expect: replaceFirst: a$1a.a;abc;yabc;
// expect: replaceAll: aa.aa.aa;aa;abc;abundefined;/a/
// expect: trim: <a b><><>
// expect: pad:   7007longaxyzxya<b  >
// expect: repeat: abababy
// expect: ends: true,false,true,true,false,true,true,true,false,true
// expect: bytes: 97,255,65 0 qv255
// expect: a megabyte: 1048576 65536 true 65536

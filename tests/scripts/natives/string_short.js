// The machine's short way to the members of a text gives what the members of its object give, and is closed
// where a script could tell the two apart.
var names = ["toString", "valueOf", "charAt", "charCodeAt", "concat", "indexOf", "lastIndexOf", "localeCompare", "match",
             "replace", "search", "slice", "split", "substring", "toLowerCase", "toLocaleLowerCase", "toUpperCase",
             "toLocaleUpperCase"];
var values = [undefined, null, true, 0, -1, 2.7, 5000000000, NaN, "", "b", "1", -1/0, 9, 10, 1/0, "abc"];
var texts = ["", "a", "abcABCabc\xe9"];
var wrong = "";
for (var t = 0; t < texts.length; t++) {
    var text = texts[t];
    var object = new String(text);
    for (var n = 0; n < names.length; n++) {
        var name = names[n];
        for (var i = 0; i < values.length; i++) {
            wrong += String(text[name](values[i])) == String(object[name](values[i])) ? "" : name + " ";
            for (var j = 0; j < values.length; j++) {
                wrong += String(text[name](values[i], values[j])) == String(object[name](values[i], values[j])) ? "" : name + " ";
            }
        }
    }
}
var log = "";
var noisy = new Object();
noisy.valueOf = function () { log += "v"; return 1; };
noisy.toString = function () { log += "s"; return "n"; };
WScript.Echo(wrong + "abc".charAt(noisy) + "abc".concat("d", noisy) + log + "\n");
var before = String.prototype.toString;
String.prototype.toString = function () { return "replaced"; };
WScript.Echo("abc".charAt(0) + "\n");
String.prototype.toString = before;
WScript.Echo("abc".charAt(0) + "\n");
delete String.prototype.toString;
WScript.Echo("abc".charAt(0) + "\n");
// expect: babcdnvs
// expect: r
// expect: a
// expect: [

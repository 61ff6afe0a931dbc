// Each rule at work, and beside it what it must leave alone. Behind a line stand the reports that it gets.
function readVersion(path) {
    try { // warning: nothing of a try statement runs, not even its first block [dropped-try]
        return parseInt(path);
    } catch (e) {
        throw e; // warning: throw does nothing, and the script goes on: Assert.fail of lib/assert.js ends a run [dropped-throw]
    }
}

readVersion(input).split("."); // warning: 'split' does nothing and gives undefined: use Text.split of lib/text.js [empty-member]
Text.split(input, ".");
parseFloat(input); // warning: 'parseFloat' does nothing and gives undefined: use Number(text), or Numbers.parseDecimal of lib/number.js [empty-member]

readVersion.call(null); // warning: there is no member 'call': call the function itself, and pass the object as an argument [missing-member]
input.trim().padStart(3); // warning: there is no member 'padStart': use Text.padLeft of lib/text.js [missing-member] // warning: there is no member 'trim': use Text.trim of lib/text.js [missing-member]
Text.trim(input);
var list = { reduce: function () {} };
list.reduce();

WScript.echo(1); // warning: there is no 'echo' in WScript, but 'Echo' [unknown-member]
WScript.Echo(Math.trunc(1.5) + Date.now()); // warning: there is no 'trunc' in Math [unknown-member] // warning: there is no 'now' in Date [unknown-member]
WScript.Echo(typeof Math.sign + (Math.cbrt == undefined) + Math.PI + Date.length + Math.toString());
Math.half = function (x) { return x / 2; };
WScript.Echo(Math.half(5));
function shadows(Math) { return Math.trunc(2); }
with (input) {
    Math.trunc(shadows);
    list = function () { unknown = Math.trunc(1); };
}

console.log(1); // warning: there is no 'console': print with WScript.Echo [missing-global]
new Map(); // warning: there is no 'Map': use an object, and hasOwnProperty [missing-global]
function variadic() { return arguments.length + module; } // warning: there is no 'arguments': a function has its parameters alone; pass an array [missing-global]
var process = { exit: variadic };
process.exit();
WScript.Echo(Math.random()); // warning: Math.random gives any number at all, not one between 0 and 1, and the same sequence in each run [math-random]

top1 = 0;
function assigns(parameter) {
    var local;
    parameter = local = top1 = 1;
    if (output == undefined) {
        output = input;
    }
    function inner() { local++; parameter += 1; lost = 2; } // warning: 'lost' is declared nowhere: this assigns a global variable [undeclared-assignment]
    inner();
    lost = 3;
    for (key in parameter) { // warning: 'key' is declared nowhere: this assigns a global variable [undeclared-assignment]
        if (key) {
            continue;
        }
    }
    return stray++; // warning: 'stray' is declared nowhere: this assigns a global variable [undeclared-assignment]
}
assigns();

function unused() { } // warning: the function 'unused' is never used [unused-function]
function usedInText() { }
eval("usedInText()");
(function () {
    function nested() { } // warning: the function 'nested' is never used [unused-function]
    list.named = function named() { };
})();

WScript.Echo(list == 1 // a comment
    || new Date().getTime()); // warning: new takes the whole chain behind it: write (new F(...)).member [new-chain]
WScript.Echo((new Date()).getTime() + new list.Date(1) + new process.Thing + new (list.at().Date)(1));
TBSys.copyFile("a", "b\u0100"); // warning: a path ends at a NUL, and gets a ? for a character above U+00FF: this names another file [odd-path]
TBSys.writeStringToFile("a\xff" + load("a\u0000"), "\u0100"); // warning: a path ends at a NUL, and gets a ? for a character above U+00FF: this names another file [odd-path]
list = [1, 2, ]; // warning: the comma in front of the ] adds an element, which is undefined [trailing-comma]
list = [[1, , 2], [, ], []];

"use strict";
var a, b;
list.length == 5; // warning: this statement changes nothing and is left out [no-effect]
if (a)
    new Date; // warning: without parentheses behind it this new is left out [no-effect]
for (a; a < 3; a++) ;

continue; // warning: outside a loop continue does nothing [stray-continue]
while (a < 3) {
    a++;
    switch (a) {
    case 1:
        continue;
    default:
        list == a; // warning: this statement changes nothing and is left out [no-effect]
        break;
    }
}

for (var name in list) { // warning: for in also gives the members of Object.prototype, and the length of an Array: test with hasOwnProperty [for-in]
    WScript.Echo(name);
}
for (name in list) // check: ignore, all names are wanted
    WScript.Echo(name);
for (name in list) {
    if (typeof list[name] != "function") {
        a += list[name];
    }
}
for (name in list) {
    a = list.hasOwnProperty(name) ? 1 : 0;
}

//--- null is made here, so it may be found
var found = null;
if (found == null && input != null) {
    WScript.Echo(found);
}
//--- and here it is not
if (input == null) { // warning: null equals nothing but null, and nothing here is null: what is missing is undefined [null-comparison]
    WScript.Echo(null == undefined); // warning: null equals nothing but null, and nothing here is null: what is missing is undefined [null-comparison]
}
if (input != undefined && input != null || typeof input == "object" && input != null) {
    WScript.Echo(input);
}
//--- a library: its functions and members are there for others
load("other.js");
var Library = {};
function exported() { return Library; }
Library.parse = function (text) {
    function nested() { } // warning: the function 'nested' is never used [unused-function]
    return text.split("") + Other.split(text); // warning: 'split' does nothing and gives undefined: use Text.split of lib/text.js [empty-member]
};
//--- a script with members and globals of its own
function parseInt(text) { return Number(text); }
Library.split = function (text) { return library.split(text) + parseInt(text); };
var Date = Library;
Date.now();

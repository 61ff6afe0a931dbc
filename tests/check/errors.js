// What the compiler refuses, with what somebody who knows JavaScript meant.
//--- each line
if (a === b) { } // error: expected ) found === [syntax] // note: write == or !=; they convert, so compare typeof as well where that matters [syntax]
var f = x => x; // error: expected an expression, found > [syntax] // note: there are no arrow functions: write function (x) { return ...; } [syntax]
var f = async x => x; // error: expected ; found an identifier [syntax] // note: nothing is asynchronous: a call returns when its work is done [syntax]
if (x instanceof Date) { } // error: expected ) found an identifier [syntax] // note: there is no operator instanceof: write Class.prototype.isPrototypeOf(value) [syntax]
for (x of xs) { } // error: expected ; found an identifier [syntax] // note: there is no loop over values: count an index up to the length [syntax]
var r = /ab+c/; // error: expected an expression, found / [syntax] // note: there are no regular expressions: search with indexOf, or lib/text.js [syntax]
class A { } // error: expected an expression, found class [syntax] // note: there are no classes: write a function and give its prototype the methods [syntax]
try { } catch { } // error: expected ( found { [syntax] // note: catch needs a name in parentheses; besides, nothing of a try statement ever runs [syntax]
do x++; while (x < 3) // error: expected { found an identifier [syntax] // note: the body of do must be a block in braces [syntax]
var o = { get x() { return 1; } }; // error: expected : found an identifier [syntax] // note: there are no getters and setters: write functions [syntax]
var o = { a }; // error: expected : found } [syntax] // note: each name in an object needs its value: write {name: name} [syntax]
function f(a = 1) { } // error: expected , found = [syntax] // note: parameters have no default: test for undefined in the function [syntax]
f(...xs); // error: expected an expression, found . [syntax] // note: there is no spread or rest (...): pass an array [syntax]
a = b ?? c; // error: expected an expression, found ? [syntax] // note: there is no ?? and no ?.: compare with undefined [syntax]
a = 08; // error: expected ; found a number [syntax] // note: a number that begins with 0 is octal [syntax]
o.default = 1; // error: expected an identifier found default [syntax] // note: this is a reserved word: write object["word"] [syntax]
a = `x`; // error: unknown character '`' [syntax] // note: there are no templates: join texts with + [syntax]
#!/usr/bin/quorvane // error: unknown character '#' [syntax] // note: there is no #! line: run a file with quorvane -load [syntax]
{{239}}{{187}}{{191}}var a; // error: unknown character '{{239}}' [syntax] // note: the file begins with a byte-order mark: save it without [syntax]
var {{195}}{{164}} = 1; // error: unknown character '{{195}}' [syntax] // note: characters beyond ASCII stand only in strings and comments [syntax]
a = "b // error: end of file in string constant [syntax] // note: a string ends on its line: write \n, and join the pieces with + [syntax]
if (x) { break; } // error: 'break' not in a 'for' or 'while' loop [syntax]
//--- found behind the parse, yet with the line where it stands
function f() {
    for (a in b) { break; }
    switch (a) { case 1: break; }
    if (a) { break; } // error: 'break' not in a 'for' or 'while' loop [syntax]
}

//---
function f() {
    a = b.c = d[e] = 1;
    (a, b)++; // error: only left-hand-side expressions allowed [syntax]
}


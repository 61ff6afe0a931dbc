// What only the code generator sees has the line of the text's end: the last line end begins line 6.
WScript.Echo("never");
function f() { f() = 1; }

// expect error: line 6: only left-hand-side expressions allowed

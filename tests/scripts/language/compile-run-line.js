// At run time the line is that of the node, built behind its operands: a call's that of its bracket.
var f;
f(
    1,
    2
);
// expect error: line 6: not a function object

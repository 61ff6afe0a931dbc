// Twenty digits behind the point are the most, and a bit more is too much.
WScript.Echo((1).toFixed(20).length + "\n");
(1).toFixed(20.5);
// expect: 22
// expect error: line 3: fraction digits should 0 through 20

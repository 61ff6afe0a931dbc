// A radix has to be one that the digits suffice for.
WScript.Echo((36).toString(36) + (2).toString(2) + "\n");
(1).toString(37);
// expect: 1010
// expect error: line 3: radix should be 2 through 36

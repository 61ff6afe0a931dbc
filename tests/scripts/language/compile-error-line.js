// A message has the line of the token that the parser stumbled over; nothing of the text has run then.
WScript.Echo("never");
var a = [1,
         2 /* a comment
   over lines */ 3];
// expect error: line 5: ']' or ',' expected, found a number

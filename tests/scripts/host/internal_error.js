// Recursion without end has no message of the script's own.
// expect-raw: "started"
// expect stderr: Internal error detected
// exit: 1
WScript.Echo('started');
function again() { again(); }
again();

// expect error: line 4: not a function object
// expect: called
var table = {run: function () { return "called"; }, name: "run"};
function call(key) { return table[key](); }
WScript.Echo(call("run") + "\n");
call("name");

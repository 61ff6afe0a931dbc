// args: -load {root}/lib/run.js -load {root}/lib/text.js -load {root}/lib/assert.js
function listed(array) {
    return array.length + " <" + Text.join(array, "|") + ">\n";
}
WScript.Echo(listed(Run.lines("true")));
WScript.Echo(Run.output("echo first") + "\n");
WScript.Echo(listed(Run.lines("printf a\\nbb\\n\\ncc\\n")));
TBSys.run("echo between", true); // what others capture is nobody else's output
WScript.Echo(listed(Run.lines("echo last")));
WScript.Echo(listed(Run.lines("true")));

var words = ["a", "a b", "say \"x\"", "end\\", "\\\"", "\\\\", " ", "a\\ b\"", "$HOME *", "tab\tbed"];
for (var i = 0; i < words.length; i++) {
    Assert.equal(Run.output("printf %s.. " + Run.quote(words[i]) + " " + Run.quote("next")), words[i] + "..next..");
}
WScript.Echo(words.length + " words come through\n");

TBSys.run("sh -c \"echo noise >&2\"", true);
eval("Run.output('sh -c \"echo out; echo wrong >&2; exit 3\"')");
eval("Run.output('no-such-command')");
WScript.Echo(Run.output("echo goes on") + "\n");
// expect: 0 <>
// expect: first
// expect: 4 <a|bb||cc>
// expect: 1 <last>
// expect: 0 <>
// expect: 10 words come through
// expect: error: status 3 of sh -c "echo out; echo wrong >&2; exit 3": wrong
// expect: error: status -1 of no-such-command
// expect: goes on

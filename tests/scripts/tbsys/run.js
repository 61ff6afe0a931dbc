// expect: [] []
// expect: 0 3 -1 -128 -1 -1 -1 -1
// expect: [] []
// expect: 0 [ab] [cd]
// expect: 0 [ab|ef||gh] [cd]
// expect: 0 [*|$HOME|a b|a"b|c>d]
// expect: -1 same
function line(text) { WScript.Echo(text + '\n'); }
function lines(text) {
    var result = '';
    for (var i = 0; i < text.length; ++i)
        result += text.charAt(i) == '\n' ? '|' : text.charAt(i);
    return '[' + result + ']';
}
function captured() { return lines(TBSys.getRunStdout()) + ' ' + lines(TBSys.getRunStderr()); }
line(captured());
line(TBSys.run('true', true) + ' ' + TBSys.run('sh -c "exit 3"', true) + ' ' + TBSys.run('sh -c "exit 255"', false) + ' ' +
     TBSys.run('sh -c "exit 128"', true) + ' ' + TBSys.run('sh -c "kill -9 $$"', true) + ' ' +
     TBSys.run('no-such-program', true) + ' ' + TBSys.run('', true) + ' ' + TBSys.run(' "" ', false));
line(captured());
line(TBSys.run('sh -c "echo ab; echo cd >&2"', true) + ' ' + captured());
line(TBSys.run('printf "ef\\n\\ngh\\nx"', true) + ' ' + captured());
var before = TBSys.getRunStdout();
line(TBSys.run('printf "%s\\n" * $HOME "a b" a\\"b c>d', true) + ' ' +
     lines(TBSys.getRunStdout().substring(before.length + 1, 1000)));
before = captured();
line(TBSys.run('./not-executable', false) + (captured() == before ? ' same' : ' changed'));

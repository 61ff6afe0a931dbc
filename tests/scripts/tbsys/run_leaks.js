// A thousand runs leave no descriptor and no zombie, and a child has only what it should.
// expect: 1000 same 0
function descriptors() {
    TBSys.run('sh -c "ls /proc/$PPID/fd | wc -l > count"', true);
    return Number(TBSys.readStringFromFile('count'));
}
var before = descriptors();
var good = 0;
for (var i = 0; i < 500; ++i)
    good += (TBSys.run('true', true) == 0) + (TBSys.run('true', false) == 0);
TBSys.run('sh -c "ps -o stat= --ppid $PPID | grep -c Z; true"', true);
WScript.Echo(good + ' ');
// While the child counts, the parent may still have its copies of the pipes' write ends.
for (i = 0; i < 100 && descriptors() > before; ++i)
    ;
WScript.Echo((i < 100 ? 'same' : 'more') + ' ' + TBSys.getRunStdout() + '\n');

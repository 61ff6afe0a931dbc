// A thousand runs leave no descriptor and no zombie, and a child has only what it should.
// expect: 1000 same 0
// max cpu: 6
function descriptors() {
    // By then the parent has closed its copies of the pipes' write ends.
    TBSys.run('sh -c "sleep 0.2; ls /proc/$PPID/fd | wc -l > count"', true);
    return TBSys.readStringFromFile('count');
}
var before = descriptors();
var good = 0;
for (var i = 0; i < 500; ++i)
    good += (TBSys.run('true', true) == 0) + (TBSys.run('true', false) == 0);
TBSys.run('sh -c "ps -o stat= --ppid $PPID | grep -c Z; true"', true);
WScript.Echo(good + ' ' + (descriptors() == before ? 'same' : 'more') + ' ' + TBSys.getRunStdout() + '\n');

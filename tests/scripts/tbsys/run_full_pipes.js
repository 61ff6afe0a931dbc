// Megabytes on both pipes, a closed stdout, and a grandchild that keeps stderr open.
// expect: 0 40000 40000
// expect: 4 40000 60000
// expect: 2 40001 60001
function count(text) {
    var lines = text.length > 0 ? 1 : 0;
    for (var at = text.indexOf('\n'); at >= 0; at = text.indexOf('\n', at + 1))
        ++lines;
    return lines;
}
function line(status) {
    WScript.Echo(status + ' ' + count(TBSys.getRunStdout()) + ' ' + count(TBSys.getRunStderr()) + '\n');
}
TBSys.writeStringToFile('both', 'i=0; while [ $i -lt 40000 ]; do echo 0123456789012345678901234567890123456789; ' +
                                'echo 0123456789012345678901234567890123456789 >&2; i=$((i+1)); done');
line(TBSys.run('sh both', true));
TBSys.writeStringToFile('closed', 'exec >&-; i=0; while [ $i -lt 20000 ]; do ' +
                                  'echo 0123456789012345678901234567890123456789 >&2; i=$((i+1)); done; exit 4');
line(TBSys.run('sh closed', true));
line(TBSys.run('sh -c "sleep 30 >&- & echo out; echo err >&2; exit 2"', true));

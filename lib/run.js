// Run: other programs, with an end of the run where they fail. TBSys.getRunStdout() gives the output of all
// commands so far; here each command has its own.
//
//   Run.output(command)     runs the command and gives its stdout as one text, without the last line end;
//                           fails, with what came on stderr, unless the exit status is 0
//   Run.lines(command)      the same as an array of lines
//   Run.quote(word)         the word as one argument of a command line, whatever blanks and quotes it holds
//
// There is no shell: no wild cards, no redirection, no variables. No word can be empty.
// Needs assert.js and text.js.

var Run = {};

// Lines are only ever added, behind a line end unless they are the first.
Run.added = function (before, after) {
    return after.substring(before == "" ? 0 : before.length + 1);
};

Run.output = function (command) {
    var outBefore = TBSys.getRunStdout();
    var errorsBefore = TBSys.getRunStderr();
    var status = TBSys.run(command, true);
    if (status != 0) {
        var errors = Run.added(errorsBefore, TBSys.getRunStderr());
        Assert.fail("status " + status + " of " + command + (errors == "" ? "" : ": " + errors));
    }
    return Run.added(outBefore, TBSys.getRunStdout());
};

Run.lines = function (command) {
    return Text.lines(Run.output(command));
};

// A backslash in front of a quote would take it for a character: those at the end go behind the closing
// quote.
Run.quote = function (word) {
    word = Text.replaceAll(word, "\"", "\\\"");
    var end = word.length;
    while (end > 0 && word.charAt(end - 1) == "\\") {
        end--;
    }
    return "\"" + word.substring(0, end) + "\"" + word.substring(end);
};

#!/usr/bin/env python3
"""Holds quorvane-check to what the scripts of tests/check say about themselves, and to its promises about any text.

usage: run_check.py CHECKER QUORVANE

Behind a line of a script, as comments at its end, stand the reports that the line gets:

  x.split(","); // warning: 'split' does nothing ... [empty-member]

A line that begins with //--- opens a further script of the same file; behind "//--- each line" every line is one.
{{n}} stands for the byte n.
"""
import json
import pprint
import random
import re
import subprocess
import sys
import tempfile
from pathlib import Path

from support import differences, finish

TESTS = Path(__file__).resolve().parent
REPORT = re.compile(r" // (?=(?:error|warning|note): )")
LINE = re.compile(r"(.*?):(\d+): (error|warning|note): (.*) \[([a-z-]+)\]$")


class Runner:
    def __init__(self, checker, folder):
        self.checker, self.folder, self.faults = checker, folder, []

    def run(self, *words, text="", limits=()):
        run = subprocess.run([*limits, self.checker, *words], cwd=self.folder, input=text.encode("latin-1"),
                             capture_output=True, timeout=120)
        return run.returncode, run.stdout.decode("latin-1"), run.stderr.decode("latin-1")

    def hold(self, what, actual, expected):
        self.faults += differences(what, *(pprint.pformat(value, width=200) for value in (expected, actual)))


def scripts_of(path):
    """Gives (text, [(line, severity, message with its rule)]) for each script of a file."""
    source = re.sub(r"\{\{(\d+)\}\}", lambda byte: chr(int(byte[1])), path.read_text(encoding="latin-1"))
    titles = ["", *re.findall(r"^//---(.*)\n", source, re.MULTILINE)]
    for title, part in zip(titles, re.split(r"^//---.*\n", source, flags=re.MULTILINE)):
        for script in part.rstrip("\n").split("\n") if title == " each line" else [part]:
            lines = [REPORT.split(line) for line in script.split("\n")]
            reports = [(number, *report.split(": ", 1)) for number, line in enumerate(lines, 1) for report in line[1:]]
            yield "\n".join(line[0] for line in lines), reports


def parsed(stderr):
    """The reports of a run, and "" for each line that is none."""
    matches = [LINE.match(line) for line in stderr.splitlines()]
    return [match and (match[1], int(match[2]), match[3], "%s [%s]" % (match[4], match[5])) for match in matches]


def check_reports(runner):
    """As text, as JSON and with warnings as errors: the reports that the scripts name, and no others."""
    expected, names = [], []
    for path in sorted((TESTS / "check").glob("*.js")):
        for text, reports in scripts_of(path):
            names.append("%s-%d.js" % (path.stem, len(names)))
            (runner.folder / names[-1]).write_text(text, encoding="latin-1")
            own = [(names[-1], *report) for report in reports]
            errors = any(report[2] == "error" for report in own)
            status, out, err = runner.run(names[-1])
            runner.hold(names[-1], (status, out, parsed(err)), (1 if errors else 0, "", own))
            expected += own
    strict = [(*report[:2], report[2].replace("warning", "error"), report[3]) for report in expected]
    status, _, err = runner.run("--werror", "--", *names)
    runner.hold("--werror", (status, parsed(err)), (1, strict))
    status, out, err = runner.run("--json", *names)
    found = [(r["path"], r["line"], r["severity"], "%s [%s]" % (r["message"], r["rule"]))
             for r in json.loads(out.encode("latin-1").decode("utf-8"))]
    runner.hold("--json", (status, found, err), (1, expected, ""))


def check_command_line(runner):
    (runner.folder / "clean.js").write_text("WScript.Echo(1);\n")
    (runner.folder / "-odd.js").write_text("new Date;\n")
    (runner.folder / "f.js").write_text("var f = function (x) {\n  return x;\n};\nfunction g() { f(2); }\n")
    table = [  # words, stdin, status, stdout, stderr; a pattern each
        (["clean.js"], "", 0, "", ""),
        (["--werror", "clean.js", "-"], "\n1 === 2", 1, "", r"<stdin>:2: error: .*===.*\n<stdin>:2: note: .*\n"),
        (["--werror", "--", "-odd.js"], "", 1, "", r"-odd\.js:1: error: .*\[no-effect\]\n"),
        (["-odd.js"], "", 2, "", "quorvane-check: unknown option -odd.js; try --help\n"),
        ([], "", 2, "", "quorvane-check: no file is given; try --help\n"),
        (["--json", "--listing", "clean.js"], "", 2, "", "quorvane-check: .*\n"),
        (["missing.js", "."], "", 2, "", r"quorvane-check: cannot read missing\.js: No such.*\n.* \.: Is a dir.*\n"),
        (["missing.js", "-"], "1 1", 2, "", r"quorvane-check: cannot read .*\n<stdin>:1: error: .*\n"),
        (["--json", "clean.js"], "", 0, r"\[\n\]\n", ""),
        (["--help"], "", 0, "Usage: quorvane-check .*", ""),
        (["--version"], "", 0, r"quorvane-check \d+\.\d+\.\d+\.\d+\.\d+\n", ""),
        (["--listing", "f.js"], "", 0, r"f\.js: program\n\n0000:  CLOSURE\t#1\n.*\n\nf\.js:1: function #0\n\n0000:  "
         r"GETA\tx\n.*\n\nf\.js:4: function #1 g\n\n.*CALLG\tf .*", ""),
    ]
    for words, text, status, out, err in table:
        actual = runner.run(*words, text=text)
        fits = actual[0] == status and re.fullmatch(out, actual[1], re.DOTALL) and re.fullmatch(err, actual[2])
        runner.hold("quorvane-check %s" % words, actual if not fits else None, None)
    for words in (["--help"], ["--listing", "f.js"]):
        with open("/dev/full", "wb") as full:
            run = subprocess.run([runner.checker, *words], cwd=runner.folder, stdout=full, stderr=subprocess.PIPE)
        runner.hold("output lost", (run.returncode, run.stderr),
                    (2, b"quorvane-check: cannot write the standard output\n"))


def check_names(runner, quorvane):
    """The tables of names agree with the engine: each empty member of strings is one, and no missing name is there."""
    engine = lambda text: subprocess.run([quorvane, text], capture_output=True, text=True, check=True).stdout
    empty = engine("for (var k in String.prototype) if (Object.prototype[k] == undefined && 'a'[k]('a', 'a') == undefined)"
                   " WScript.Echo(k + ' ')").split()
    runner.hold("members of strings were found", len(empty) > 0, True)
    for name in empty:
        found = parsed(runner.run("-", text="'a'.%s('a')" % name)[2])
        runner.hold(name, [report[3].split(" ")[1:3] for report in found], [["does", "nothing"]])
    table = (TESTS.parent / "src/check/missing_names.cpp").read_text()
    members, missing = [re.findall(r'\{u"(\w+)"', part) for part in re.split(r"MissingName \w+\[\]", table)[3:5]]
    objects = ["''", "[]", "(0)", "(new Date())", "isNaN"]
    present = engine("WScript.Echo(%s)" % " + ' ' + ".join(
        ["typeof %s.%s" % (o, name) for o in objects for name in members] + ["typeof " + name for name in missing]))
    runner.hold("names that are missing", set(present.split()), {"undefined"})


def check_any_text(runner):
    """Deep, long and damaged texts: an answer, with reports in their form, on a native stack of 1 MiB."""
    deep, long, ladder = 100000, 200000, 5000
    texts = ["(" * deep, "{" * deep, "[" * deep, "a" + " + a" * long, "a" + ".b" * long + ".split()", "!" * deep,
             "function f() {" * deep, "new " * deep, "x = " * deep, "if (a) ; else " * ladder + "a++;",
             "a = " + "a ? b : " * ladder + "c;",
             "a(" * deep, "for (a in b) " * deep, "{ a: " * deep, "(" * 300 + "1" + ")" * 300 + ";",
             "for (a in b) {" * 300 + "c();" + "}" * 300, "x = [" + "1," * long + "];", "", "\0", "\\", "/*", "'"]
    seeds = [text for path in sorted((TESTS / "check").glob("*.js")) for text, _ in scripts_of(path)]
    seeds += [path.read_text(encoding="latin-1") for path in sorted((TESTS.parent / "lib").glob("*.js"))]
    chance = random.Random(1)
    for _ in range(150):
        words = re.findall(r"\w+|\s+|.", chance.choice(seeds))
        for _ in range(chance.randint(1, 8)):
            at = chance.randrange(len(words) + 1)
            words[at:at + chance.choice([0, 0, 1, 1, 2, 40])] = [chance.choice(words or [" "])]
        texts.append("".join(words))
    names = []
    for number, text in enumerate(texts):
        names.append("any-%d.js" % number)
        (runner.folder / names[-1]).write_text(text, encoding="latin-1")
    status, _, err = runner.run("--listing", *names, limits=["prlimit", "--stack=%d" % (1 << 20)])
    runner.hold("status of any text", status, 1)
    reports = re.findall(r"^any-(\d+)\.js:(\d+): (?:error|warning|note): .* \[[a-z-]+\]$", err, re.MULTILINE)
    runner.hold("lines that are reports", len(reports), len(err.split("\n")) - 1)
    for number, line in reports:
        lines = texts[int(number)].count("\n") + 1
        runner.hold("a line of any-%s.js" % number, 1 <= int(line) <= lines, True)
    # The frames of a sanitized build may use up the native stack before the limit of the parser is met.
    too_deep = r"^any-0\.js:1: error: (?:nesting too deep|virtual machine stack too small) \[syntax\]$"
    runner.hold("too deep", len(re.findall(too_deep, err, re.MULTILINE)), 1)
    runner.hold("not too deep", re.findall(r"any-(?:3|4|9|10|17)\.js:.*error.*", err), [])


def main():
    checker, quorvane = (str(Path(word).resolve()) for word in sys.argv[1:3])
    with tempfile.TemporaryDirectory() as folder:
        runner = Runner(checker, Path(folder))
        check_reports(runner)
        check_command_line(runner)
        check_names(runner, quorvane)
        check_any_text(runner)
    finish(runner.faults, "all reports are as told")


if __name__ == "__main__":
    main()

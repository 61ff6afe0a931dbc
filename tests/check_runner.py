#!/usr/bin/env python3
"""Tests run_script.py on a stand-in for the program, mostly with runs that it must not let pass."""
import subprocess
import sys
import tempfile
from pathlib import Path

RUNNER = Path(__file__).resolve().parent / "run_script.py"

# A program that takes -load FILE and does what the lines of the file that begin with "sh " say.
STAND_IN = """#!/bin/sh
for last; do :; done
[ -f "$last" ] && sed -n 's/^sh //p' "$last" > run.sh && . ./run.sh
[ "$1" = -words ] && printf '%s|' "$@"
exit ${code:-0}
"""

# Title, script, whether it passes. In the scripts, "~" stands for the comment sign.
CASES = [
    ("lines", "~ expect: a\n~ expect: b\nsh printf 'a\\nb\\n'", True),
    ("missing line end", "~ expect: a\nsh printf a", False),
    ("line too many", "~ expect: a\nsh printf 'a\\nb\\n'", False),
    ("blank line", "~ expect: a\n~ expect:\nsh printf 'a\\n\\n'", True),
    ("raw and Latin-1", "~ expect: \xe9\n~ expect-raw: \"x\\x00\\xff\"\nsh printf '\\351\\nx\\000\\377'", True),
    ("contains", "~ stdout-contains: bc\nsh printf abcd", True),
    ("contains not", "~ stdout-contains: bd\nsh printf abcd", False),
    ("unexpected stderr", "~ expect: a\nsh echo a; echo b >&2", False),
    ("error", "~ expect error: line 3: x\nsh echo 'error: line 3: x' >&2; code=1", True),
    ("error, wrong line", "~ expect error: line 3: x\nsh echo 'error: line 4: x' >&2; code=1", False),
    ("error, status 0", "~ expect error: x\nsh echo 'error: x' >&2", False),
    ("error and stray stdout", "~ expect error: x\nsh echo y; echo 'error: x' >&2; code=1", False),
    ("status", "~ exit: 3\nsh code=3", True),
    ("other status", "~ exit: 3\nsh code=2", False),
    ("asserts nothing", "~ args: -a\nsh true", False),
    ("misspelt expectation", "~ expect: a\n~ expect eror: b\nsh echo a", False),
    ("signal", "~ exit: 137\nsh kill -9 $$", False),
    ("sanitizer", "~ exit: 1\n~ stderr-contains: a\nsh echo 'a.cpp:1:2: runtime error: b' >&2; code=1", False),
    ("time limit", "~ exit: 0\nsh sleep 30", False),
    ("a child left behind", "~ expect: a\nsh echo a; sleep 30 &", True),
    ("words", "~ args: -words 'a b'\n~ expect-raw: \"-words|a b|-load|\"\n~ stdout-contains: {script}", False),
    ("words before", "~ args: -words 'a b'\n~ stdout-contains: -words|a b|-load|{script}|", True),
    ("words around", "~ args: -words {script} 'a b'\n~ stdout-contains: -words|{script}|a b|", True),
    ("only words", "~ args-only: -words 'a  b' \"\"\n~ expect-raw: \"-words|a  b||\"", True),
    ("files in", "~ file: d/x\n~| one\n~|\n~ file: y\n~ file-raw: z \"a\\0\"\n~ expect: 7\nsh cat d/x y z | wc -c",
     True),
    ("file out", "~ expect file: x\n~| a\nsh echo a > x", True),
    ("file out, absent", "~ expect file: x\n~| a\nsh true", False),
    ("environment and folder", "~ env: A=b\n~ expect: b {dir}\nsh echo $A $(pwd)", True),
    ("too large", "~ exit: 0\n~ max memory: 0.1\nsh true", False),
]


def main():
    wrong = []
    with tempfile.TemporaryDirectory() as folder:
        program, script = Path(folder, "program"), Path(folder, "case.js")
        program.write_text(STAND_IN)
        program.chmod(0o755)
        for title, text, passes in CASES:
            script.write_text(text.replace("~", "//"), encoding="latin-1")
            result = subprocess.run([sys.executable, str(RUNNER), "--measure", "--program", str(program), str(script)],
                                    env={"PATH": "/usr/bin:/bin", "QUORVANE_TIME_LIMIT": "2"},
                                    capture_output=True, text=True)
            if result.returncode != (0 if passes else 1):
                wrong.append("%s: %s %s%s" % (title, "passed" if not passes else "failed", result.stdout,
                                              result.stderr))
    print("\n".join(wrong) or "%d cases" % len(CASES))
    sys.exit(1 if wrong else 0)


if __name__ == "__main__":
    main()

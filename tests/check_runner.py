#!/usr/bin/env python3
"""Tests run_script.py on a stand-in for the program, mostly with runs that it must not let pass."""
import tempfile
from pathlib import Path

import run_script
from support import finish

# A program that takes -load FILE and does what the lines of the file that begin with "sh " say.
STAND_IN = """#!/bin/sh
for last; do :; done
[ -f "$last" ] && sed -n 's/^sh //p' "$last" > run.sh && . ./run.sh
[ "$1" = -words ] && printf '%s|' "$@"
exit ${code:-0}
"""
# Whether it passes, and a script; "~" stands for the comment sign.
CASES = [
    (True, "~ expect: a\n~ expect:\n~ expect: \xe9\n~ expect-raw: \"x\\x00\\xff\"\nsh printf 'a\\n\\n\\351\\nx\\000\\377'"),
    (False, "~ expect: a\nsh printf a"),
    (False, "~ expect: a\nsh printf 'a\\nb\\n'"),
    (False, "~ stdout-contains: a\n~ stdout-contains: bd\nsh printf abcd"),
    (False, "~ expect: a\nsh echo a; echo b >&2"),
    (True, "~ expect error: line 3: x\nsh echo 'error: line 3: x' >&2; code=1"),
    (False, "~ expect error: x\nsh echo 'error: x' >&2"),
    (False, "~ expect error: x\nsh echo y; echo 'error: x' >&2; code=1"),
    (True, "~ exit: 3\n~ max memory: 900\nsh code=3"),
    (False, "~ exit: 0\n~ max memory: 0.1\nsh true"),
    (False, "~ args: -a\nsh true"),
    (False, "~ exit: 137\nsh kill -9 $$"),
    (False, "~ exit: 1\n~ stderr-contains: a\nsh echo 'a.cpp:1:2: runtime error: b' >&2; code=1"),
    (False, "~ exit: 0\nsh sleep 30"),
    (True, "~ expect: a\nsh echo a; sleep 30 &"),
    (True, "~ args: -words 'a b'\n~ stdout-contains: -words|a b|-load|{script}|"),
    (True, "~ args: -words {script} 'a b'\n~ stdout-contains: -words|{script}|a b|"),
    (True, "~ args-only: -words 'a  b' \"\"\n~ expect-raw: \"-words|a  b||\""),
    (True, "~ file: d/x\n~| one\n~|\n~ file-raw: z \"a\\0\"\n~ env: A=b\n~ expect: 7 b {dir}\n"
           "sh echo $(cat d/x z | wc -c) $A $(pwd)"),
    (False, "~ expect file: x\n~| a\nsh true"),
]


def faults(folder):
    program, script = Path(folder, "program"), Path(folder, "case.js")
    program.write_text(STAND_IN)
    program.chmod(0o755)
    for passes, text in CASES + [(None, "~ expect: a\n~ expect eror: b\nsh echo a")]:
        script.write_text(text.replace("~", "//"), encoding="latin-1")
        try:
            found = list(run_script.failures(script, program, True, 1))
        except ValueError:
            found = None
        if (None if found is None else not found) != passes:
            yield "%r: %s" % (text, found)


with tempfile.TemporaryDirectory() as name:
    finish(faults(name), "%d cases" % len(CASES))

#!/usr/bin/env python3
"""Runs end-to-end scripts against the built program and compares with what each script says itself.

usage: run_script.py --program PATH [--measure] SCRIPT...

The form of the expectations stands in README.md. --measure heeds `max memory`, which means nothing in an
instrumented build.
"""
import argparse
import ast
import os
import re
import shlex
import tempfile
from pathlib import Path

from support import ROOT, TIME_LIMIT, WRAPPER, differences, finish, run, write_files

DIRECTIVE = re.compile(
    r"[ \t]*// ?(args|args-only|env|file|file-raw|expect|expect-raw|stdout-contains|expect error|expect stderr"
    r"|stderr-contains|expect file|exit|max memory):(?: (.*))?$")
SUSPECT = re.compile(r"[ \t]*// ?(args|env|file|expect|exit|max|stdout|stderr)[a-z -]*:")
CONTENT = re.compile(r"[ \t]*//\|(?: (.*))?$")


class Expectations:
    """What a script says about its run; `names` are the paths that it may use. ValueError for what it gets wrong."""

    def __init__(self, source, names):
        self.names, self.args, self.args_only, self.env = names, [], None, {}
        self.files, self.files_after = {}, {}
        self.stdout, self.stderr = None, None  # None: not stated
        self.stdout_pieces, self.stderr_pieces = [], []
        self.exit, self.max_memory = None, None
        receiver = None  # of the content lines that follow
        for number, line in enumerate(source.split("\n"), 1):
            content, directive = CONTENT.match(line), DIRECTIVE.match(line)
            if content and receiver:
                target, name = receiver
                target[name] += (content[1] or "") + "\n"
                continue
            if content or (SUSPECT.match(line) and not directive):
                raise ValueError("line %d: no such expectation: %s" % (number, line.strip()))
            receiver = directive and self.take(directive[1], directive[2] or "")

    def fill(self, text):
        for name, value in self.names.items():
            text = text.replace("{%s}" % name, value)
        return text

    def take(self, kind, text):
        line = self.fill(text)
        words = [self.fill(word) for word in shlex.split(text)] if kind.startswith("args") else []
        if kind == "args":
            self.args += words
            if "{script}" in text:
                self.args_only = []
        elif kind == "args-only":
            self.args_only = words
        elif kind == "env":
            name, value = line.split("=", 1)
            self.env[name] = value
        elif kind in ("file", "expect file"):
            target = self.files if kind == "file" else self.files_after
            target[text] = ""
            return target, text
        elif kind == "file-raw":
            name, content = text.split(" ", 1)
            self.files[name] = ast.literal_eval(content)
        elif kind in ("expect", "expect-raw"):
            self.stdout = (self.stdout or "") + (line + "\n" if kind == "expect" else ast.literal_eval(text))
        elif kind in ("expect error", "expect stderr"):
            self.stderr = (self.stderr or "") + ("error: " if kind == "expect error" else "") + line + "\n"
            self.exit = 1 if kind == "expect error" else self.exit
        elif kind.endswith("contains"):
            (self.stdout_pieces if kind[3] == "o" else self.stderr_pieces).append(line)
        elif kind == "exit":
            self.exit = int(text)
        else:
            self.max_memory = float(text)
        return None

    def asserts_something(self):
        return (self.stdout, self.stderr, self.exit) != (None, None, None) or \
            self.stdout_pieces or self.stderr_pieces or self.files_after

    def command(self):
        if self.args_only is None:
            return self.args + ["-load", self.names["script"]]
        return self.args_only + self.args


def failures(script, program, measure=False, limit=TIME_LIMIT):
    """Yields a text for each way in which a script's run is not what the script says."""
    with tempfile.TemporaryDirectory(prefix="quorvane-", ignore_cleanup_errors=True) as folder:
        folder = Path(folder).resolve()
        names = {"script": script, "dir": folder, "root": ROOT, "program": program}
        names = {name: os.fsencode(path).decode("latin-1") for name, path in names.items()}
        expected = Expectations(script.read_bytes().decode("latin-1"), names)
        if not expected.asserts_something():
            yield "asserts nothing"
            return
        write_files(folder, expected.files)
        done = run(WRAPPER + [names["program"]] + expected.command(), folder, limit, **expected.env)
        if done.status != (expected.exit or 0):
            yield "exit status: %s, not %d" % (done.status, expected.exit or 0)
        for what, whole, pieces, actual in (("stdout", expected.stdout, expected.stdout_pieces, done.out),
                                            ("stderr", expected.stderr, expected.stderr_pieces, done.err)):
            if whole is not None or not pieces:  # a stream that nothing was said about stays empty
                yield from differences(what, whole or "", actual)
            for piece in pieces:
                if piece not in actual:
                    yield "%s lacks %r; it is:\n%s" % (what, piece, actual)
        for name, content in expected.files_after.items():
            path = folder / name
            yield from differences(name, content, path.read_bytes().decode("latin-1") if path.is_file() else "no file")
        if measure and expected.max_memory is not None and done.memory > expected.max_memory:
            yield "took %.0f MiB, %g allowed" % (done.memory, expected.max_memory)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--program", required=True, type=Path)
    parser.add_argument("--measure", action="store_true", help="heed `max memory`")
    parser.add_argument("script", nargs="+", type=Path)
    options = parser.parse_args()
    faults = ["FAILED %s\n%s\n" % (script, fault) for script in options.script
              for fault in failures(script.resolve(), options.program.resolve(), options.measure)]
    finish(faults, "%d passed" % len(options.script))


if __name__ == "__main__":
    main()

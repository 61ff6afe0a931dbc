#!/usr/bin/env python3
"""Runs end-to-end scripts against the built program and compares with what each script says itself.

usage: run_script.py --program PATH [--measure] SCRIPT...

A script carries its expectations as comments, each on a line of its own:

  // args: -define a=1          words in front of `-load SCRIPT`, split as a shell does; when {script}
                                is among them, nothing is added
  // args-only: -help           exactly these words
  // env: LC_ALL=C              a variable of the environment
  // file: name                 makes a file in the run's folder, of the lines that follow
  //| content                   as `//| content`
  // file-raw: name "a\\0b"     makes a file of the characters of a Python literal (Latin-1)
  // expect: text               one line of stdout; all of these in order are the whole of it
  // expect-raw: "no line end"  a piece of stdout as a Python literal, in order with the lines
  // stdout-contains: text      a piece of stdout, wherever; without `expect` the rest is free
  // expect error: line 3: ...  stderr is exactly "error: line 3: ...", and the exit status 1
  // expect stderr: text        one line of stderr; all of these in order are the whole of it
  // stderr-contains: text      a piece of stderr, wherever; without `expect stderr` the rest is free
  // expect file: name          the file in the run's folder holds the lines that follow (`//| ...`)
  // exit: 1                    exit status, 0 unless said otherwise
  // max memory: 300            MiB resident at most; heeded with --measure alone, since it means nothing in an
                                instrumented build; to be about twice what is used, which no load changes

In arguments and expected text {script}, {dir} (the run's folder), {fixtures}, {root} (of the sources)
and {program} stand for paths. Scripts and output are Latin-1, byte for byte. Each run has an empty
temporary folder as its working directory, an empty stdin and the time zone UTC.

A signal, a sanitizer's report and a script that asserts nothing are failures, whatever was expected.
QUORVANE_WRAPPER holds words to put in front of the program ("valgrind -q --error-exitcode=99"), and
QUORVANE_TIME_LIMIT the seconds after which a run counts as hung (300).
"""
import argparse
import ast
import difflib
import os
import re
import shlex
import signal
import subprocess
import sys
import tempfile
import threading
from pathlib import Path

TESTS = Path(__file__).resolve().parent
DIRECTIVE = re.compile(
    r"[ \t]*// ?(args|args-only|env|file|file-raw|expect|expect-raw|stdout-contains|expect error|expect stderr"
    r"|stderr-contains|expect file|exit|max memory):(?: (.*))?$")
SUSPECT = re.compile(r"[ \t]*// ?(args|env|file|expect|exit|max|stdout|stderr)[a-z -]*:")
CONTENT = re.compile(r"[ \t]*//\|(?: (.*))?$")
SANITIZER = re.compile(rb"AddressSanitizer|LeakSanitizer|UndefinedBehaviorSanitizer|: runtime error: |"
                       rb"MemorySanitizer|ThreadSanitizer")


class Fault(Exception):
    """What a script's expectations themselves have wrong."""


def literal(text):
    value = ast.literal_eval(text.strip())
    return value.encode("latin-1") if isinstance(value, str) else bytes(value)


class Expectations:
    def __init__(self, source, names):
        self.args, self.args_only, self.env = [], None, {}
        self.files, self.files_after = {}, {}
        self.stdout, self.stderr = None, None  # None: not stated
        self.stdout_pieces, self.stderr_pieces = [], []
        self.exit, self.max_memory = None, None
        self.names = names
        receiver = None  # of the content lines that follow
        for number, line in enumerate(source.split("\n"), 1):
            content = CONTENT.match(line)
            if content:
                if receiver is None:
                    raise Fault("line %d: content that belongs to no file" % number)
                target, name = receiver
                target[name] += (content[1] or "").encode("latin-1") + b"\n"
                continue
            receiver = None
            match = DIRECTIVE.match(line)
            if match:
                try:
                    receiver = self.take(match[1], match[2] or "")
                except (ValueError, SyntaxError, TypeError) as error:
                    raise Fault("line %d: %s" % (number, error)) from error
            elif SUSPECT.match(line):
                raise Fault("line %d: no such expectation: %s" % (number, line.strip()))

    def fill(self, text):
        for name, value in self.names.items():
            text = text.replace("{%s}" % name, value)
        return text

    def words(self, text):
        return [self.fill(word) for word in shlex.split(text)]

    def take(self, kind, text):
        line = self.fill(text).encode("latin-1")
        if kind == "args":
            self.args += self.words(text)
            if "{script}" in text:
                self.args_only = []
        elif kind == "args-only":
            self.args_only = self.words(text)
        elif kind == "env":
            name, value = text.split("=", 1)
            self.env[name] = self.fill(value)
        elif kind in ("file", "expect file"):
            target = self.files if kind == "file" else self.files_after
            target[text] = b""
            return target, text
        elif kind == "file-raw":
            name, content = text.split(" ", 1)
            self.files[name] = literal(content)
        elif kind == "expect":
            self.stdout = (self.stdout or b"") + line + b"\n"
        elif kind == "expect-raw":
            self.stdout = (self.stdout or b"") + literal(text)
        elif kind == "stdout-contains":
            self.stdout_pieces.append(line)
        elif kind == "expect error":
            if self.stderr is not None:
                raise ValueError("a run reports one error only")
            self.stderr = b"error: " + line + b"\n"
            self.exit = 1
        elif kind == "expect stderr":
            self.stderr = (self.stderr or b"") + line + b"\n"
        elif kind == "stderr-contains":
            self.stderr_pieces.append(line)
        elif kind == "exit":
            self.exit = int(text)
        elif kind == "max memory":
            self.max_memory = float(text)
        return None

    def asserts_something(self):
        return (self.stdout is not None or self.stderr is not None or self.exit is not None
                or self.stdout_pieces or self.stderr_pieces or self.files_after)

    def command(self):
        if self.args_only is None:
            return self.args + ["-load", self.names["script"]]
        return self.args_only + self.args


def readable(data):
    """Text as lines for a diff, with what a terminal would hide made visible."""
    lines = data.decode("latin-1").split("\n")
    shown = [repr(line)[1:-1] for line in lines[:-1]]
    return shown + ([repr(lines[-1])[1:-1] + " (no line end)"] if lines[-1] else [])


def compare(what, expected, pieces, actual):
    """A stream that nothing was said about must stay empty."""
    if expected is None and not pieces:
        expected = b""
    if expected is not None and expected != actual:
        diff = difflib.unified_diff(readable(expected), readable(actual), "expected " + what, "actual " + what,
                                    lineterm="")
        yield "\n".join(diff)
    for piece in pieces:
        if piece not in actual:
            yield "%s lacks %r; it is:\n%s" % (what, piece.decode("latin-1"), "\n".join(readable(actual)))


def run(command, folder, environment, limit):
    """Gives (status or None when out of time, stdout, stderr, MiB resident).

    The streams are files, so that a child process which outlives the program cannot hold the run up.
    """
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
        process = subprocess.Popen([word.encode("latin-1") for word in command], cwd=folder, env=environment,
                                   stdin=subprocess.DEVNULL, stdout=out, stderr=err, start_new_session=True)
        late = threading.Event()
        timer = threading.Timer(limit, lambda: (late.set(), os.killpg(process.pid, signal.SIGKILL)))
        timer.start()
        _, status, usage = os.wait4(process.pid, 0)  # the account of this run alone
        timer.cancel()
        process.returncode = os.waitstatus_to_exitcode(status)
        try:
            os.killpg(process.pid, signal.SIGKILL)  # what it may have left running
        except ProcessLookupError:
            pass
        out.seek(0)
        err.seek(0)
        return (None if late.is_set() else process.returncode, out.read(), err.read(),
                usage.ru_maxrss / 1024)


def failures(script, program, measure):
    """Gives a text for each way in which a script's run is not what the script says."""
    wrapper = shlex.split(os.environ.get("QUORVANE_WRAPPER", ""))
    limit = float(os.environ.get("QUORVANE_TIME_LIMIT", "300"))
    with tempfile.TemporaryDirectory(prefix="quorvane-", ignore_cleanup_errors=True) as folder:
        folder = Path(folder).resolve()
        paths = {"script": script, "dir": folder, "fixtures": TESTS / "fixtures", "root": TESTS.parent,
                 "program": program}
        names = {name: os.fsencode(path).decode("latin-1") for name, path in paths.items()}
        expected = Expectations(script.read_bytes().decode("latin-1"), names)
        if not expected.asserts_something():
            yield "asserts nothing"
            return
        for name, content in expected.files.items():
            path = folder / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(content)
        environment = dict(os.environ, TZ="UTC") | expected.env
        command = wrapper + [names["program"]] + expected.command()
        status, out, err, memory = run(command, folder, environment, limit)

        if status is None:
            yield "still running after %g seconds" % limit
        elif status < 0:
            yield "died of %s" % signal.Signals(-status).name
        elif status != (expected.exit or 0):
            yield "exit status %d instead of %d" % (status, expected.exit or 0)
        if SANITIZER.search(err) or SANITIZER.search(out):
            yield "a sanitizer reports"
        yield from compare("stdout", expected.stdout, expected.stdout_pieces, out)
        yield from compare("stderr", expected.stderr, expected.stderr_pieces, err)
        for name, content in expected.files_after.items():
            try:
                yield from compare(name, content, [], (folder / name).read_bytes())
            except OSError as error:
                yield str(error)
        if measure and expected.max_memory is not None and memory > expected.max_memory:
            yield "took %.0f MiB, %g allowed" % (memory, expected.max_memory)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--program", required=True, type=Path)
    parser.add_argument("--measure", action="store_true", help="heed `max memory`")
    parser.add_argument("script", nargs="+", type=Path)
    options = parser.parse_args()

    failed = 0
    for script in options.script:
        try:
            found = list(failures(script.resolve(), options.program.resolve(), options.measure))
        except Fault as fault:
            found = [str(fault)]
        if found:
            failed += 1
            print("FAILED %s\n%s\n" % (script, "\n".join(found)))
    if len(options.script) > 1 or not failed:
        print("%d of %d passed" % (len(options.script) - failed, len(options.script)))
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()

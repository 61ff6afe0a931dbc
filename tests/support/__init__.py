"""What the runners and checks of the suite share. Programs' texts are Latin-1, so that every byte is a character."""
import collections
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

TESTS = Path(__file__).resolve().parents[1]
ROOT = TESTS.parent
# Words to put in front of the program ("valgrind -q --error-exitcode=99"), and the seconds after which a run hangs.
WRAPPER = shlex.split(os.environ.get("QUORVANE_WRAPPER", ""))
TIME_LIMIT = float(os.environ.get("QUORVANE_TIME_LIMIT", "300"))
SANITIZER = re.compile(r"(Address|Leak|UndefinedBehavior|Memory|Thread)Sanitizer|: runtime error: ")

Run = collections.namedtuple("Run", "status out err memory")  # memory: MiB resident at most


def run(words, folder, limit=TIME_LIMIT, **environment):
    """Runs a command with an empty stdin in the time zone UTC. What it leaves running is killed.

    The status is a text where the run was killed, or a sanitizer reports. The streams are files, so that a child
    process which outlives the program cannot hold the run up.
    """
    with tempfile.TemporaryFile() as out, tempfile.TemporaryFile() as err:
        process = subprocess.Popen([os.fspath(word).encode("latin-1") for word in words], cwd=folder,
                                   env=dict(os.environ, TZ="UTC") | environment, stdin=subprocess.DEVNULL, stdout=out,
                                   stderr=err, start_new_session=True)
        late = threading.Event()
        timer = threading.Timer(limit, lambda: (late.set(), os.killpg(process.pid, signal.SIGKILL)))
        timer.start()
        _, status, usage = os.wait4(process.pid, 0)  # the account of this run alone
        timer.cancel()
        status = process.returncode = os.waitstatus_to_exitcode(status)
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        texts = []
        for stream in out, err:
            stream.seek(0)
            texts.append(stream.read().decode("latin-1"))
    if status < 0:
        status = "none after %g seconds" % limit if late.is_set() else signal.Signals(-status).name
    elif any(map(SANITIZER.search, texts)):
        status = "a sanitizer's report"
    return Run(status, *texts, usage.ru_maxrss / 1024)


def write_files(folder, files):
    for name, content in files.items():
        path = Path(folder, name)
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content.encode("latin-1"))


def differences(what, expected, actual):
    """Yields a text if they differ: lines against each other, with what a terminal would hide made visible."""
    if expected != actual:
        lines = [[repr(line)[1:-1] for line in str(text).splitlines(True)] for text in (expected, actual)]
        yield "\n".join(difflib.unified_diff(*lines, "expected " + what, "actual " + what, lineterm=""))


def finish(faults, otherwise):
    """Ends a check: with its faults and status 1, or with the other text."""
    faults = list(faults)
    print("\n".join(faults) or otherwise)
    sys.exit(1 if faults else 0)

#!/usr/bin/env python3
"""Runs scripts while memory runs out (quorvane_memory), with the files and words that they ask for.

usage: memory.py [--runs N] PROGRAM [SCRIPT...]

Without SCRIPT those below. --runs N spreads about that many refused requests over each; without it every
request of every script is refused once, which takes the better part of an hour.
"""
import argparse
import subprocess
import sys
import tempfile
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent))
import run_script  # noqa: E402

SCRIPTS = ["faults/image.js"] + ["scripts/%s.js" % name for name in (
    "language/compile-jumps", "language/compile-names", "language/compile-order", "language/compile-error-line",
    "natives/array", "natives/array_sort", "natives/array_sparse", "natives/date", "natives/function",
    "natives/global", "natives/global_load", "natives/number", "natives/string", "natives/string_objects",
    "host/indirect", "host/host_objects", "tbsys/files", "tbsys/text_files", "tbsys/byte_arrays", "tbsys/run",
    "elf/addresses", "elf/symbols")]


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--runs", type=int, default=0)
    parser.add_argument("program", type=Path)
    parser.add_argument("script", nargs="*", type=Path)
    options = parser.parse_args()

    failed = 0
    for script in options.script or [HERE.parent / name for name in SCRIPTS]:
        script = script.resolve()
        with tempfile.TemporaryDirectory() as folder:
            files = Path(folder) / "files"
            files.mkdir()
            names = {"script": str(script), "root": str(HERE.parent.parent), "program": str(options.program)}
            expected = run_script.Expectations(script.read_bytes().decode("latin-1"), names)
            for name, content in expected.files.items():
                (files / name).parent.mkdir(parents=True, exist_ok=True)
                (files / name).write_bytes(content)
            result = subprocess.run([options.program.resolve(), "--runs", str(options.runs), files]
                                    + expected.command(), cwd=folder, stdin=subprocess.DEVNULL,
                                    stdout=subprocess.PIPE, check=False)
        failed += result.returncode != 0
        print("%s: %s" % (script.name, result.stdout.decode("latin-1").rstrip()), flush=True)
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()

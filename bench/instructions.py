#!/usr/bin/env python3
"""Counts the machine instructions that quorvane needs for the programs beside this file.

usage: instructions.py [--quorvane PATH] [--update]

valgrind counts; unlike times, its counts repeat. The programs run with their large numbers cut down, so that
all of them take half a minute. The counts are compared with those in instructions.json: one that has grown by
more than a tenth makes the exit status 1, and --update writes the file anew. They hold for a release build
of the compiler that Debian 12 has. Without valgrind the exit status is 77.
"""
import argparse, json, re, shutil, subprocess, sys, tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

HERE = Path(__file__).resolve().parent
TABLE = HERE / "instructions.json"
ALLOWED = 1.10
DIVISOR = 25  # of numbers with five digits or more
# Programs whose work grows faster than their numbers.
SMALLER = {"fib": [("fib(33)", "fib(24)"), ("tak(22, 14, 6)", "tak(16, 10, 4)")],
           "floats": [("mandelbrot(300", "mandelbrot(90")],
           "loops": [("gcdSum(600)", "gcdSum(150)"), ("i < 1500", "i < 300"), ("j < 1500", "j < 300")],
           "matrix": [("create(160", "create(60")]}


def reduced(name, source):
    for large, small in SMALLER.get(name, []):
        if large not in source:
            sys.exit("%s has no %s to cut down" % (name, large))
        source = source.replace(large, small)
    return re.sub(r"(?<![\w.])[1-9]\d{4,}(?![\w.])", lambda m: str(max(1000, int(m[0]) // DIVISOR)), source)


def count(quorvane, program):
    with tempfile.TemporaryDirectory() as scratch:
        script = Path(scratch) / program.name
        script.write_text(reduced(program.stem, program.read_text(encoding="latin-1")), encoding="latin-1")
        run = subprocess.run(["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", quorvane, "-load",
                              script], capture_output=True, text=True)
    counted = re.search(r"Collected : (\d+)", run.stderr)
    if run.returncode != 0 or counted is None or not run.stdout.startswith(program.stem + " "):
        sys.exit("%s failed with status %d: %s" % (program.name, run.returncode, run.stdout + run.stderr[-500:]))
    return int(counted[1])


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--quorvane", default="build/release/quorvane")
    parser.add_argument("--update", action="store_true")
    options = parser.parse_args()
    if shutil.which("valgrind") is None:
        print("valgrind is not installed (apt-get install valgrind)")
        sys.exit(77)
    programs = [p for p in sorted(HERE.glob("*.js")) if not p.stem.startswith("prelude")]
    with ThreadPoolExecutor(2) as pool:
        counts = dict(zip((p.stem for p in programs), pool.map(lambda p: count(options.quorvane, p), programs)))
    if options.update:
        TABLE.write_text(json.dumps(counts, indent=4) + "\n")
        return
    before = json.loads(TABLE.read_text())
    if before.keys() != counts.keys():
        sys.exit("the programs have changed: run with --update")
    grown = [name for name in counts if counts[name] > before[name] * ALLOWED]
    print("%-10s %15s %15s %7s" % ("program", "instructions", "before", "ratio"))
    for name in counts:
        print("%-10s %15d %15d %7.3f%s" % (name, counts[name], before[name], counts[name] / before[name],
                                           "  too many" if name in grown else ""))
    sys.exit(1 if grown else 0)


main()

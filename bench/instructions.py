#!/usr/bin/env python3
"""Counts the machine instructions that quorvane needs for the programs beside this file.

usage: instructions.py [--quorvane PATH] [--update]

valgrind counts; unlike times, its counts repeat. The programs run with their large numbers cut down, so that
all of them take half a minute; a job on the bytes of files and images, which other engines don't know, comes on top.
The counts are compared with those in instructions.json: one that has grown by more than a tenth makes the exit
status 1, and --update writes the file anew. They hold for a release build of the compiler that Debian 12 has.
"""
import argparse, json, re, subprocess, sys, tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

import firmware

HERE = Path(__file__).resolve().parent
TABLE = HERE / "instructions.json"
ALLOWED = 1.10
DIVISOR = 25  # of numbers with five digits or more
# Programs whose work grows faster than their numbers.
SMALLER = {"fib": [("fib(33)", "fib(24)"), ("tak(22, 14, 6)", "tak(16, 10, 4)")],
           "floats": [("mandelbrot(300", "mandelbrot(90")],
           "loops": [("gcdSum(600)", "gcdSum(150)"), ("i < 1500", "i < 300"), ("j < 1500", "j < 300")],
           "matrix": [("create(160", "create(60")]}
# Behind lib/number.js and lib/crc.js, beside an image of 1 MiB.
BYTES = """ElfFile.load('image');
var bytes = ElfFile.peekBytes(%(base)d, 1 << 20);
TBSys.writeByteArrayToFile('bytes', bytes);
bytes = TBSys.readByteArrayFromFile('bytes');
TBSys.crc32(bytes);
ElfFile.pokeBytes(%(base)d, bytes);
ElfFile.crc32(%(base)d, 1 << 20);
bytes = bytes.slice(0, 1 << 15);
WScript.Echo('bytes ' + Crc.zlib(bytes) + Crc.ccittFalse(bytes) + Crc.sum32(bytes) + Crc.stm32(bytes));
""" % {"base": firmware.CODE_BASE}


def reduced(name, source):
    for large, small in SMALLER.get(name, []):
        if large not in source:
            sys.exit("%s has no %s to cut down" % (name, large))
        source = source.replace(large, small)
    return re.sub(r"(?<![\w.])[1-9]\d{4,}(?![\w.])", lambda m: str(max(1000, int(m[0]) // DIVISOR)), source)


def count(quorvane, name, source, *loaded):
    with tempfile.TemporaryDirectory() as folder:
        scratch = Path(folder)
        firmware.write_image(scratch / "image", [], [(firmware.CODE_BASE, bytes(range(256)) * 4096)])
        (scratch / (name + ".js")).write_text(source, encoding="latin-1")
        words = [word for script in (*loaded, name + ".js") for word in ("-load", str(script))]
        run = subprocess.run(["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", quorvane, *words],
                             cwd=folder, capture_output=True, text=True)
    counted = re.search(r"Collected : (\d+)", run.stderr)
    if run.returncode != 0 or counted is None or not run.stdout.startswith(name + " "):
        sys.exit("%s failed with status %d: %s" % (name, run.returncode, run.stdout + run.stderr[-500:]))
    return int(counted[1])


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--quorvane", default="build/release/quorvane")
    parser.add_argument("--update", action="store_true")
    options = parser.parse_args()
    quorvane = str(Path(options.quorvane).resolve())
    jobs = [(p.stem, reduced(p.stem, p.read_text(encoding="latin-1"))) for p in sorted(HERE.glob("*.js"))
            if not p.stem.startswith("prelude")]
    jobs.append(("bytes", BYTES, *(HERE.parent / "lib" / name for name in ("number.js", "crc.js"))))
    with ThreadPoolExecutor(2) as pool:
        counts = {job[0]: n for job, n in zip(jobs, pool.map(lambda job: count(quorvane, *job), jobs))}
    if options.update:
        TABLE.write_text(json.dumps(counts, indent=4, sort_keys=True) + "\n")
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

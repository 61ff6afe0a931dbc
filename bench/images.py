#!/usr/bin/env python3
"""Measures what quorvane does with images, and its start, against plain C++.

usage: images.py [--build FOLDER] [--runs N]

The folder is a build with QUORVANE_BENCHMARKS. All figures are user and system
CPU time of whole processes, since other work on the machine disturbs the clock:
an operation costs what a script with it costs more than the same script without.
Commands take turns, and the best run of each counts, as noise only ever adds;
for the start it is the median.
"""
import argparse
import os
import statistics
import tempfile
from pathlib import Path

import firmware
from firmware import CODE_BASE, CPP_TEXT

SYMBOLS = 200_000
MIB = 1 << 20
CRC_BYTES = 64 * MIB
POKE_BYTES = 16 * MIB
CRC_RUNS, LOOKUPS, STARTS = 8, 1000, 200

# Names from all over the file, and how many of them are found.
NAMES = ("var found = 0; for (var j = 0; j < %d; j++) { var i = j * %d + 7; if (%%s(%%s)) found++; }"
         "WScript.Echo(found);" % (LOOKUPS, SYMBOLS // LOOKUPS))
FIRST = "ElfFile.load('names'); ElfFile.symbolValue('main');"
MISSING = CPP_TEXT.replace("const", "volatile")
WHOLE = "ElfFile.load('whole'); "
CRC = "for (var i = 0; i < %d; i++) %%s" % CRC_RUNS
ELF_CRC = CRC % ("ElfFile.crc32(%#x, %d, true, 0xFF);" % (CODE_BASE, CRC_BYTES))
# A quarter at a time: an array of 64 Mi values takes a gigabyte.
PEEK = "var bytes = ElfFile.peekBytes(%#x, %d);" % (CODE_BASE, POKE_BYTES)
TB_CRC = CRC % ("for (var j = 0; j < %d; j++) TBSys.crc32(bytes);" % (CRC_BYTES // POKE_BYTES))

SCRIPTS = {
    "nothing": "0",
    "load": "ElfFile.load('names');",
    "first": FIRST,
    "existing": FIRST + NAMES % ("ElfFile.symbolValue", CPP_TEXT),
    "missing": FIRST + NAMES % ("ElfFile.symbolValue", MISSING),
    "texts": FIRST + NAMES % ("", CPP_TEXT),
    "whole": WHOLE,
    "whole crc": WHOLE + ELF_CRC,
    "gaps": "ElfFile.load('gaps'); ",
    "gaps crc": "ElfFile.load('gaps'); " + ELF_CRC,
    "peek": WHOLE + PEEK,
    "poke": WHOLE + PEEK + "ElfFile.pokeBytes(%#x, bytes);" % CODE_BASE,
    "bytes crc": WHOLE + PEEK + TB_CRC,
}
PRINTED = {"existing": str(LOOKUPS), "missing": "0", "texts": str(LOOKUPS)}


def write_files(folder):
    """Gives the size of the image with the symbols."""
    pattern = bytes(range(256)) * (CRC_BYTES // 256)
    firmware.write_image(folder / "names", firmware.cpp_names(SYMBOLS), [(CODE_BASE, pattern[:MIB * 3 // 2])])
    firmware.write_image(folder / "whole", [], [(CODE_BASE, pattern)])
    piece = CRC_BYTES // 128
    firmware.write_image(folder / "gaps", [],
                         [(CODE_BASE + 2 * i * piece, pattern[:piece]) for i in range(64)])
    for name, text in SCRIPTS.items():
        (folder / (name + ".js")).write_text(text)
    return (folder / "names").stat().st_size


def rounds(commands, count):
    """Gives {name: [Times of each round]}; the first round only warms up."""
    times = {name: [] for name in commands}
    for number in range(count + 1):
        for name, command in commands.items():
            spent = firmware.run(command, PRINTED.get(name))
            if number > 0:
                times[name].append(spent)
    return times


def table(title, rows):
    print("\n" + title)
    for name, figure, unit in rows:
        print("  %-52s %10.2f %s" % (name, figure, unit), flush=True)


def main():
    parser = argparse.ArgumentParser(usage=__doc__.split("\n\n")[1][7:])
    parser.add_argument("--build", metavar="FOLDER", default="build/release")
    parser.add_argument("--runs", type=int, default=15)
    options = parser.parse_args()
    build = Path(options.build).resolve()
    quorvane = str(build / "quorvane")
    plain_read = str(build / "bench/micro/quorvane_plain_read")
    one_string = str(build / "bench/micro/quorvane_one_string")
    if not os.access(plain_read, os.X_OK):
        parser.error("no %s: configure with -DQUORVANE_BENCHMARKS=ON and build" % plain_read)

    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        size = write_files(folder)
        os.chdir(folder)
        commands = {script: [quorvane, "-load", script + ".js"] for script in SCRIPTS}
        commands["plain start"] = [plain_read]
        commands["plain read"] = [plain_read, "names"]
        times = rounds(commands, options.runs)
        starts = rounds({"quorvane": [quorvane, "1"], "one string": [one_string, "1"]}, STARTS)

    def more(script, base):
        return min(run.cpu for run in times[script]) - min(run.cpu for run in times[base])

    def rate(script, base):
        return CRC_RUNS * CRC_BYTES / more(script, base) / 1e9

    table("CRC-32 over 64 MiB", [
        ("ElfFile.crc32, one segment", rate("whole crc", "whole"), "GB/s"),
        ("ElfFile.crc32, half of it gaps", rate("gaps crc", "gaps"), "GB/s"),
        ("TBSys.crc32, 4 times an array of 16 Mi", rate("bytes crc", "peek"), "GB/s"),
        ("ElfFile.crc32 / TBSys.crc32", rate("whole crc", "whole") / rate("bytes crc", "peek"), "")])
    load, plain = more("load", "nothing"), more("plain read", "plain start")
    table("Image of %.1f MB with %d C++ symbols" % (size / 1e6, SYMBOLS), [
        ("load", load * 1e3, "ms"),
        ("plain read and walk over the symbols, C++", plain * 1e3, "ms"),
        ("load / plain", load / plain, ""),
        ("first lookup", more("first", "load") * 1e3, "ms"),
        ("each of %d later lookups, existing names" % LOOKUPS, more("existing", "texts") / LOOKUPS * 1e6, "us"),
        ("each of %d later lookups, missing names" % LOOKUPS, more("missing", "texts") / LOOKUPS * 1e6, "us")])
    table("16 MiB of an image", [
        ("peekBytes", more("peek", "whole") * 1e3, "ms"),
        ("pokeBytes", more("poke", "peek") * 1e3, "ms")])

    median = {name: firmware.Times(*map(statistics.median, zip(*runs))) for name, runs in starts.items()}
    own, other = median["quorvane"], median["one string"]
    table("Start, medians of %d" % STARTS, [
        ('quorvane "1", CPU', own.cpu * 1e3, "ms"), ("one QString, CPU", other.cpu * 1e3, "ms"),
        ("ratio, CPU", own.cpu / other.cpu, ""),
        ('quorvane "1", wall', own.wall * 1e3, "ms"), ("one QString, wall", other.wall * 1e3, "ms"),
        ("ratio, wall", own.wall / other.wall, "")])


if __name__ == "__main__":
    main()

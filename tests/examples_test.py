#!/usr/bin/env python3
"""Runs the jobs of examples/ end to end and holds what they make against other tools.

usage: examples_test.py --program PATH [NAME...]

The command of a job is the one in the comment at its top, with other definitions put in where a test has its own,
so that a comment which forgets a library file fails here. Images are read by a reader of its own, with readelf,
size and cmp beside it.
"""
import argparse
import binascii
import datetime
import itertools
import os
import re
import shlex
import shutil
import stat
import struct
import subprocess
import sys
import tempfile
import zlib
from pathlib import Path
from xml.etree import ElementTree

ROOT = Path(__file__).resolve().parent.parent
IMAGES = ["firmware.elf", "firmware-be.elf"]
START, SLOT, TABLE = 0x08000000, 0x08000C14, 0x08000C04
WRAPPER = shlex.split(os.environ.get("QUORVANE_WRAPPER", ""))
PROGRAM = None


class Image:
    """The flash of an ELF file by physical address, read with struct alone."""

    def __init__(self, path):
        self.data = bytearray(Path(path).read_bytes())
        self.order = ">" if self.data[5] == 2 else "<"
        offset, = self.unpack("I", 28)
        size, count = self.unpack("HH", 42)
        self.segments = [self.unpack("8I", offset + size * i) for i in range(count)]

    def unpack(self, form, offset):
        return struct.unpack_from(self.order + form, self.data, offset)

    def offset(self, address):
        for _, offset, _, physical, length, *_ in self.segments:
            if physical <= address < physical + length:
                return offset + address - physical
        raise ValueError(hex(address))

    def flash(self, end=SLOT):
        memory = bytearray(b"\xff" * (end - START))
        for _, offset, _, physical, length, *_ in self.segments:
            for i in range(length):
                if START <= physical + i < end:
                    memory[physical + i - START] = self.data[offset + i]
        return bytes(memory)

    def poke(self, address, form, *values):
        struct.pack_into(self.order + form, self.data, self.offset(address), *values)

    def save(self, path):
        Path(path).write_bytes(self.data)


def mpeg2(data):
    crc = 0xFFFFFFFF
    for byte in data:
        crc ^= byte << 24
        for _ in range(8):
            crc = (crc << 1 ^ (0x04C11DB7 if crc >> 31 else 0)) & 0xFFFFFFFF
    return crc


def stm32(data):
    return mpeg2(b"".join(data[i:i + 4][::-1] for i in range(0, len(data), 4)))


KINDS = {"bzip2": lambda data: mpeg2(data) ^ 0xFFFFFFFF, "mpeg2": mpeg2, "stm32": stm32, "zlib": zlib.crc32}


def usage(name):
    """The words of the command in a script's comment, without the first."""
    lines = re.search(r"^//   (quorvane (?:.*\\\n//)*.*)", (ROOT / "examples" / name).read_text(), re.M)[1]
    return shlex.split(lines.replace("\\\n//", " "))[1:]


def run(name, without=(), **definitions):
    words = []
    loads = []
    given = dict(definitions)
    pairs = iter(usage(name))
    for option, value in zip(pairs, pairs):
        if option == "-define":
            key = value.split("=")[0]
            if key in without:
                continue
            words += [option, "%s=%s" % (key, given.pop(key)) if key in given else value]
        else:
            loads += [option, value]
    for key, value in given.items():
        words += ["-define", "%s=%s" % (key, value)]
    done = subprocess.run(WRAPPER + [PROGRAM] + words + loads, capture_output=True, text=True, encoding="latin-1",
                          stdin=subprocess.DEVNULL, timeout=100, env=dict(os.environ, TZ="UTC"))
    return done.returncode, done.stdout, done.stderr


def equal(actual, expected, what):
    if actual != expected:
        raise AssertionError("%s: expected\n%s\ngot\n%s" % (what, expected, actual))


def succeeds(name, without=(), **definitions):
    status, out, err = run(name, without, **definitions)
    equal((status, err), (0, ""), "%s %s, which prints %s" % (name, definitions, out))
    return out


def fails(name, reason, without=(), **definitions):
    status, out, err = run(name, without, **definitions)
    equal(status, 1, "%s %s, which prints %s" % (name, definitions, out))
    equal(re.fullmatch(r"error: line \d+: not a function object\n", err) is not None, True, "stderr " + err)
    last = out.splitlines()[-1]
    equal(last.startswith("error: ") and reason in last, True, "%s: %r in %r" % (name, reason, last))
    return out


def test_verify_crc():
    for source, kind in itertools.product(IMAGES, KINDS):
        image = Image(source)
        crc = KINDS[kind](image.flash())
        image.poke(SLOT, "I", crc)
        image.save("stamped.elf")
        out = succeeds("verify-crc.js", image="stamped.elf", kind=kind)
        equal("0x%08X" % crc in out, True, "the checksum in " + out)

        image.data[image.offset(SLOT - 1)] ^= 0x10  # the last byte that counts
        image.save("changed.elf")
        now = KINDS[kind](image.flash())
        fails("verify-crc.js", "wrong checksum: 0x%08X" % now, image="changed.elf", kind=kind)
        image.poke(SLOT, "I", now)
        image.save("changed.elf")
        succeeds("verify-crc.js", image="changed.elf", kind=kind, slot="0x%X" % SLOT, **{"from": str(START)})

    # The gaps count: with another fill the same image is wrong.
    fails("verify-crc.js", "wrong checksum", image="stamped.elf", kind="zlib", fill="0")
    fails("verify-crc.js", "no symbol board::crc", image="stamped.elf", slot="board::crc")
    fails("verify-crc.js", "no such kind", image="stamped.elf", kind="crc64")
    fails("verify-crc.js", "behind the start", image="stamped.elf", **{"from": hex(SLOT)})
    fails("verify-crc.js", "needs -define image=...", without=["image"])


def test_symbols():
    for source in IMAGES:
        listing = subprocess.run(["readelf", "-sW", "--demangle", source], capture_output=True, text=True, check=True)
        symbols = {}
        for line in listing.stdout.splitlines():
            words = line.split(None, 7)
            if len(words) == 8 and words[3] in ("FUNC", "OBJECT") and words[4] in ("GLOBAL", "WEAK"):
                symbols[words[7]] = int(words[1], 16) & (~1 if words[3] == "FUNC" else ~0)
        equal(len(symbols) > 12, True, "symbols in " + listing.stdout)
        Path("names.txt").write_text("# all of them\n\n" + "\n".join(symbols) + "\r\n")
        image = Image(source)
        shown = {}
        for line in succeeds("symbols.js", without=["names"], image=source, list="names.txt").splitlines():
            address, word, name = line.split(None, 2)
            shown[name] = int(address, 16)
            try:
                expected = "0x%08X" % image.unpack("I", image.offset(shown[name]))
            except ValueError:
                expected = "-"
            equal(word, expected, "the word of " + name)
        equal(shown, symbols, "addresses in " + source)

    succeeds("symbols.js")
    out = fails("symbols.js", "1 of the symbols", names="main;none; board::imageCrc")
    equal([line.split()[-1] for line in out.splitlines()[:-1]], ["main", "none", "board::imageCrc"], "names")
    fails("symbols.js", "cannot read", without=["names"], list="none.txt")


def test_patch_table():
    numbers = [1, -1, 0x7FFF, -0x8000, 300, -300, 0xFFFF, 0]
    for source, (width, form) in itertools.product(IMAGES, [(8, "B"), (16, "H"), (32, "I")]):
        count = 4 if width == 32 else 8
        values = [number & 0x7F if width == 8 else number for number in numbers[:count]]
        Path("values.txt").write_text("%d,%d %d # 1 2\n\n#\n%d\t%s" % (
            *values[:4], "\r\n".join(hex(value) if value > 255 else str(value) for value in values[4:])))
        succeeds("patch-table.js", image=source, width=width, count=count, values="values.txt")
        expected = Image(source)
        expected.poke(TABLE, "%d%s" % (count, form), *(value & (1 << width) - 1 for value in values))
        equal(Path("patched.elf").read_bytes(), bytes(expected.data), "%s with %d bits" % (source, width))

    Path("patched.elf").unlink()
    for text, reason in [("1 2 3\n4 5 6 7\n", "expected 8, got 7"), ("1 2\n3 x4", "line 2: no number of 16 bits: x4"),
                         ("-32769", "-32769"), ("65536", "65536"), ("1 2 3 4 5 6 7 1.5", "1.5")]:
        Path("values.txt").write_text(text)
        fails("patch-table.js", reason, values="values.txt")
    Path("values.txt").write_text("1 " * 11)
    fails("patch-table.js", "as a whole", values="values.txt", count=11)
    fails("patch-table.js", "width must be", values="values.txt", width=12)
    fails("patch-table.js", "cannot read none.txt", values="none.txt")
    equal(Path("patched.elf").exists(), False, "a file after a failure")


def test_compare():
    old = Image(IMAGES[0])
    new = Image(IMAGES[0])
    for address in [START, START + 1, START + 0x100, TABLE, TABLE + 2, 0x080001C1, SLOT + 3]:
        new.data[new.offset(address)] ^= 0xFF
    for address in range(START + 0x20, START + 0x30):
        new.data[new.offset(address)] ^= 1
    new.save("new.elf")
    end = SLOT + 4
    names = {"first": IMAGES[0], "second": "new.elf", "from": "0x%X" % START, "length": end - START}
    Path("old.bin").write_bytes(old.flash(end))
    Path("new.bin").write_bytes(new.flash(end))
    listing = subprocess.run(["cmp", "-l", "old.bin", "new.bin"], capture_output=True, text=True)
    expected = [(int(where) - 1 + START, int(a, 8), int(b, 8))
                for where, a, b in map(str.split, listing.stdout.splitlines())]
    equal(len(expected), 23, "what cmp says")

    out = fails("compare.js", "%d bytes in 7 places differ" % len(expected), **names)
    shown = []
    for line in out.splitlines()[:-1]:
        address, count, before, after = re.fullmatch(r"0x(\S+) +(\d+) : (.*) -> (.*)", line).groups()
        changes = list(zip(before.split(), after.split()))
        equal(len(changes), min(int(count), 9), "bytes shown in " + line)
        shown += [(int(address, 16) + i, int(a, 16), int(b, 16)) for i, (a, b) in enumerate(changes[:8])]
    equal(shown, [change for change in expected if not START + 0x28 <= change[0] < START + 0x30], "the changes")
    equal(len(fails("compare.js", "in 7 places", **names, show=2).splitlines()), 3, "lines shown")

    names["length"] = 0x1000
    succeeds("compare.js", **dict(names, second=IMAGES[0]))
    # Without a difference in the range, the files may differ.
    succeeds("compare.js", **dict(names, **{"from": START + 2, "length": 0x1E}))
    fails("compare.js", "1 bytes in 1 places", **dict(names, **{"from": START + 1, "length": 0x1F}))
    fails("compare.js", "must be numbers", **dict(names, length="much"))


def test_sizes():
    for source in IMAGES:
        sections = {}
        for line in subprocess.run(["size", "-A", "-x", source], capture_output=True, text=True,
                                   check=True).stdout.splitlines():
            words = line.split()
            if len(words) == 3 and words[0].startswith("."):
                sections[words[0]] = int(words[1], 16)
        ram = sections[".data"] + sections[".bss"]
        binary = Image(source).flash(SLOT + 4)
        out = succeeds("sizes.js", image=source, binary="made file.bin", flashSize=len(binary), ramSize=ram)
        equal(Path("made file.bin").read_bytes(), binary, "the binary of " + source)
        lines = out.splitlines()
        equal("%d bytes, CRC-32 0x%08X" % (len(binary), KINDS["bzip2"](binary)) in lines[0], True, lines[0])
        for line, size in zip(lines[1:], [len(binary), ram]):
            equal(line.split()[1:], "{0:,} of {0:,} bytes, 100.0 %".format(size).split(), "report")
        out = fails("sizes.js", "too large for its flash", image=source, flashSize=len(binary) - 1)
        equal("100.0 %" in out, True, out)
        fails("sizes.js", "too large for its ram", image=source, ramSize=ram - 1)
    fails("sizes.js", "CRC-32 of firmware.bin", flash="0x08000004")
    fails("sizes.js", "status -1 of none-objcopy", prefix="none-")
    if shutil.which("arm-none-eabi-objcopy"):
        succeeds("sizes.js", prefix="arm-none-eabi-", binary="other.bin")
        equal(Path("other.bin").read_bytes(), Image(IMAGES[0]).flash(SLOT + 4), "the binary of the other tools")


def test_release():
    Path("firmware.bin").write_bytes(bytes(range(256)) * 300)
    os.chmod("firmware.bin", 0o750)
    os.utime("firmware.bin", (1e9, 1e9))
    shutil.copy(IMAGES[0], "two words.elf")
    files = ["firmware.bin", "two words.elf"]
    days = [datetime.datetime.now(datetime.timezone.utc).date()]
    out = succeeds("release.js", files=";".join(files), to="made/releases", version="1 rc")
    days.append(datetime.datetime.now(datetime.timezone.utc).date())
    directory = Path(out.splitlines()[-1])
    equal(str(directory) in {"made/releases/thermostat-1 rc-%s" % day for day in days}, True, directory)
    equal(sorted(path.name for path in directory.iterdir()), ["CONTENTS"] + files, "files of the release")
    contents = (directory / "CONTENTS").read_text().splitlines()
    for name, line in zip(files, contents):
        data = Path(name).read_bytes()
        equal((directory / name).read_bytes(), data, name)
        equal(line.split(None, 2), ["%08x" % binascii.crc32(data), str(len(data)), name], "line of the list")
    equal(len(contents), len(files), "lines of the list")
    made = (directory / files[0]).stat()
    mask = os.umask(0)
    os.umask(mask)
    equal((made.st_mtime, stat.S_IMODE(made.st_mode)), (1e9, 0o750 & ~mask), "time and mode")

    names = {"to": "releases", "date": "2026-02-03"}
    succeeds("release.js", **names)
    before = Path("releases/thermostat-1.2.3-2026-02-03/CONTENTS").read_bytes()
    fails("release.js", "exists already", **names)
    equal(Path("releases/thermostat-1.2.3-2026-02-03/CONTENTS").read_bytes(), before, "the first release")
    for wrong, reason in [("firmware.elf;none.bin", "cannot read none.bin"), ("releases", "cannot read releases"),
                          ("firmware.elf;%s/firmware.elf" % os.getcwd(), "two files named firmware.elf")]:
        fails("release.js", reason, files=wrong, to="elsewhere")
    equal(Path("elsewhere").exists(), False, "half a release")
    fails("release.js", "cannot make", to="firmware.elf")


def test_memory_map():
    """The words, gaps and addresses of the picture, and that the documents show the one that is made now."""
    for source in reversed(IMAGES):
        subprocess.run(WRAPPER + [PROGRAM, "-define", "input=" + source, "-define", "output=stamped.elf",
                                  "-define", "version=1.2.3", "-load", "examples/stamp.js"], check=True,
                       stdout=subprocess.DEVNULL)
        succeeds("memory_map.js", original=source)
        texts = [element.text or "" for element in ElementTree.parse("memory_map.svg").iter()]
        image = Image("stamped.elf")
        for _, _, virtual, physical, stored, size, *_ in image.segments:
            equal("0x%08X" % (physical if stored else virtual) in texts, True, "%x in %s" % (physical, texts))
            equal("%d bytes" % size in texts, True, "%d bytes in %s" % (size, texts))
        stored = sum(min(entry[3] + entry[4], SLOT) - entry[3] for entry in image.segments if entry[4])
        gap = "{:,} bytes".format(SLOT - START - stored)
        equal([text for text in texts if text.startswith(gap)], [gap, gap + " of gaps read"], "gaps in %s" % texts)
        crc = "0x%08X" % KINDS["bzip2"](image.flash())
        equal(re.findall(r"CRC-32 (\w+)|>(0x\w+)</tspan>", Path("memory_map.svg").read_text()),
              [("", "0x00010203"), ("", crc), (crc, "")], "words changed and the checksum of " + source)
    equal(Path("memory_map.svg").read_text() == (ROOT / "docs/pictures/memory_map.svg").read_text(), True,
          "docs/pictures/memory_map.svg is what memory_map.js makes now")

    fails("memory_map.js", "checksum in board::imageCrc", image=IMAGES[0])
    fails("memory_map.js", "not the same image", original="examples/firmware/Makefile")
    fails("memory_map.js", "cannot write none/map.svg", picture="none/map.svg")


def test_hex_files():
    """What srec.js and ihex.js write, read back by objcopy."""
    Path("write.js").write_text("""
        var large = [];
        for (var i = 0; i < 100003; i++)
            large[i] = i * i >> 3 & 255;
        var blocks = [{ address: 0x0800FFF7, bytes: [1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 255, 256, -1] },
                      { address: 0x08010020, bytes: [] }, { address: 0x08010100, bytes: large }];
        TBSys.writeStringToFile("a.srec", Srec.text(blocks, "title", 0x08000051));
        TBSys.writeStringToFile("a.ihex", Ihex.text(blocks, 0x08000051));
        TBSys.writeStringToFile("empty.srec", Srec.text([]));
        TBSys.writeStringToFile("empty.ihex", Ihex.text([]));
        var ends = [{ address: 0, bytes: [7] }, { address: 0xFFFFFFFE, bytes: [8, 9] }];
        TBSys.writeStringToFile("ends.srec", Srec.text(ends));
        TBSys.writeStringToFile("ends.ihex", Ihex.text(ends));
        """)
    subprocess.run(WRAPPER + [PROGRAM, "-load", "lib/srec.js", "-load", "lib/ihex.js", "-load", "write.js"], check=True)
    head = bytes([1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 255, 0, 255])
    expected = head.ljust(0x109, b"\xff") + bytes(i * i >> 3 & 255 for i in range(100003))
    for kind, end in [("srec", "S70500000000FA\n"), ("ihex", ":00000001FF\n")]:
        subprocess.run(["objcopy", "-I", kind, "-O", "binary", "--gap-fill", "0xff", "a." + kind, "a.bin"], check=True)
        equal(Path("a.bin").read_bytes() == expected, True, "the bytes of a." + kind)
        shown = subprocess.run(["objdump", "-fh", "a." + kind], capture_output=True, text=True, check=True).stdout
        equal("start address 0x08000051" in shown, True, shown)
        equal(Path("empty." + kind).read_text().splitlines(True)[-1], end, "an empty file's end")
        shown = subprocess.run(["objdump", "-h", "ends." + kind], capture_output=True, text=True, check=True).stdout
        sections = re.findall(r"\.sec\d +(\w+) +(\w+)", shown)
        equal(sections, [("00000001", "00000000"), ("00000002", "fffffffe")], shown)
    equal(Path("a.srec").read_text().splitlines()[0], "S00800007469746C65D5", "the title")


def test_readme():
    """The commands and the file that the page shows, as they stand."""
    blocks = re.findall(r"(?:^    .*\n)+", re.sub(r"\n\n(?=    )", "\n~\n", (ROOT / "examples/README.md").read_text()),
                        re.M)
    build, library, compare = [re.sub("^    ", "", block, flags=re.M) for block in blocks]
    Path("library.txt").write_text(library)
    os.mkdir("bin")
    os.symlink(PROGRAM, "bin/quorvane")
    environment = dict(os.environ, PATH=os.path.abspath("bin") + ":" + os.environ["PATH"])
    for commands in [build, "cp stamped.elf old.elf; cp stamped.elf new.elf\n" + compare]:
        done = subprocess.run(["sh", "-e", "-c", commands], env=environment, capture_output=True, text=True)
        equal((done.returncode, done.stderr), (0, ""), commands + done.stdout)
        equal(re.search("checksum 0x[0-9A-F]{8} is right|no difference in 4096 bytes", done.stdout) is not None, True,
              done.stdout)


def main():
    global PROGRAM
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--program", required=True, type=Path)
    parser.add_argument("name", nargs="*")
    options = parser.parse_args()
    PROGRAM = str(options.program.resolve())
    tests = {name[5:]: test for name, test in globals().items() if name.startswith("test_")}
    failed = 0
    for name in options.name or tests:
        with tempfile.TemporaryDirectory(prefix="quorvane-") as folder:
            os.chdir(folder)
            for source in ("lib", "examples"):
                os.symlink(ROOT / source, source)
            for image in IMAGES:
                shutil.copy(ROOT / "examples/firmware" / image, image)
            try:
                tests[name]()
            except (AssertionError, OSError, ValueError, subprocess.SubprocessError) as error:
                failed += 1
                print("FAILED %s: %s\n" % (name, error))
            os.chdir("/")
    print("%d of %d passed" % (len(options.name or tests) - failed, len(options.name or tests)))
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()

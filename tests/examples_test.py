#!/usr/bin/env python3
"""Runs the jobs of examples/ end to end and holds what they make against other tools.

usage: examples_test.py --program PATH [NAME...]

The command of a job is the one in the comment at its top, with other definitions put in where a test has its own,
so that a comment which forgets a library file fails here. Images are read by a reader of its own, with readelf,
size and cmp beside it.
"""
import argparse
import itertools
import os
import re
import shlex
import shutil
import struct
import subprocess
import tempfile
import zlib
from pathlib import Path
from xml.etree import ElementTree

import support
from support import ROOT, WRAPPER

IMAGES = ["firmware.elf", "firmware-be.elf"]
START, VERSION, TABLE, SLOT = 0x08000000, 0x08000C00, 0x08000C04, 0x08000C14
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
            memory[physical - START:physical - START + length] = self.data[offset:offset + length]
        return bytes(memory[:end - START])

    def holds(self, address):
        return any(physical <= address < physical + length for _, _, _, physical, length, *_ in self.segments)

    def poke(self, address, form, *values):
        struct.pack_into(self.order + form, self.data, self.offset(address), *values)


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


def run(name, without=(), **given):
    """Runs a job by the command in its comment, with the definitions given in place of its own."""
    command = re.search(r"^//   (quorvane (?:.*\\\n//)*.*)", (ROOT / "examples" / name).read_text(), re.M)[1]
    words = shlex.split(command.replace("\\\n//", " "))[1:]
    own = dict(value.split("=", 1) for option, value in zip(words[::2], words[1::2]) if option == "-define")
    loads = [value if Path(value).exists() else "examples/" + value
             for option, value in zip(words[::2], words[1::2]) if option == "-load"]
    defined = ["%s=%s" % item for item in (own | given).items() if item[0] not in without]
    return support.run(WRAPPER + [PROGRAM, *itertools.chain(*zip(itertools.repeat("-define"), defined)),
                                  *itertools.chain(*zip(itertools.repeat("-load"), loads))], ".")


def equal(actual, expected, what=None):
    if actual != expected:
        raise AssertionError("%s: expected\n%s\ngot\n%s" % (what, expected, actual))


def succeeds(name, without=(), **definitions):
    done = run(name, without, **definitions)
    equal((done.status, done.err), (0, ""), "%s %s, which prints %s" % (name, definitions, done.out))
    return done.out


def fails(name, reason, without=(), **definitions):
    """The last line that it prints has the reason."""
    done = run(name, without, **definitions)
    equal(done.status, 1, "%s %s, which prints %s" % (name, definitions, done.out))
    assert re.fullmatch(r"error: line \d+: not a function object\n", done.err), done.err
    assert re.fullmatch("error: .*%s.*" % re.escape(reason), done.out.splitlines()[-1]), (name, reason, done.out)
    return done.out


def tool(*words):
    return subprocess.run(words, capture_output=True, text=True, check=True).stdout


def test_stamp_and_verify_crc():
    for source, kind in itertools.product(IMAGES, KINDS):
        image = Image(source)
        image.poke(VERSION, "I", 0x010203)
        crc = KINDS[kind](image.flash())
        image.poke(SLOT, "I", crc)
        if kind == "bzip2":
            succeeds("stamp.js", input=source, output="stamped.elf", version="1.2.3")
            equal(Path("stamped.elf").read_bytes(), bytes(image.data), "what is stamped")
        Path("stamped.elf").write_bytes(image.data)
        assert "0x%08X" % crc in succeeds("verify-crc.js", image="stamped.elf", kind=kind)
        image.data[image.offset(SLOT - 1)] ^= 0x10  # the last byte that counts
        Path("changed.elf").write_bytes(image.data)
        now = KINDS[kind](image.flash())
        fails("verify-crc.js", "wrong checksum: 0x%08X" % now, image="changed.elf", kind=kind)
    succeeds("verify-crc.js", image="stamped.elf", kind=kind, slot="0x%X" % SLOT, **{"from": str(START)})
    # The gaps count: with another fill the same image is wrong.
    fails("verify-crc.js", "wrong checksum", image="stamped.elf", kind=kind, fill="0")
    fails("verify-crc.js", "no symbol board::crc", image="stamped.elf", slot="board::crc")
    fails("verify-crc.js", "no such kind", image="stamped.elf", kind="crc64")
    fails("verify-crc.js", "behind the start", image="stamped.elf", **{"from": hex(SLOT)})
    fails("verify-crc.js", "needs -define image=...", without=["image"])


def test_symbols():
    for source in IMAGES:
        rows = [line.split(None, 7) for line in tool("readelf", "-sW", "--demangle", source).splitlines()]
        symbols = {row[7]: int(row[1], 16) & (~1 if row[3] == "FUNC" else ~0) for row in rows
                   if len(row) == 8 and row[3] in ("FUNC", "OBJECT") and row[4] in ("GLOBAL", "WEAK")}
        assert len(symbols) > 12, symbols
        Path("names.txt").write_text("# all of them\n\n" + "\n".join(symbols) + "\r\n")
        image = Image(source)
        shown = [line.split(None, 2) for line in
                 succeeds("symbols.js", without=["names"], image=source, list="names.txt").splitlines()]
        equal({name: int(address, 16) for address, _, name in shown}, symbols, "addresses in " + source)
        for address, word, name in shown:
            inside = image.holds(int(address, 16))
            equal(word, "0x%08X" % image.unpack("I", image.offset(int(address, 16))) if inside else "-", name)
    succeeds("symbols.js")
    out = fails("symbols.js", "1 of the symbols", names="main;none; board::imageCrc")
    equal([line.split()[-1] for line in out.splitlines()[:-1]], ["main", "none", "board::imageCrc"], "names")
    fails("symbols.js", "cannot read", without=["names"], list="none.txt")


def test_patch_table():
    numbers = [1, -1, 0x7FFF, -0x8000, 300, -300, 0xFFFF, 0]
    for source, (width, form) in itertools.product(IMAGES, [(8, "B"), (16, "H"), (32, "I")]):
        values = [number & 0x7F if width == 8 else number for number in numbers[:4 if width == 32 else 8]]
        Path("values.txt").write_text("%d,%d %d # 1 2\n\n#\n%d\t%s" % (
            *values[:4], "\r\n".join(hex(value) if value > 255 else str(value) for value in values[4:])))
        succeeds("patch-table.js", image=source, width=width, count=len(values), values="values.txt")
        expected = Image(source)
        expected.poke(TABLE, "%d%s" % (len(values), form), *(value & (1 << width) - 1 for value in values))
        equal(Path("patched.elf").read_bytes(), bytes(expected.data), "%s with %d bits" % (source, width))
    Path("patched.elf").unlink()
    for text, reason, given in [("1 2 3\n4 5 6 7\n", "expected 8, got 7", {}),
                                ("1 2\n3 x4", "line 2: no number of 16 bits: x4", {}), ("-32769", "-32769", {}),
                                ("65536", "65536", {}), ("1 2 3 4 5 6 7 1.5", "1.5", {}),
                                ("1 " * 11, "as a whole", {"count": 11}), ("", "width must be", {"width": 12}),
                                ("", "cannot read none.txt", {"values": "none.txt"})]:
        Path("values.txt").write_text(text)
        fails("patch-table.js", reason, **({"values": "values.txt"} | given))
    assert not Path("patched.elf").exists()


def test_compare():
    old, new = Image(IMAGES[0]), Image(IMAGES[0])
    for address in [START, START + 1, START + 256, TABLE, TABLE + 2, 0x080001C1, SLOT + 3, *range(START + 32, START + 48)]:
        new.data[new.offset(address)] ^= 0xFF
    Path("new.elf").write_bytes(new.data)
    end = SLOT + 4
    names = {"first": IMAGES[0], "second": "new.elf", "from": hex(START), "length": end - START}
    shown = {}
    for line in fails("compare.js", "23 bytes in 7 places differ", **names).splitlines()[:-1]:
        address, count, before, after = re.fullmatch(r"0x(\S+) +(\d+) : (.*) -> (.*)", line).groups()
        changes = list(zip(before.split(), after.split()))
        equal(len(changes), min(int(count), 9), "bytes shown in " + line)
        shown |= {int(address, 16) + i: change for i, change in enumerate(changes[:8])}
    pairs = enumerate(zip(old.flash(end), new.flash(end)), START)
    equal(shown, {at: ("%02X" % a, "%02X" % b) for at, (a, b) in pairs if a != b and not START + 40 <= at < START + 48})
    equal(len(fails("compare.js", "in 7 places", **names, show=2).splitlines()), 3, "lines shown")
    # Without a difference in the range, the files may differ.
    succeeds("compare.js", **names | {"from": START + 2, "length": 0x1E})
    fails("compare.js", "1 bytes in 1 places", **names | {"from": START + 1, "length": 0x1F})
    fails("compare.js", "must be numbers", **names | {"length": "much"})


def test_sizes():
    for source in IMAGES:
        ram = sum(int(size, 16) for size in re.findall(r"^\.(?:data|bss) +(\w+)", tool("size", "-Ax", source), re.M))
        binary = Image(source).flash(SLOT + 4)
        out = succeeds("sizes.js", image=source, binary="made file.bin", flashSize=len(binary), ramSize=ram)
        lines = out.splitlines()
        equal(Path("made file.bin").read_bytes(), binary, "the binary of " + source)
        assert "%d bytes, CRC-32 0x%08X" % (len(binary), KINDS["bzip2"](binary)) in lines[0], lines
        for line, size in zip(lines[1:], [len(binary), ram]):
            equal(line.split()[1:], "{0:,} of {0:,} bytes, 100.0 %".format(size).split(), "report")
        assert "100.0 %" in fails("sizes.js", "too large for its flash", image=source, flashSize=len(binary) - 1)
        fails("sizes.js", "too large for its ram", image=source, ramSize=ram - 1)
    fails("sizes.js", "CRC-32 of firmware.bin", flash="0x08000004")
    fails("sizes.js", "status -1 of none-objcopy", prefix="none-")


def test_release():
    shutil.copy(IMAGES[0], "two words.elf")
    files = [IMAGES[1], "two words.elf"]
    words = {"files": ";".join(files), "to": "made/releases", "version": "1 rc"}
    today = r"made/releases/thermostat-1 rc-\d{4}-\d\d-\d\d"
    directory = Path(succeeds("release.js", **words).splitlines()[-1])
    assert re.fullmatch(today, str(directory)), directory
    contents = "".join("%08x %d %s\n" % (zlib.crc32(data), len(data), name)
                       for name in files for data in [Path(name).read_bytes()])
    equal(re.sub(" +", " ", (directory / "CONTENTS").read_text()), contents)
    equal(sorted(path.name for path in directory.iterdir()), ["CONTENTS"] + files, "files of the release")
    equal([(directory / name).read_bytes() for name in files], [Path(name).read_bytes() for name in files])
    succeeds("release.js", **words, date="2026-02-03")
    fails("release.js", "exists already", **words | {"files": IMAGES[0]}, date="2026-02-03")
    assert not Path("made/releases/thermostat-1 rc-2026-02-03", IMAGES[0]).exists()
    for wrong, reason in [("firmware.elf;none.bin", "cannot read none.bin"), ("made", "cannot read made"),
                          ("firmware.elf;%s/firmware.elf" % os.getcwd(), "two files named firmware.elf")]:
        fails("release.js", reason, files=wrong, to="elsewhere")
    assert not Path("elsewhere").exists()
    fails("release.js", "cannot make", files=IMAGES[0], to=IMAGES[0])


def test_memory_map():
    """The documents show the picture that is made now, whose checksum is right."""
    for source in reversed(IMAGES):
        succeeds("stamp.js", input=source, output="stamped.elf", version="1.2.3")
        succeeds("memory_map.js", original=source)
        picture = Path("memory_map.svg").read_text()
        crc = "0x%08X" % KINDS["bzip2"](Image("stamped.elf").flash())
        equal(re.findall(r"CRC-32 (\w+)|>(0x\w+)</tspan>", picture), [("", "0x00010203"), ("", crc), (crc, "")], source)
    assert picture == (ROOT / "docs/pictures/memory_map.svg").read_text(), "the documents show another picture"
    fails("memory_map.js", "checksum in board::imageCrc", image=IMAGES[0])
    fails("memory_map.js", "not the same image", original="examples/firmware/Makefile")
    fails("memory_map.js", "cannot write none/map.svg", picture="none/map.svg")


def test_hex_files():
    """What srec.js and ihex.js write, read back by objcopy."""
    Path("write.js").write_text("""
        var large = [];
        for (var i = 0; i < 100003; i++)
            large[i] = i * i >> 3 & 255;
        var a = [{ address: 0x0800FFF7, bytes: [1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 255, 256, -1] },
                 { address: 0x08010020, bytes: [] }, { address: 0x08010100, bytes: large }];
        var ends = [{ address: 0, bytes: [7] }, { address: 0xFFFFFFFE, bytes: [8, 9] }];
        function write(name, srec, ihex) {
            TBSys.writeStringToFile(name + ".srec", srec);
            TBSys.writeStringToFile(name + ".ihex", ihex);
        }
        write("a", Srec.text(a, "title", 0x08000051), Ihex.text(a, 0x08000051));
        write("empty", Srec.text([]), Ihex.text([]));
        write("ends", Srec.text(ends), Ihex.text(ends));
        """)
    tool(*WRAPPER, PROGRAM, "-load", "lib/srec.js", "-load", "lib/ihex.js", "-load", "write.js")
    head = bytes([1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 255, 0, 255])
    expected = head.ljust(0x109, b"\xff") + bytes(i * i >> 3 & 255 for i in range(100003))
    for kind, end in [("srec", "S70500000000FA\n"), ("ihex", ":00000001FF\n")]:
        tool("objcopy", "-I", kind, "-O", "binary", "--gap-fill", "0xff", "a." + kind, "a.bin")
        equal(Path("a.bin").read_bytes() == expected, True, "the bytes of a." + kind)
        assert "start address 0x08000051" in tool("objdump", "-fh", "a." + kind)
        equal(Path("empty." + kind).read_text().splitlines(True)[-1], end, "an empty file's end")
        shown = re.findall(r"\.sec\d +(\w+) +(\w+)", tool("objdump", "-h", "ends." + kind))
        equal(shown, [("00000001", "00000000"), ("00000002", "fffffffe")])
    equal(Path("a.srec").read_text().splitlines()[0], "S00800007469746C65D5", "the title")


def test_readme():
    """The commands and the file that the page shows, as they stand."""
    text = re.sub(r"\n\n(?=    )", "\n~\n", (ROOT / "examples/README.md").read_text())
    blocks = re.findall(r"(?:^    .*\n)+", text, re.M)
    build, library, compare = [re.sub("^    ", "", block, flags=re.M) for block in blocks]
    Path("library.txt").write_text(library)
    os.mkdir("bin")
    os.symlink(PROGRAM, "bin/quorvane")
    for commands in [build, "cp stamped.elf old.elf; cp stamped.elf new.elf\n" + compare]:
        done = support.run(["sh", "-e", "-c", commands], ".", PATH=os.path.abspath("bin") + ":" + os.environ["PATH"])
        equal((done.status, done.err), (0, ""), commands + done.out)
        assert re.search("checksum 0x[0-9A-F]{8} is right|no difference in 4096 bytes", done.out), done.out


def main():
    global PROGRAM
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--program", required=True, type=Path)
    parser.add_argument("name", nargs="*")
    options = parser.parse_args()
    PROGRAM = str(options.program.resolve())
    tests = {name[5:]: test for name, test in globals().items() if name.startswith("test_")}
    for name in options.name or tests:
        print(name, flush=True)
        with tempfile.TemporaryDirectory(prefix="quorvane-") as folder:
            os.chdir(folder)
            for source in ("lib", "examples"):
                os.symlink(ROOT / source, source)
            for image in IMAGES:
                shutil.copy(ROOT / "examples/firmware" / image, image)
            tests[name]()
            os.chdir("/")


if __name__ == "__main__":
    main()

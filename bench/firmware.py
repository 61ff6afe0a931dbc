"""Makes 32-bit little-endian ELF images of any size for growth.py and images.py, and measures programs."""
import collections
import functools
import os
import re
import shutil
import struct
import subprocess
import time

CODE_BASE = 0x08000000


def cpp_names(count):
    """Mangled names of `count` functions, some 40 characters each, as they come from classes in namespaces.

    A class has 16 of them, and every member name is that of many classes.
    """
    for i in range(count):
        space, kind, member = "board%d" % (i % 7), "Device%d" % (i // 16), "transfer%d" % (i % 4099)
        yield "_ZN%d%s%d%s%d%sEPKhj" % (len(space), space, len(kind), kind, len(member), member)


# The demangled form of name i of cpp_names, as an expression of a script.
CPP_TEXT = "'board' + i % 7 + '::Device' + (i >> 4) + '::transfer' + i % 4099 + '(unsigned char const*, unsigned int)'"


def write_image(path, names, segments=((CODE_BASE, b"\0" * 256),)):
    """Writes an image with a function symbol for each name and a program header for each (address, bytes)."""
    body = bytearray(52 + 32 * len(segments))
    at = 52
    for address, content in segments:
        struct.pack_into("<8I", body, at, 1, len(body), address, address, len(content), len(content), 5, 4)
        body += content + b"\0" * (-len(content) % 4)
        at += 32
    strings = bytearray(b"\0")
    symbols = bytearray(16)
    for i, name in enumerate(names):
        symbols += struct.pack("<3I2BH", len(strings), CODE_BASE + 4 * i + 1, 4, 0x12, 0, 1)
        strings += name.encode() + b"\0"
    strings += b"\0" * (-len(strings) % 4)
    section_names = b"\0.text\0.symtab\0.strtab\0.shstrtab\0\0\0\0"
    headers = struct.pack("<10I", *[0] * 10)
    # Name, type, size of an entry, content.
    for name, kind, link, entry, content in ((1, 1, 0, 0, b""), (7, 2, 3, 16, symbols), (15, 3, 0, 0, strings),
                                       (23, 3, 0, 0, section_names)):
        headers += struct.pack("<10I", name, kind, 0, 0, len(body), len(content), link, 0, 4, entry)
        body += content
    struct.pack_into("<16s2H5I6H", body, 0, b"\x7fELF\1\1\1", 2, 40, 1, CODE_BASE, 52, len(body), 0x05000200,
                     52, 32, len(segments), 40, 5, 4)
    path.write_bytes(body + headers)


Times = collections.namedtuple("Times", "cpu wall")  # seconds of one process; cpu is user and system


def run(command, expected=None):
    """Runs a command and gives its times. Ends the program if it fails or does not print `expected`."""
    start = time.perf_counter()
    read_end, write_end = os.pipe()
    null = os.open(os.devnull, os.O_RDWR)
    child = os.posix_spawn(command[0], command, os.environ, file_actions=[
        (os.POSIX_SPAWN_DUP2, null, 0), (os.POSIX_SPAWN_DUP2, write_end, 1), (os.POSIX_SPAWN_DUP2, write_end, 2)])
    os.close(null)
    os.close(write_end)
    with os.fdopen(read_end) as pipe:
        printed = pipe.read()
    _, status, usage = os.wait4(child, 0)
    wall = time.perf_counter() - start
    if status != 0 or (expected is not None and printed != expected):
        raise SystemExit("%s: status %d, printed %r" % (" ".join(command), status, printed[:300]))
    return Times(usage.ru_utime + usage.ru_stime, wall)


@functools.cache
def counter():
    """The words in front of a command that count its instructions, and how the count is written behind them."""
    for words, form in ((["perf", "stat", "-x,", "-e", "instructions:u", "--"], r"(?m)^(\d+),[^,]*,instructions"),
                        (["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null"], r"Collected : (\d+)")):
        if shutil.which(words[0]):
            tried = subprocess.run(words + ["true"], capture_output=True, text=True)
            if tried.returncode == 0 and re.search(form, tried.stderr):
                return words, form
    raise SystemExit("nothing counts instructions here: apt-get install valgrind")


def instructions(command, expected=None):
    """Runs a command and gives its instructions of user code. Ends the program as `run` does."""
    words, form = counter()
    run = subprocess.run(words + command, stdin=subprocess.DEVNULL, capture_output=True, text=True)
    counted = re.search(form, run.stderr)
    if run.returncode != 0 or counted is None or (expected is not None and run.stdout != expected):
        raise SystemExit("%s: status %d, printed %r" % (" ".join(command), run.returncode,
                                                        (run.stdout + run.stderr)[-300:]))
    return int(counted[1])

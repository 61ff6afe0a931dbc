#!/usr/bin/env python3
"""Refuses the program what it asks the system for, one request after the other, and looks at what is left.

usage: refusals.py memory|files|disk [--runs N] PROGRAM [SCRIPT...]

memory: each request for memory is refused once, and all from it on. PROGRAM is quorvane_refusals. --runs N
        spreads about that many refusals over each SCRIPT; without it that takes the better part of an hour.
files:  each request on files likewise, and the process killed in its place, while files are saved in every way.
disk:   PROGRAM on a disk of 64 KiB that is full; status 77 (skipped) where that can't be mounted.

However it goes, a run ends with status 1 and a message, or as if nothing had been refused. What it printed until
then is right, each image is the old one or the new one, lets in the same people, and nothing else is left over.
"""
import argparse
import os
import re
import shutil
import struct
import subprocess
import sys
import tempfile
from pathlib import Path

TESTS = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(TESTS))
import run_script  # noqa: E402
from support import write_files  # noqa: E402

FIRMWARE = (TESTS.parent / "examples/firmware/firmware.elf").read_bytes()
SCRIPTS = ["faults/image.js"] + ["scripts/%s.js" % name for name in (
    "language/compile-jumps", "language/compile-names", "language/compile-order", "language/compile-error-line",
    "natives/array", "natives/array_sort", "natives/array_sparse", "natives/date", "natives/function",
    "natives/global", "natives/global_load", "natives/number", "natives/string", "natives/string_objects",
    "host/indirect", "host/host_objects", "tbsys/files", "tbsys/text_files", "tbsys/byte_arrays", "tbsys/run",
    "elf/addresses", "elf/symbols")]
MEMORY, FILES = 1, 2
ONCE, FROM_THEN_ON, KILL = range(3)

# What is saved, and the name under which the image must be found then.
SAVES = {"plain.elf": "plain.elf", "list.elf": "list.elf", "new.elf": "new.elf", "link": "made.elf",
         "linked.elf": "linked-too.elf", "longer.elf": "longer-too.elf", "shorter.elf": "shorter-too.elf"}
WRITERS = {"copy": "copyFile('source', 'copy')", "text": "writeStringToFile('text', 'abc')",
           "bytes": "writeByteArrayToFile('bytes', [1, 2])"}


class Run:
    """What is left of a run in a new folder, which `prepare` has filled."""

    def __init__(self, prepare, command):
        with tempfile.TemporaryDirectory(prefix="quorvane-") as scratch:
            folder = Path(scratch) / "files"
            folder.mkdir()
            prepare(folder)
            self.before = self.content(folder)
            count = Path(scratch) / "count"
            result = subprocess.run([str(count) if word is None else word for word in command], cwd=folder,
                                    stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                    check=False, timeout=300)
            self.status, self.out, self.err = result.returncode, result.stdout, result.stderr.decode("latin-1")
            self.files = self.content(folder)
            self.requests = int(count.read_text()) if count.exists() else 0

    @staticmethod
    def content(folder):
        """The bytes of each file, and who may do what with it."""
        files = {}
        for path in folder.rglob("*"):
            if path.is_file():
                lists = {name: os.getxattr(path, name) for name in os.listxattr(path)}
                files[str(path.relative_to(folder))] = path.read_bytes(), (path.stat().st_mode, lists)
        return files


def access_list(user, *entries):
    everyone = 0xFFFFFFFF
    return struct.pack("<I", 2) + b"".join(
        struct.pack("<HHI", tag, bits, user if tag == 2 else everyone) for tag, bits in entries)


def fill_for_saves(folder):
    """A file for each way of saving, in a folder that lets another user into all new files."""
    (folder / "source").write_bytes(FIRMWARE)
    for name, size in (("plain", 0), ("list", 0), ("linked", 0), ("longer", 5000), ("shorter", -700)):
        path = folder / (name + ".elf")
        path.write_bytes((bytes(8) + FIRMWARE + bytes(5000))[:len(FIRMWARE) + size])
        path.chmod(0o664)
        if name not in ("plain", "list"):
            os.link(path, folder / SAVES[path.name])
    (folder / "link").symlink_to("made.elf")
    try:
        os.setxattr(folder / "list.elf", "system.posix_acl_access",
                    access_list(1000, (1, 6), (2, 6), (4, 0), (16, 6), (32, 0)))
        os.setxattr(folder, "system.posix_acl_default",
                    access_list(1001, (1, 6), (2, 6), (4, 0), (16, 6), (32, 0)))
    except OSError:
        pass  # a file system without


def files_offence(run, untouched, way):
    for name in sorted(set(run.files) | set(run.before)):
        old, new, now = run.before.get(name), untouched.files.get(name), run.files.get(name)
        if name in WRITERS:
            continue
        if now is None:
            return "loses " + name
        if now[1] != old[1] if old else new and now[1][0] & ~new[1][0]:
            return "opens " + name
        allowed = [state[0] for state in (old, new) if state]
        if old and new and name.startswith(("linked", "longer", "shorter")):
            # Overwritten in place: the length comes last, and a longer end first, which goes again if it can.
            allowed += [new[0] + old[0][len(new[0]):]] + [old[0] + new[0][len(old[0]):]] * (way != ONCE)
        if now[0] not in allowed:
            return ("harms " if allowed else "leaves ") + name
    if way == KILL:
        return "" if run.status in (0, -9) else "ends with status %d" % run.status
    if run.status == 0:
        # A script is told of a copy that failed, and of a file that cannot be opened.
        short = {name for name in untouched.files if run.files.get(name, b"-")[0] != untouched.files[name][0]}
        return "claims success" if short - {"text", "bytes"} and run.out == untouched.out else ""
    said = re.fullmatch(r"error: (cannot (open|read)|write read) [^\n]*\n", run.err)
    return "" if run.status == 1 and said else "ends with status %d and %r" % (run.status, run.err)


def memory_offence(run, untouched, _):
    for name in run.files:
        old, new, now = run.before.get(name), untouched.files.get(name), run.files[name]
        if not old and not new and name.startswith("."):
            return "leaves " + name
        if name.endswith(".elf") and old and new and now not in (old, new):
            return "harms " + name
    if (run.status, run.out, run.err) == (untouched.status, untouched.out, untouched.err):
        return "" if run.files == untouched.files else "leaves other content in its files"
    if run.status != 1 or not untouched.out.startswith(run.out):
        return "ends with status %d and prints something else" % run.status
    # A length that nothing could hold is the script's error.
    known = re.compile(r"Internal error detected|error: line \d+: length too large")
    lines = run.err.splitlines()
    return "" if lines and all(known.fullmatch(line) for line in lines) else "ends with other words"


def refuse(what, program, prepare, words, kind, ways, runs, offence):
    """Gives the number of offences."""
    def run(way, first):
        return Run(prepare, [program, None, str(kind), str(way), str(first)] + words)

    untouched = run(ONCE, 0)
    if kind == FILES and untouched.out != b"true":
        print("%s: %r without a fault" % (what, untouched.out))
        return 1
    step = max(untouched.requests // runs, 1) if runs else 1
    offences = done = ended = 0
    first = 1
    while first <= untouched.requests:
        # All ways in turn where not every request is tried; and not always the same kind of request in a loop.
        for way in ways if step == 1 else ways[done % len(ways):][:1]:
            outcome = run(way, first)
            done += 1
            ended += outcome.err != untouched.err or outcome.status < 0
            fault = offence(outcome, untouched, way)
            if fault:
                offences += 1
                print("%s, request %d, way %d: %s\n%s" % (what, first, way, fault, outcome.err))
        first += step + (step > 1 and done % 2 == 0)
    print("%s: %d requests, %d runs, %d ended early, %d offences"
          % (what, untouched.requests, done, ended, offences), flush=True)
    return offences + (ended == 0)


def memory(program, options):
    faults = 0
    for script in options.script or [TESTS / name for name in SCRIPTS]:
        names = {"script": str(script.resolve()), "root": str(TESTS.parent), "program": program}
        expected = run_script.Expectations(script.read_bytes().decode("latin-1"), names)

        def prepare(folder, files=expected.files):
            write_files(folder, files)

        faults += refuse(script.name, program, prepare, expected.command(), MEMORY, [ONCE, FROM_THEN_ON],
                         options.runs, memory_offence)
    return faults


def files(program, _):
    scripts = {name: "ElfFile.load('source'); ElfFile.save('%s'); WScript.Echo(TBSys.run('cmp source %s') == 0)"
               % (name, found) for name, found in SAVES.items()}
    scripts |= {name: "WScript.Echo(TBSys.%s)" % call for name, call in WRITERS.items()}
    return sum(refuse(name, program, fill_for_saves, [script], FILES, [ONCE, FROM_THEN_ON, KILL], 0, files_offence)
               for name, script in scripts.items())


def disk(program, _):
    if "QUORVANE_MAY_MOUNT" not in os.environ:
        command = ["unshare", "--mount", "--map-root-user"]
        if not shutil.which("unshare") or subprocess.run(command + ["true"], check=False).returncode != 0:
            sys.exit(77)
        sys.exit(subprocess.run(command + [sys.executable] + sys.argv, check=False,
                                env=dict(os.environ, QUORVANE_MAY_MOUNT="1")).returncode)
    large = FIRMWARE + bytes(40000)
    with tempfile.TemporaryDirectory(prefix="quorvane-") as name:
        source, folder = Path(name) / "source", Path(name) / "disk"
        source.write_bytes(large)
        folder.mkdir()
        if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=64k", "none", folder], check=False).returncode != 0:
            sys.exit(77)
        try:
            for image, content in (("old", FIRMWARE), ("linked", bytes(len(large))), ("short", FIRMWARE)):
                (folder / (image + ".elf")).write_bytes(content)
            os.link(folder / "linked.elf", folder / "linked-too.elf")
            os.link(folder / "short.elf", folder / "short-too.elf")
            faults = 0
            for what, script, error, changed in (
                    ("over an image", "ElfFile.save('old.elf')", "error: write read old.elf\n", None),
                    ("longer, in place", "ElfFile.save('short.elf')", "error: write read short.elf\n", None),
                    ("to a new file", "ElfFile.save('new.elf')", "error: write read new.elf\n", None),
                    ("of the same size, in place", "ElfFile.save('linked.elf')", "", "linked.elf"),
                    ("copyFile", "WScript.Echo(TBSys.copyFile('%s', 'copy'))" % source, "", "copy"),
                    ("writeStringToFile", "TBSys.writeStringToFile('text', TBSys.readStringFromFile('%s'))" % source,
                     "", "text"),
                    ("writeByteArrayToFile",
                     "TBSys.writeByteArrayToFile('bytes', TBSys.readByteArrayFromFile('%s'))" % source, "", "bytes")):
                before = Run.content(folder)
                result = subprocess.run([program, "ElfFile.load('%s'); %s" % (source, script)], cwd=folder, timeout=60,
                                        stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                        check=False)
                after = Run.content(folder)
                differs = {name for name in before.keys() | after.keys() if before.get(name) != after.get(name)}
                expected = {changed, "linked-too.elf"} if changed == "linked.elf" else {changed} - {None}
                if (result.returncode, result.stderr.decode()) != (bool(error), error) or differs != expected \
                        or result.stdout not in (b"", b"false"):
                    faults += 1
                    print("%s: status %d, %r, %r, changes %s"
                          % (what, result.returncode, result.stdout, result.stderr, sorted(differs)))
                if len(expected) == 1:
                    (folder / changed).unlink()
            faults += (folder / "linked.elf").read_bytes() != large
        finally:
            subprocess.run(["umount", folder], check=True)
    return faults


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("what", choices=("memory", "files", "disk"))
    parser.add_argument("--runs", type=int, default=0)
    parser.add_argument("program", type=Path)
    parser.add_argument("script", nargs="*", type=Path)
    options = parser.parse_args()
    check = {"memory": memory, "files": files, "disk": disk}[options.what]
    sys.exit(1 if check(str(options.program.resolve()), options) else 0)


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
"""Refuses the program what it asks the system for, one request after the other, and looks at what is left.

usage: refusals.py memory|files|disk PROGRAM [SCRIPT...]

memory: requests for memory are refused once, and all from one on: 30 of each of the scripts below, or all that the
        given scripts make, which takes a while. PROGRAM is quorvane_refusals.
files:  each request on files likewise, and the process killed in its place, while files are saved in every way.
disk:   PROGRAM on a disk of 64 KiB that fills up; status 77 (skipped) where that can't be mounted.

However it goes, a run ends with status 1 and a message, or as if nothing had been refused. What it printed until
then is right, each image is the old one or the new one, lets in the same people, and nothing else is left over.
"""
import os
import re
import struct
import subprocess
import sys
import tempfile
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1]))
import run_script  # noqa: E402
from support import ROOT, TESTS, write_files  # noqa: E402

FIRMWARE = (ROOT / "examples/firmware/firmware.elf").read_bytes()
SCRIPTS = ["language/compile-jumps", "language/compile-names", "language/compile-order", "language/compile-error-line",
           "natives/array", "natives/array_sort", "natives/array_sparse", "natives/date", "natives/function",
           "natives/global", "natives/global_load", "natives/number", "natives/string", "natives/string_objects",
           "host/indirect", "host/host_objects", "tbsys/files", "tbsys/text_files", "tbsys/byte_arrays", "tbsys/run",
           "elf/addresses", "elf/symbols"]
MEMORY, FILES = 1, 2
ONCE, FROM_THEN_ON, KILL = range(3)
ACCESS = "system.posix_acl_access"

# What is saved, and the name under which the image must be found then.
SAVES = {"plain.elf": "plain.elf", "list.elf": "list.elf", "new.elf": "new.elf", "link": "made.elf",
         "linked.elf": "linked-too.elf", "longer.elf": "longer-too.elf", "shorter.elf": "shorter-too.elf"}
SAVE = "ElfFile.load('source'); ElfFile.save('%s'); WScript.Echo(TBSys.run('cmp source %s') == 0)"
WRITERS = {"copy": "copyFile('list.elf', 'copy')", "text": "writeStringToFile('text', 'abc')",
           "bytes": "writeByteArrayToFile('bytes', [1, 2])"}


def content(folder):
    """The bytes of each file, its mode, and its attributes, which tell whom else it lets in."""
    return {str(path.relative_to(folder)): (path.read_bytes(), path.stat().st_mode,
                                            {name: os.getxattr(path, name) for name in os.listxattr(path)})
            for path in folder.rglob("*") if path.is_file()}


class Run:
    """What is left of a run. A killed one is over when its last child is, which has its streams."""

    def __init__(self, folder, command):
        self.before = content(folder)
        done = subprocess.run(command, cwd=folder, stdin=subprocess.DEVNULL, capture_output=True, check=False,
                              timeout=300)
        self.status, self.out, self.err = done.returncode, done.stdout, done.stderr.decode("latin-1")
        self.files = content(folder)


def access_list(user):
    entries = (1, 6, -1), (2, 6, user), (4, 0, -1), (16, 6, -1), (32, 0, -1)  # the fourth is the mask
    return struct.pack("<I", 2) + b"".join(struct.pack("<HHi", *entry) for entry in entries)


def let_in(state):
    names = state[2].get(ACCESS, b"")
    return names[:28] + names[36:]


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
        os.setxattr(folder / "list.elf", ACCESS, access_list(1000))
        os.setxattr(folder, "system.posix_acl_default", access_list(1001))
    except OSError:
        pass  # a file system without


def files_offence(run, untouched, way):
    for name in sorted(set(run.files) | set(run.before)):
        old, new, now = run.before.get(name), untouched.files.get(name), run.files.get(name)
        if now is None:
            return "loses " + name
        if now[1] & 0o070 and let_in(now) != let_in(run.before["list.elf"]) if name == "copy" \
                else now[1:] != old[1:] if old else new and now[1] & ~new[1]:
            return "opens " + name
        allowed = [state[0] for state in (old, new) if state]
        if old and new and name.startswith(("linked", "longer", "shorter")):
            # Overwritten in place: the length comes last, and a longer end first, which goes again if it can.
            allowed += [new[0] + old[0][len(new[0]):]] + [old[0] + new[0][len(old[0]):]] * (way != ONCE)
        if now[0] not in allowed and name not in WRITERS:
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
    for name, now in run.files.items():
        old, new = run.before.get(name), untouched.files.get(name)
        if not old and not new and name.startswith("."):
            return "leaves " + name
        if name.endswith(".elf") and old and new and now not in (old, new):
            return "harms " + name
    if (run.status, run.out, run.err) == (untouched.status, untouched.out, untouched.err):
        return "" if run.files == untouched.files else "leaves other content in its files"
    if run.status != 1 or not untouched.out.startswith(run.out):
        return "ends with status %d and prints something else" % run.status
    known = re.fullmatch(r"error: (line \d+: )?out of memory\n", run.err)
    return "" if known else "ends with other words"


def refuse(what, program, prepare, words, kind, ways, runs, offence):
    """Gives the number of offences."""
    def run(way, first):
        with tempfile.TemporaryDirectory(prefix="quorvane-") as scratch:
            folder, count = Path(scratch, "files"), Path(scratch, "count")
            folder.mkdir()
            prepare(folder)
            outcome = Run(folder, [program, count, str(kind), str(way), str(first)] + words)
            outcome.requests = int(count.read_text()) if count.exists() else 0
            return outcome

    untouched = run(ONCE, 0)
    step = max(untouched.requests // runs, 1) if runs else 1
    faults = [] if kind == MEMORY or untouched.out == b"true" else ["%r without a refusal" % untouched.out]
    done = 0
    first = 1
    while first <= untouched.requests:
        # All ways in turn where not every request is tried; and not always the same kind of request in a loop.
        for way in ways if step == 1 else ways[done % len(ways):][:1]:
            outcome = run(way, first)
            done += 1
            fault = offence(outcome, untouched, way)
            faults += ["request %d, way %d: %s\n%s" % (first, way, fault, outcome.err)] if fault else []
        first += step + (step > 1 and done % 2 == 0)
    print("\n".join(["%s: %d requests, %d runs" % (what, untouched.requests, done)] + faults), flush=True)
    return len(faults) + (done == 0)


def memory(program, scripts):
    faults = 0
    for script in map(Path, scripts or [TESTS / "scripts" / (name + ".js") for name in SCRIPTS]):
        names = {"script": str(script.resolve()), "root": str(ROOT), "program": program}
        expected = run_script.Expectations(script.read_bytes().decode("latin-1"), names)
        faults += refuse(script.name, program, lambda folder: write_files(folder, expected.files), expected.command(),
                         MEMORY, [ONCE, FROM_THEN_ON], 0 if scripts else 30, memory_offence)
    return faults + sum(refuse(name, program, fill_for_saves, [SAVE % (name, found)], MEMORY, [ONCE, FROM_THEN_ON], 30,
                               memory_offence) for name, found in SAVES.items())


def files(program, _):
    scripts = {name: SAVE % (name, found) for name, found in SAVES.items()}
    scripts |= {name: "WScript.Echo(TBSys.%s)" % call for name, call in WRITERS.items()}
    return sum(refuse(name, program, fill_for_saves, [script], FILES, [ONCE, FROM_THEN_ON, KILL], 0, files_offence)
               for name, script in scripts.items())


def disk(program, _):
    unshare = ["unshare", "--mount"] + ["--map-root-user"] * (os.getuid() != 0)
    if "QUORVANE_MAY_MOUNT" not in os.environ:
        if subprocess.run(unshare + ["true"], check=False).returncode != 0:
            sys.exit(77)
        os.execvpe("unshare", unshare + [sys.executable] + sys.argv, dict(os.environ, QUORVANE_MAY_MOUNT="1"))
    large = FIRMWARE + bytes(40000)
    faults = 0
    with tempfile.TemporaryDirectory(prefix="quorvane-") as name:
        source, folder = Path(name, "source"), Path(name, "disk")
        source.write_bytes(large)
        folder.mkdir()
        for call, status, message, changed in (
                ("ElfFile.save('old.elf')", 1, "error: write read old.elf\n", set()),
                ("ElfFile.save('short.elf')", 1, "error: write read short.elf\n", set()),
                ("ElfFile.save('new.elf')", 1, "error: write read new.elf\n", set()),
                ("ElfFile.save('linked.elf')", 0, "", {"linked.elf", "linked-too.elf"}),
                ("WScript.Echo(TBSys.copyFile('%s', 'copy'))" % source, 0, "", {"copy"}),
                ("TBSys.writeByteArrayToFile('bytes', TBSys.readByteArrayFromFile('%s'))" % source, 0, "", {"bytes"})):
            subprocess.run(["mount", "-t", "tmpfs", "-o", "size=64k", "none", folder], check=True)
            for image, bytes_before in (("old", FIRMWARE), ("linked", bytes(len(large))), ("short", FIRMWARE)):
                (folder / (image + ".elf")).write_bytes(bytes_before)
                if image != "old":
                    os.link(folder / (image + ".elf"), folder / (image + "-too.elf"))
            run = Run(folder, [program, "ElfFile.load('%s'); %s" % (source, call)])
            subprocess.run(["umount", folder], check=True)
            differs = {name for name in run.files if run.before.get(name) != run.files[name]}
            fits = run.files["linked.elf"][0] in (large, bytes(len(large))) and run.out in (b"", b"false")
            if not fits or (run.status, run.err, differs) != (status, message, changed):
                faults += 1
                print("%s: status %d, %r, %r, changes %s" % (call, run.status, run.out, run.err, sorted(differs)))
    return faults


if __name__ == "__main__":
    check = {"memory": memory, "files": files, "disk": disk}[sys.argv[1]]
    sys.exit(1 if check(os.path.abspath(sys.argv[2]), sys.argv[3:]) else 0)

#!/usr/bin/env python3
"""A disk of 64 KiB that fills up: the old image stands, and nothing is left over.

usage: check_full_disk.py PROGRAM

Mounts a file system of its own in a namespace of its own; status 77 (skipped) where that isn't allowed.
"""
import os
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

FIRMWARE = Path(__file__).resolve().parents[2] / "examples/firmware/firmware.elf"
ALLOWED = "QUORVANE_MAY_MOUNT"

# What runs in the full folder, what it prints on stderr, and the files that may be another one afterwards.
CASES = [
    ("save over an image", "ElfFile.load('%s'); ElfFile.pokeUint32(0x08000C00, 7); ElfFile.save('old.elf');",
     "error: write read old.elf\n", ()),
    ("save to a new file", "ElfFile.load('%s'); ElfFile.save('new.elf');", "error: write read new.elf\n", ()),
    ("copyFile", "WScript.Echo(TBSys.copyFile('%s', 'copy'));", "", ("copy",)),
    ("writeStringToFile", "TBSys.writeStringToFile('text', TBSys.readStringFromFile('%s'));", "", ("text",)),
    ("writeByteArrayToFile", "TBSys.writeByteArrayToFile('bytes', TBSys.readByteArrayFromFile('%s'));", "",
     ("bytes",)),
]


def check(program, folder, source):
    faults = 0
    for what, script, message, touched in CASES:
        old = (folder / "old.elf").read_bytes()
        result = subprocess.run([program, script % source], cwd=folder, stdin=subprocess.DEVNULL, timeout=60,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
        names = sorted(path.name for path in folder.iterdir())
        expected = sorted(("filler", "old.elf") + touched)
        if (result.returncode, result.stderr.decode()) != (1 if message else 0, message) or names != expected \
                or (folder / "old.elf").read_bytes() != old or result.stdout not in (b"", b"false"):
            faults += 1
            print("%s: status %d, %r, %r, files %s" % (what, result.returncode, result.stdout, result.stderr, names))
        for name in touched:
            (folder / name).unlink(missing_ok=True)
    return faults


def main():
    program = Path(sys.argv[1]).resolve()
    if ALLOWED not in os.environ:
        command = ["unshare", "--mount", "--map-root-user"]
        if not shutil.which("unshare") or subprocess.run(command + ["true"], check=False).returncode != 0:
            sys.exit(77)
        sys.exit(subprocess.run(command + [sys.executable, __file__, program], check=False,
                                env=dict(os.environ, **{ALLOWED: "1"})).returncode)
    with tempfile.TemporaryDirectory(prefix="quorvane-") as name:
        source = Path(name) / "source.elf"
        source.write_bytes(FIRMWARE.read_bytes() + bytes(40000))
        disk = Path(name) / "disk"
        disk.mkdir()
        if subprocess.run(["mount", "-t", "tmpfs", "-o", "size=64k", "none", disk], check=False).returncode != 0:
            sys.exit(77)
        try:
            (disk / "old.elf").write_bytes(FIRMWARE.read_bytes())
            (disk / "filler").write_bytes(bytes(20000))
            faults = check(program, disk, source)
        finally:
            subprocess.run(["umount", disk], check=True)
    print("%d cases, %d faults" % (len(CASES), faults))
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()

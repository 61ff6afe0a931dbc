#!/usr/bin/env python3
"""Runs scripts in less and less address space: each ends as it should or with a message, never by a signal.

usage: check_address_space.py PROGRAM

Status 77 (skipped) where the program cannot run in a bounded address space at all, as under a sanitizer.
"""
import re
import resource
import subprocess
import sys
import tempfile
from pathlib import Path

MIB = 1 << 20
FIRMWARE = Path(__file__).resolve().parents[2] / "examples/firmware/firmware.elf"
# Each wants a good many MiB in a way of its own, and prints "done".
SCRIPTS = {
    "a text that doubles": "var s = 'x'; for (var i = 0; i < 23; ++i) s += s; s.charAt(0);",
    "a long array": "var a = []; for (var i = 0; i < 600000; ++i) a[i] = i;",
    "objects": "var o = {}; for (var i = 0; i < 100000; ++i) o = {next: o, value: 'n' + i};",
    "closures": "function f(n) { return function () { return n; }; } var a = [];"
                "for (var i = 0; i < 60000; ++i) a[i] = f(i);",
    "compilations": "for (var i = 0; i < 800; ++i) eval('var v' + i + ' = function (a) { return a + i; }');",
    "a sorted array": "var a = []; for (var i = 0; i < 100000; ++i) a[i] = 'k' + (i * 7919 % 100000); a.sort();",
    "an image": "ElfFile.load('%s'); ElfFile.peekBytes(0, 6000000, true, 1); ElfFile.save('out.elf');" % FIRMWARE,
    "files": "var a = []; a[3000000] = 1; TBSys.writeByteArrayToFile('f', a);"
             "TBSys.readStringFromFile('f').length; TBSys.copyFile('f', 'g'); TBSys.readByteArrayFromFile('g');",
}


def main():
    program = Path(sys.argv[1]).resolve()
    faults = runs = ended = 0

    def run(script, limit):
        return subprocess.run([program, script + " WScript.Echo('done');"], cwd=folder, check=False, timeout=120,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                              preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (limit, limit)))

    with tempfile.TemporaryDirectory(prefix="quorvane-") as folder:
        if run("1;", 1000 * MIB).stdout != b"done":
            print("does not run in a bounded address space")
            sys.exit(77)
        # Below `least` the loader or the libraries don't come as far as the program.
        least = 1
        while run("1;", least * MIB).stdout != b"done":
            least += 1
        for what, script in SCRIPTS.items():
            limit = least
            while True:
                outcome = run(script, limit * MIB)
                runs += 1
                message = outcome.stderr.decode("latin-1")
                if (outcome.returncode, outcome.stdout, message) == (0, b"done", ""):
                    break
                ended += 1
                in_order = re.fullmatch("error: (line 1: )?out of memory\n", message)
                if outcome.returncode != 1 or outcome.stdout or not in_order or limit > 2000:
                    faults += 1
                    print("%s in %d MiB: status %d, %r and %r"
                          % (what, limit, outcome.returncode, outcome.stdout, message))
                if limit > 2000:
                    break
                limit += max(1, limit // 2)
    print("%d runs from %d MiB on, %d ended early, %d faults" % (runs, least, ended, faults))
    sys.exit(1 if faults or not ended else 0)


if __name__ == "__main__":
    main()

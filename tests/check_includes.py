#!/usr/bin/env python3
"""Holds the sources to the rules about includes.

A folder of src/ includes only itself and folders to its left in ORDER, always by "folder/file". The
program has no application object: that would read the command line behind the option parser's back.
"""
import re
import sys
from pathlib import Path

ORDER = ["runtime", "machine", "compiler", "natives", "hostobjects", "elf", "host", "check"]
GENERATED = {"host/release.h"}
FORBIDDEN = {"QCoreApplication", "QtCore/QCoreApplication", "qcoreapplication.h"}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)


def faults(name, folder, text, exists):
    """Gives a message for each include of one file that breaks a rule."""
    for match in INCLUDE.finditer(text):
        quote, target = match.groups()
        place = "%s:%d: " % (name, text.count("\n", 0, match.start(2)) + 1)
        station = target.split("/")[0]
        if target in FORBIDDEN:
            yield place + "no application object: " + target
        elif quote == "<":
            if station in ORDER and "/" in target:
                yield place + "own headers go in double quotes: " + target
        elif "/" not in target or station not in ORDER:
            yield place + 'own headers are included as "folder/file": ' + target
        elif target not in GENERATED and not exists(target):
            yield place + "no such header: " + target
        elif ORDER.index(station) > ORDER.index(folder):
            yield place + "%s must not know %s: %s" % (folder, station, target)


def self_test():
    """A checker that finds nothing proves nothing, so it meets each fault once."""
    cases = [
        ('#include "runtime/value.h"\n#include <QString>\n', 0),
        ('#include "machine/code_block.h"\n', 0),
        ('#include "compiler/lexer.h"\n', 1),
        ('#include "value.h"\n', 1),
        ('#include <runtime/value.h>\n', 1),
        ("\n  # include <QCoreApplication>\n", 1),
        ('#include "runtime/gone.h"\n', 1),
    ]
    for text, expected in cases:
        found = list(faults("case.cpp", "machine", text, lambda target: "gone" not in target))
        assert len(found) == expected, (text, found)


def main():
    self_test()
    source = Path(__file__).resolve().parent.parent / "src"
    files = sorted(p for p in source.rglob("*") if p.suffix in (".h", ".cpp", ".def"))
    found = ["%s: not one of the folders of src/" % p.relative_to(source) for p in files
             if p.relative_to(source).parts[0] not in ORDER]
    for path in files:
        name = path.relative_to(source)
        if name.parts[0] in ORDER:
            found += faults("src/%s" % name, name.parts[0], path.read_text(encoding="utf-8"),
                            lambda target: (source / target).is_file())
    print("\n".join(found) or "%d files, all includes point to the left" % len(files))
    sys.exit(1 if found or not files else 0)


if __name__ == "__main__":
    main()

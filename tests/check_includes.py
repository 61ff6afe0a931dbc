#!/usr/bin/env python3
"""Holds the sources to the rules about includes.

A folder of src/ includes only itself and folders to its left in ORDER, always by "folder/file". The
program has no application object: that would read the command line behind the option parser's back.
"""
import re

from support import ROOT, finish

ORDER = ["system", "elf", "runtime", "machine", "compiler", "natives", "hostobjects", "host", "check"]
ENGINE = ORDER[2:6]  # knows no images, as these know no scripts
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.MULTILINE)


def faults(name, folder, text):
    """Yields a message for each include of one file that breaks a rule."""
    for quote, target in INCLUDE.findall(text):
        station = target.split("/")[0]
        own = "/" in target and station in ORDER
        if "QCoreApplication" in target or "qcoreapplication" in target:
            yield "%s: no application object: %s" % (name, target)
        elif own != (quote == '"'):
            yield '%s: own headers, and they alone, are included as "folder/file": %s' % (name, target)
        elif own and (ORDER.index(station) > ORDER.index(folder) or station == "elf" and folder in ENGINE):
            yield "%s: %s must not know %s: %s" % (name, folder, station, target)


# A check that finds nothing proves nothing, so it meets each fault once.
for sample, count in (('#include "machine/code_block.h"\n#include <QString>\n', 0), ('#include "compiler/lexer.h"\n', 1),
                      ('#include "value.h"\n#include <runtime/value.h>\n  # include <QCoreApplication>\n', 3)):
    assert len(list(faults("sample", "machine", sample))) == count, sample
source = ROOT / "src"
files = [path.relative_to(source) for path in source.rglob("*") if path.suffix in (".h", ".cpp", ".def")]
finish([fault for name in sorted(files) for fault in faults(name, name.parts[0], (source / name).read_text("utf-8"))],
       "%d files, all includes point to the left" % len(files))

#!/usr/bin/env python3
"""Holds the documents to the program.

usage: check_docs.py --program PATH [--show] [DOCUMENT...]

In docs/*.md every block fenced as ```js is a whole script. Behind it stand what it must print on stdout, in a
block fenced as ```text, or on stderr, in one fenced as ```error (exit status 1), or both in this order. Each
script runs as `quorvane -load example.js` in a temporary folder of its own, in which firmware/ holds copies
of the images of examples/firmware and lib/ one of lib/. Words behind ```js that begin with a - stand in front
of the -load. A block fenced as ```js prelude prints nothing and is loaded in front of every later script of
its document. --show prints what the scripts really print.

Besides, every member in a table of the native and host classes must stand in the section of its class, and
docs/instructions.md must be current. scripts/site looks at the links.
"""
import argparse
import collections
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

from support import ROOT, WRAPPER, Run, differences, finish, run, write_files

HEADING = re.compile(r"^(#+) (.*)$")
MEMBER = re.compile(r'\{+"(\w+)", -?\d+, \w+')
TABLE = re.compile(r"\bESMember (\w+)(\[\])? = \{|\bMathMember (\w+)\[\] = \{")
CONSTANTS = re.compile(r"\bConstant constants\[\] = \{(.*?)\n\};", re.DOTALL)
CLASS_NAME = re.compile(r'\bESClass\("(\w+)"\)')
ERROR_CLASS = re.compile(r'ESNativeError\("(\w+)"')


Block = collections.namedtuple("Block", "kind line text adjacent")  # adjacent: but for blank lines to the last one
Example = collections.namedtuple("Example", "line options script prelude expected")


def blocks(text):
    """The fenced blocks of a document."""
    start, adjacent, lines = None, False, text.split("\n")
    for number, line in enumerate(lines, 1):
        if line.startswith("```") and start is None:
            start = number
        elif line == "```":
            yield Block(lines[start - 1][3:].strip(), start, "\n".join(lines[start:number - 1] + [""]), adjacent)
            start, adjacent = None, True
        elif start is None and line.strip():
            adjacent = False
    if start is not None:
        raise ValueError("line %d: this block has no end" % start)


def examples(text):
    """The scripts of a document with what they must print. Raises ValueError for one without."""
    result, prelude, current = [], "", None
    for block in blocks(text):
        if block.kind == "js prelude":
            prelude += block.text
        if block.kind == "js" or block.kind.startswith("js -"):
            current = Example(block.line, shlex.split(block.kind)[1:], block.text, prelude, {})
            result.append(current)
        elif block.kind in ("text", "error") and block.adjacent and current and block.kind not in current.expected:
            current.expected[block.kind] = block.text
        else:
            current = None
    for example in result:
        if not example.expected:
            raise ValueError("line %d: nothing says what this script prints" % example.line)
    return result


def run_example(program, example):
    with tempfile.TemporaryDirectory() as folder:
        write_files(folder, {"example.js": example.script, "prelude.js": example.prelude})
        shutil.copytree(ROOT / "examples/firmware", Path(folder, "firmware"))
        shutil.copytree(ROOT / "lib", Path(folder, "lib"))
        return run(WRAPPER + [program, *example.options, "-load", "prelude.js", "-load", "example.js"], folder,
                   LC_ALL="C")


def example_faults(example, done):
    expected_error = example.expected.get("error", "")
    for what, wanted, found in (("stdout", example.expected.get("text", ""), done.out),
                                ("stderr", expected_error, done.err),
                                ("exit status", 1 if expected_error else 0, done.status)):
        for fault in differences(what, wanted, found):
            yield "line %d: %s" % (example.line, fault)


def sections(text):
    """Pairs of a heading and the text below it, down to the next one of the same level or a higher one."""
    lines = text.split("\n")
    fenced, starts = False, []
    for number, line in enumerate(lines):
        fenced ^= line.startswith("```")
        heading = None if fenced else HEADING.match(line)
        if heading:
            starts.append((number, len(heading[1]), heading[2]))
    for position, (number, level, title) in enumerate(starts):
        end = next((n for n, l, _ in starts[position + 1:] if l <= level), len(lines))
        yield title, "\n".join(lines[number:end])


def registered_members():
    """Pairs of a class name and a member or constant of its tables."""
    for path in sorted((ROOT / "src").glob("*/*.cpp")):
        text, header = path.read_text(encoding="utf-8"), path.with_suffix(".h")
        if not TABLE.search(text):
            continue
        header = header.read_text(encoding="utf-8") if header.exists() else ""
        owner = CLASS_NAME.search(text + header)[1]
        members = MEMBER.findall(text)
        for constants in CONSTANTS.findall(text):
            members += re.findall(r'\{"(\w+)",', constants)
        members = [(owner, member) for member in members] + [(name, name) for name in ERROR_CLASS.findall(header)]
        if not members:
            raise ValueError("%s has a table of members that can't be read" % path.name)
        yield from members


def member_faults(documents, members):
    chapters = [section for document in documents for section in sections(document)]
    for owner, member in members:
        own = [body for title, body in chapters if re.search(r"\b%s\b" % owner, title)]
        if not any(re.search(r"`[^`\n]*\b%s\b[^`\n]*`" % member, body) for body in own):
            yield "no section about %s tells of `%s`" % (owner, member)


def faults(program, pages, show):
    for page in pages:
        for example in examples(page.read_text(encoding="utf-8")):
            done = run_example(program, example)
            if show:
                print("--- line %d\n%s%s" % (example.line, done.out, done.err), end="")
            for fault in example_faults(example, done):
                yield "%s: %s" % (page.name, fault)


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("--program", required=True, type=Path)
    parser.add_argument("--show", action="store_true")
    parser.add_argument("documents", nargs="*", type=Path)
    options = parser.parse_args()
    pages = sorted((ROOT / "docs").glob("*.md"))
    found = list(faults(options.program.resolve(), options.documents or pages, options.show))
    if not options.documents:
        members = list(registered_members())
        assert len(members) > 100, members
        found += member_faults([page.read_text(encoding="utf-8") for page in pages], members)
        current = subprocess.run([sys.executable, ROOT / "scripts/gen-instructions", "--check"], stderr=subprocess.PIPE,
                                 text=True)
        found += [current.stderr.strip()] if current.returncode != 0 else []
    finish(found, "the examples print what the documents say")


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
"""Holds the documents to the program.

usage: check_docs.py --program PATH [--show] [DOCUMENT...]

In docs/*.md every block fenced as ```js is a whole script. Behind it stand what it must print on stdout, in a
block fenced as ```text, or on stderr, in one fenced as ```error (exit status 1), or both in this order. Each
script runs as `quorvane -load example.js` in a temporary folder of its own, in which firmware/ holds copies
of the images of examples/firmware and lib/ one of lib/. Words behind ```js that begin with a - stand in front
of the -load. A block fenced as ```js prelude prints nothing and is loaded in front of every later script of
its document. --show prints what the scripts really print.

Besides, every member in a table of the native and host classes must stand in the section of its class, the
relative links of README.md and docs/*.md must lead somewhere, and docs/instructions.md must be current.
"""
import argparse
import os
import re
import shlex
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
FENCE = re.compile(r"^```(.*)$")
HEADING = re.compile(r"^(#+) (.*)$")
LINK = re.compile(r"\]\(([^)\s]+)\)")
MEMBER = re.compile(r'\{+"(\w+)", -?\d+, \w+')
TABLE = re.compile(r"\bESMember (\w+)(\[\])? = \{|\bMathMember (\w+)\[\] = \{")
CONSTANTS = re.compile(r"\bConstant constants\[\] = \{(.*?)\n\};", re.DOTALL)
CLASS_NAME = re.compile(r'\bESClass\("(\w+)"\)')
ERROR_CLASS = re.compile(r'ESNativeError\("(\w+)"')


class Block:
    def __init__(self, kind, line):
        self.kind, self.line, self.lines = kind, line, []

    def text(self):
        return "".join(line + "\n" for line in self.lines)


def blocks(text):
    """The fenced blocks of a document, each with whether nothing but blank lines parts it from the last."""
    result, block, adjacent = [], None, False
    for number, line in enumerate(text.split("\n"), 1):
        fence = FENCE.match(line)
        if block is not None:
            if fence and not fence[1]:
                result.append((block, adjacent))
                block, adjacent = None, True
            else:
                block.lines.append(line)
        elif fence:
            block = Block(fence[1].strip(), number)
        elif line.strip():
            adjacent = False
    if block is not None:
        raise ValueError("line %d: this block has no end" % block.line)
    return result


class Example:
    def __init__(self, script, prelude):
        self.script, self.prelude, self.expected = script, prelude, {}


def examples(text):
    """The scripts of a document with what they must print. Raises ValueError for one without."""
    result, prelude, current = [], "", None
    for block, adjacent in blocks(text):
        if block.kind == "js prelude":
            prelude += block.text()
            current = None
        elif block.kind == "js" or block.kind.startswith("js -"):
            current = Example(block, prelude)
            result.append(current)
        elif block.kind in ("text", "error") and adjacent and current is not None:
            if block.kind in current.expected:
                raise ValueError("line %d: the script has its %s already" % (block.line, block.kind))
            current.expected[block.kind] = block.text()
        else:
            current = None
    for example in result:
        if not example.expected:
            raise ValueError("line %d: nothing says what this script prints" % example.script.line)
    return result


def run(program, example):
    """Stdout, stderr and exit status of an example."""
    with tempfile.TemporaryDirectory() as name:
        folder = Path(name)
        (folder / "firmware").mkdir()
        for image in (ROOT / "examples/firmware").glob("*.elf"):
            shutil.copy(image, folder / "firmware")
        shutil.copytree(ROOT / "lib", folder / "lib")
        (folder / "example.js").write_bytes(example.script.text().encode("latin-1"))
        command = shlex.split(os.environ.get("QUORVANE_WRAPPER", "")) + [program]
        command += shlex.split(example.script.kind)[1:]
        if example.prelude:
            (folder / "prelude.js").write_bytes(example.prelude.encode("latin-1"))
            command += ["-load", "prelude.js"]
        done = subprocess.run(command + ["-load", "example.js"], cwd=folder, stdin=subprocess.DEVNULL,
                              capture_output=True, timeout=60, env=dict(os.environ, TZ="UTC", LC_ALL="C"))
    return done.stdout.decode("latin-1"), done.stderr.decode("latin-1"), done.returncode


def example_faults(example, actual):
    out, error, status = actual
    expected_error = example.expected.get("error", "")
    for what, wanted, found in (("stdout", example.expected.get("text", ""), out),
                                ("stderr", expected_error, error),
                                ("exit status", 1 if expected_error else 0, status)):
        if wanted != found:
            yield "line %d: %s is\n%s\nnot\n%s" % (example.script.line, what, found, wanted)


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
    found = []
    sources = []
    for folder in ("natives", "hostobjects", "elf"):
        sources += sorted((ROOT / "src" / folder).glob("*.cpp"))
    for path in sources:
        text = path.read_text(encoding="utf-8")
        header = path.with_suffix(".h")
        if not TABLE.search(text):
            continue
        names = CLASS_NAME.findall(text) or CLASS_NAME.findall(header.read_text(encoding="utf-8"))
        members = [(names[0], member) for member in MEMBER.findall(text)]
        members += [(name, name) for name in ERROR_CLASS.findall(header.read_text(encoding="utf-8"))]
        for constants in CONSTANTS.findall(text):
            members += [(names[0], name) for name in re.findall(r'\{"(\w+)",', constants)]
        if not members:
            raise ValueError("%s has a table of members that can't be read" % path.name)
        found += members
    return found


def member_faults(documents, members):
    chapters = [section for document in documents for section in sections(document)]
    for owner, member in members:
        own = [body for title, body in chapters if re.search(r"\b%s\b" % owner, title)]
        if not any(re.search(r"`[^`\n]*\b%s\b[^`\n]*`" % member, body) for body in own):
            yield "no section about %s tells of `%s`" % (owner, member)


def anchors(text):
    for title, _ in sections(text):
        yield re.sub(r"[^\w\- ]", "", title.lower()).replace(" ", "-")


def link_faults(path):
    text = path.read_text(encoding="utf-8")
    prose = re.sub(r"^```.*?^```$", "", text, flags=re.DOTALL | re.MULTILINE)
    prose = re.sub(r"`[^`\n]*`", "", prose)
    for target in LINK.findall(prose):
        if re.match(r"\w+:", target):
            continue
        file, _, anchor = target.partition("#")
        found = (path.parent / file).resolve() if file else path
        if not found.exists():
            yield "%s: link to nothing: %s" % (path.name, target)
        elif anchor and anchor not in anchors(found.read_text(encoding="utf-8")):
            yield "%s: no such heading: %s" % (path.name, target)


def self_test():
    """A checker that finds nothing proves nothing, so it meets each fault once."""
    fence = "```"
    document = "## Box\n`put`\n\n{0}js prelude\nx\n{0}\n\n{0}js\ny\n{0}\n\n{0}text\nz\n{0}\n".format(fence)
    example, = examples(document)
    assert example.prelude == "x\n" and example.script.text() == "y\n"
    assert not list(example_faults(example, ("z\n", "", 0)))
    assert list(example_faults(example, ("z", "", 0)))
    assert len(list(example_faults(example, ("z\n", "error: e\n", 1)))) == 2
    for broken in (document.replace("text", "sh"), document + fence + "js\n",
                   document.replace("\n\n%stext" % fence, "\nso\n%stext" % fence)):
        try:
            examples(broken)
        except ValueError:
            continue
        raise AssertionError("accepted: " + broken)
    assert not list(member_faults([document], [("Box", "put")]))
    assert list(member_faults([document], [("Box", "take")]))
    assert list(member_faults([document], [("Bag", "put")]))


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument("--program", required=True)
    parser.add_argument("--show", action="store_true")
    parser.add_argument("documents", nargs="*", type=Path)
    options = parser.parse_args()
    self_test()

    program = str(Path(options.program).resolve())
    pages = sorted((ROOT / "docs").glob("*.md"))
    found, count = [], 0
    for page in options.documents or pages:
        try:
            for example in examples(page.read_text(encoding="utf-8")):
                actual = run(program, example)
                count += 1
                if options.show:
                    print("--- line %d\n%s%s" % (example.script.line, *actual[:2]), end="")
                found += ["%s: %s" % (page.name, fault) for fault in example_faults(example, actual)]
        except (ValueError, subprocess.TimeoutExpired) as fault:
            found.append("%s: %s" % (page.name, fault))
    if not options.documents:
        members = registered_members()
        found += member_faults([page.read_text(encoding="utf-8") for page in pages], members)
        for page in [ROOT / "README.md", *pages]:
            found += link_faults(page)
        generator = subprocess.run([sys.executable, ROOT / "scripts/gen-instructions", "--check"],
                                   capture_output=True, text=True)
        if generator.returncode != 0:
            found.append(generator.stderr.strip())
        if not members or not count:
            found.append("nothing to check")
    print("\n".join(found) or "%d examples print what the documents say" % count)
    sys.exit(1 if found else 0)


if __name__ == "__main__":
    main()

"""The declarations of the language hold for the scripts of the house, and report what the dialect lacks.

usage: check_typescript.py SOURCE_FOLDER

Skipped (status 77) where there is no tsc on PATH: it comes with npm's package typescript.
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

LACKING = [
    '"a,b".split(",")', '"a".replace("a", "b")', '"a".match("a")', '"a".trim()', 'parseInt("1")', 'parseFloat("1")',
    'JSON', '[1].map', '[1].splice', '[1].unshift(1)', '[1].indexOf(1)', 'Date.parse', 'Date.now()',
    '(function () {}).call', '(1).toPrecision(3)', 'Object.keys', 'Math.trunc(1)', 'console', 'require("fs")',
    'ElfFile.symbols()', 'ElfFile.load()', 'TBSys.exec("ls")', 'WScript.Quit(1)', 'ElfFile.pokeUint32("0", 1)',
]
# The call that ends a run on purpose, since there is no such function.
ENDS_A_RUN = {"stopHere"}


def check(tsc, folder):
    """What the checker reports, as file name, line, code and text."""
    run = subprocess.run([tsc, "-p", "jsconfig.json", "--pretty", "false"], cwd=folder, text=True,
                         stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=100)
    reports = re.findall(r"^(\S+?)\((\d+),\d+\): error (TS\d+): (.*)$", run.stdout, flags=re.M)
    if run.returncode != 0 and not reports:
        sys.exit("FAILED: the checker does not run:\n" + run.stdout)
    return [(name, int(line), code, text) for name, line, code, text in reports]


def documented(script):
    """The words of the comment that a script begins with: it tells which variables have to be defined."""
    head = re.match(r"(?://[^\n]*\n)*", script.read_text(encoding="latin-1")).group()
    return set(re.findall(r"\w+", head))


def main():
    source = pathlib.Path(sys.argv[1])
    tsc = shutil.which("tsc")
    if not tsc:
        print("skipped: there is no tsc on PATH (npm install --global typescript)")
        sys.exit(77)

    failures = []
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for pattern in ("types/*", "lib/*.js", "examples/*.js"):
            for path in source.glob(pattern):
                target = folder / (path.name if pattern == "types/*" else path.relative_to(source))
                target.parent.mkdir(exist_ok=True)
                shutil.copy(path, target)
        (folder / "lacking.js").write_text("\n".join(f"void {text};" for text in LACKING) + "\n")

        reported = set()
        for file, line, code, text in check(tsc, folder):
            unknown = re.match(r"Cannot find name '(\w+)'", text)
            if file == "lacking.js":
                reported.add(line)
            elif not (unknown and file.startswith("examples/")
                      and unknown.group(1) in documented(folder / file) | ENDS_A_RUN):
                failures.append(f"{file}:{line}: {code} {text}")
        failures += [f"{text} is not reported" for line, text in enumerate(LACKING, 1) if line not in reported]

    print("\n".join(failures))
    sys.exit(1 if failures else 0)


if __name__ == "__main__":
    main()

"""The declarations of types/quorvane.d.ts are what the program has, hold for the scripts of the house, and make the
TypeScript checker report what the dialect lacks.

usage: check_types.py QUORVANE SOURCE_FOLDER
"""
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

# Members that exist and return undefined whatever they are given. They are left out on purpose.
EMPTY = {"String": {"match", "replace", "search", "split"}, "this": {"parseInt", "parseFloat"}}
# Where the members of an interface are found; constructors are checked by their statics.
PLACES = {
    "QuorvaneElfFile": "ElfFile", "QuorvaneWScript": "WScript", "QuorvaneTBSys": "TBSys", "Math": "Math", "this": "this",
    **{name: name + ".prototype" for name in
       ("Object", "Function", "Array", "String", "Boolean", "Number", "Date", "Error")},
    **{name + "Constructor": name for name in ("String", "Number", "Date", "Object", "Array")},
}
# Properties of single objects, not of the prototype.
OWN = {"Array": {"length"}, "String": {"length"}, "Function": {"prototype"}}
LACKING = [
    '"a,b".split(",")', '"a".replace("a", "b")', '"a".match("a")', '"a".trim()', 'parseInt("1")', 'parseFloat("1")',
    'JSON', '[1].map', '[1].splice', '[1].unshift(1)', '[1].indexOf(1)', 'Date.parse', 'Date.now()',
    '(function () {}).call', '(1).toPrecision(3)', 'Object.keys', 'Math.trunc(1)', 'console', 'require("fs")',
    'ElfFile.symbols()', 'ElfFile.load()', 'TBSys.exec("ls")', 'WScript.Quit(1)', 'ElfFile.pokeUint32("0", 1)',
]


def declared(text):
    """The names of the members of each interface, and of the global functions and variables under "this"."""
    text = re.sub(r"/\*.*?\*/|//[^\n]*", "", text, flags=re.S)
    members = {"this": set(re.findall(r"^declare (?:var|function) (\w+)", text, flags=re.M))}
    for name, body in re.findall(r"^interface (\w+)(?:<\w+>)? \{(.*?)^\}", text, flags=re.S | re.M):
        members[name] = set(re.findall(r"^\s+(?:readonly )?(?!new\b)(\w+)\s*[(:]", body, flags=re.M))
    return members


def member_faults(program, members):
    def asked(script):
        return set(subprocess.run([program, script], text=True, encoding="latin-1", check=True,
                                  stdout=subprocess.PIPE).stdout.split())

    for interface, place in PLACES.items():
        names = members[interface] - OWN.get(interface, set()) - {"prototype"}
        for name in asked("".join("if (!%s.hasOwnProperty('%s')) WScript.Echo('%s ');" % (place, name, name)
                                  for name in names)):
            yield "%s.%s is declared and does not exist" % (interface, name)
        # What `for in` shows; what is hidden is asked for by name only, as above. The variable is the script's own.
        shown = asked("for (var key in %s) if (%s.hasOwnProperty(key)) WScript.Echo(key + ' ');" % (place, place))
        for name in shown - names - EMPTY.get(interface, set()) - {"constructor", "prototype", "length", "key"}:
            yield "%s.%s exists and is not declared" % (place, name)


def script_faults(source, folder):
    """By tsc: what it reports of the scripts of the house, and what it does not of those that lack something."""
    for pattern in ("types/*", "lib/*.js", "examples/*.js"):
        for path in source.glob(pattern):
            target = folder / (path.name if pattern == "types/*" else path.relative_to(source))
            target.parent.mkdir(exist_ok=True)
            shutil.copy(path, target)
    (folder / "lacking.js").write_text("\n".join("void %s;" % text for text in LACKING) + "\n")
    out = subprocess.run(["tsc", "-p", "jsconfig.json", "--pretty", "false"], cwd=folder, text=True,
                         stdout=subprocess.PIPE).stdout
    missed = set(range(1, len(LACKING) + 1))
    for file, line, text in re.findall(r"^(\S+?)\((\d+),\d+\): error (.*)$", out, flags=re.M):
        unknown = re.search(r"Cannot find name '(\w+)'", text)
        # A script's first comment names the variables that have to be defined; stopHere() ends a run on purpose.
        head = re.match(r"(?://[^\n]*\n)*", (folder / file).read_text(encoding="latin-1"))[0] + "stopHere"
        if file == "lacking.js":
            missed.discard(int(line))
        elif not (unknown and file.startswith("examples/") and re.search(r"\b%s\b" % unknown[1], head)):
            yield "%s:%s: %s" % (file, line, text)
    for line in missed:
        yield LACKING[line - 1] + " is not reported"


def main():
    program, source = sys.argv[1], Path(sys.argv[2])
    with tempfile.TemporaryDirectory() as folder:
        faults = [*member_faults(program, declared((source / "types/quorvane.d.ts").read_text(encoding="utf-8"))),
                  *script_faults(source, Path(folder))]
    print("\n".join(faults))
    sys.exit(1 if faults else 0)


main()

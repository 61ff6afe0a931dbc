"""The declarations of types/quorvane.d.ts are what the program has: nothing missing, nothing offered in vain.

usage: check_types.py QUORVANE DECLARATIONS
"""

import pathlib
import re
import subprocess
import sys

# Members that exist and return undefined whatever they are given. They are left out on purpose.
EMPTY = {"String": {"match", "replace", "search", "split"}, "Global": {"parseInt", "parseFloat"}}
# Where the members of an interface are found; constructors are checked by their statics.
PLACES = {
    "QuorvaneElfFile": "ElfFile", "QuorvaneWScript": "WScript", "QuorvaneTBSys": "TBSys", "Math": "Math",
    **{name: name + ".prototype" for name in
       ("Object", "Function", "Array", "String", "Boolean", "Number", "Date", "Error")},
    "StringConstructor": "String", "NumberConstructor": "Number", "DateConstructor": "Date",
    "ObjectConstructor": "Object", "ArrayConstructor": "Array",
}
# Properties of single objects, not of the prototype.
OWN = {"Array": {"length"}, "String": {"length"}, "Function": {"prototype"}}


def declared(text):
    """The names of the members of each interface, and of the global functions and variables under Global."""
    text = re.sub(r"/\*.*?\*/|//[^\n]*", "", text, flags=re.S)
    members = {}
    for name, body in re.findall(r"^interface (\w+)(?:<\w+>)? \{(.*?)^\}", text, flags=re.S | re.M):
        members[name] = set(re.findall(r"^\s+(?:readonly )?(?!new\b)(\w+)\s*[(:]", body, flags=re.M))
    members["Global"] = set(re.findall(r"^declare (?:var|function) (\w+)", text, flags=re.M))
    return members


def run(program, script):
    return subprocess.run([program, script], text=True, encoding="latin-1", timeout=20, check=True,
                          stdout=subprocess.PIPE).stdout.split()


def shown(program, place):
    """What `for in` shows of the object's own members. Those that are hidden are asked for by name only."""
    return set(run(program, f"var name; for (name in {place}) {{ if ({place}.hasOwnProperty(name)) "
                            "{ WScript.Echo(name + '\\n'); } }"))


def missing(program, place, names):
    checks = "".join(f"if (!{place}.hasOwnProperty('{name}')) {{ WScript.Echo('{name}\\n'); }}"
                     for name in sorted(names))
    return run(program, checks) if checks else []


def main():
    program, declarations = sys.argv[1:]
    members = declared(pathlib.Path(declarations).read_text(encoding="utf-8"))
    failures = []
    for interface, place in PLACES.items():
        names = members[interface] - OWN.get(interface, set()) - {"prototype"}
        failures += [f"{interface}.{name} is declared and does not exist" for name in missing(program, place, names)]
        hidden = shown(program, place) - names - EMPTY.get(interface, set()) - {"constructor", "prototype", "length"}
        failures += [f"{place}.{name} exists and is not declared" for name in sorted(hidden)]

    # The object of the global scope is `this` of a program; its helper variable is the script's own.
    names = members["Global"]
    failures += [f"{name} is declared and does not exist" for name in missing(program, "this", names)]
    hidden = shown(program, "this") - names - EMPTY["Global"] - {"name"}
    failures += [f"{name} exists and is not declared" for name in sorted(hidden)]

    if len(members["QuorvaneElfFile"]) != 8 or "trim" in members["String"] or "sort" not in members["Array"]:
        failures.append("this check does not read the declarations as it should")
    print("\n".join(failures))
    sys.exit(1 if failures else 0)


if __name__ == "__main__":
    main()

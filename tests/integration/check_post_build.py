"""The step of quorvane in a build: it runs when something that it depends on has changed, and only then.

usage: check_post_build.py --tool ninja|unix-makefiles|make --quorvane PROGRAM [--package FOLDER] [--fragment FILE]

Copies the project beside this file into a temporary folder, builds it with CMake (against the package in
FOLDER) or with its Makefile (with the make fragment FILE), and changes one thing after another.
"""

import argparse
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time

HERE = pathlib.Path(__file__).resolve().parent
IMAGE = HERE.parent.parent / "examples/firmware/firmware.elf"
GENERATORS = {"ninja": "Ninja", "unix-makefiles": "Unix Makefiles"}
RAN = "say: version"


def expect(condition, what, output=""):
    if not condition:
        sys.exit(f"FAILED: {what}\n{output}")


class Project:
    """The project in a folder of its own, whose name has a blank where the tool allows one."""

    def __init__(self, arguments, folder):
        self.arguments = arguments
        self.by_make = arguments.tool == "make"
        self.source = folder / ("project" if self.by_make else "the project")
        self.build = self.source if self.by_make else folder / "the build"
        shutil.copytree(HERE / "post_build", self.source)
        shutil.copy(IMAGE, self.source / "linked.elf")
        self.image = self.build / "firmware.elf"
        self.output = self.build / "stamped.elf"
        self.definitions = {"VERSION": "1", "SLOT": ""}

    def command(self, words):
        environment = {**os.environ, "LC_ALL": "C"}
        environment.pop("MAKEFLAGS", None)
        environment.pop("MAKELEVEL", None)
        run = subprocess.run(words, cwd=self.source, env=environment, text=True, timeout=120,
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        return run.returncode, run.stdout

    def make(self, **definitions):
        """Builds with these definitions; gives the exit status and what was printed."""
        self.definitions.update(definitions)
        words = [f"{name}={value}" for name, value in self.definitions.items()]
        if self.by_make:
            return self.command(["make", "-j2", f"QUORVANE={self.arguments.quorvane}",
                                 f"QUORVANE_MK={self.arguments.fragment}", *words])
        if definitions or not self.build.exists():
            status, output = self.command(
                ["cmake", "-S", ".", "-B", self.build, "-G", GENERATORS[self.arguments.tool],
                 f"-DQuorvane_DIR={self.arguments.package}", *(f"-D{word}" for word in words)])
            if status != 0:
                return status, output
        return self.command(["cmake", "--build", self.build, "--parallel", "2"])

    def touch(self, name):
        """Makes a source file newer than everything that has been built."""
        time.sleep(0.05)
        os.utime(self.source / name)

    def version(self):
        """The version word of the output, found by where it differs from the linker's image."""
        if not self.output.exists():
            return "no output"
        old, new = self.image.read_bytes(), self.output.read_bytes()
        changed = [at for at in range(0, len(old), 4) if old[at:at + 4] != new[at:at + 4]]
        if len(changed) != 1:
            return f"{len(changed)} words changed"
        return int.from_bytes(new[changed[0]:changed[0] + 4], "little")


def check_rebuilds(project):
    status, output = project.make()
    expect(status == 0 and RAN in output, "the first build runs the script", output)
    expect(project.version() == 1, "the version is in the copy", output)
    expect(project.image.exists() and project.image.read_bytes() == IMAGE.read_bytes(),
           "the linker's image is untouched", output)

    status, output = project.make()
    expect(status == 0 and RAN not in output, "a second build runs nothing", output)

    status, output = project.make(VERSION="7")
    expect(status == 0 and project.version() == 7, "another definition runs the script", output)
    status, output = project.make(VERSION="7")
    expect(status == 0 and RAN not in output, "the same definition runs nothing", output)

    for name, path in {"script": "stamp.js", "library": "tools/say.js", "image": "linked.elf"}.items():
        project.touch(path)
        status, output = project.make()
        expect(status == 0 and RAN in output, f"a newer {name} runs the script", output)
        status, output = project.make()
        expect(status == 0 and RAN not in output, f"then a newer {name} runs nothing more", output)


def check_failures(project):
    for slot, text in {"broken": "error: line", "unsaved": "has not saved its output"}.items():
        status, output = project.make(SLOT=slot)
        expect(status != 0 and text in output, f"a script that is {slot} fails the build", output)
        expect(not project.output.exists(), f"a script that is {slot} leaves no image", output)
        status, output = project.make()
        expect(status != 0 and RAN in output, f"a script that is {slot} runs again", output)
    status, output = project.make(SLOT="a")
    expect(status == 0 and "slot [a]" in output, "the build recovers", output)

    if not project.by_make:
        status, output = project.make(SLOT="two words; one $value")
        expect(status == 0 and "slot [two words; one $value]" in output, "a value arrives as written", output)


def check_refusals(project):
    refusals = [({"SLOT": "a=b"}, 'has a second "="')]
    if project.by_make:
        refusals += [({"SLOT": "a b"}, '"b" is not of the form name=value')]
    else:
        refusals += [({"SLOT": "", "EXTRA": extra}, text) for extra, text in (
            ("DEFINE;plain", '"plain" is not of the form name=value'),
            ("DEFINE;output=there.elf", "define input and output"),
            ("LIBRARY;nowhere", "there is no LIBRARY nowhere"))]
    for definitions, text in refusals:
        status, output = project.make(**definitions)
        expect(status != 0 and text in " ".join(output.split()), f"{definitions} is refused", output)
        expect(RAN not in output, f"{definitions} is refused before anything runs", output)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--tool", required=True, choices=[*GENERATORS, "make"])
    parser.add_argument("--quorvane", required=True)
    parser.add_argument("--package")
    parser.add_argument("--fragment")
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as folder:
        project = Project(arguments, pathlib.Path(folder))
        check_rebuilds(project)
        check_failures(project)
        check_refusals(project)


if __name__ == "__main__":
    main()

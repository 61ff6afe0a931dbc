"""The step of quorvane in a build: it runs when something that it depends on has changed, and only then.

usage: check_post_build.py ninja|unix-makefiles|make QUORVANE PACKAGE

Copies the project beside this file into a temporary folder, builds it with CMake (PACKAGE is the folder of the
package) or with its Makefile (PACKAGE is the make fragment), and changes one thing after another.
"""
import os
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

HERE = Path(__file__).resolve().parent
IMAGE = HERE.parents[1] / "examples/firmware/firmware.elf"
TOOL, QUORVANE, PACKAGE = sys.argv[1:]
BY_MAKE = TOOL == "make"
GENERATOR = {"ninja": "Ninja", "unix-makefiles": "Unix Makefiles"}.get(TOOL)
RAN = "say: version"


class Project:
    """The project in a folder of its own, whose name has a blank where the tool allows one."""

    def __init__(self, folder):
        self.source = folder / ("project" if BY_MAKE else "the project")
        self.build = self.source if BY_MAKE else folder / "the build"
        shutil.copytree(HERE / "post_build", self.source)
        shutil.copy(IMAGE, self.source / "linked.elf")
        self.definitions = {"VERSION": "1", "SLOT": ""}

    def command(self, *words):
        environment = {name: value for name, value in os.environ.items() if not name.startswith("MAKE")}
        run = subprocess.run(words, cwd=self.source, env=environment | {"LC_ALL": "C"}, text=True,
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        return run.returncode, run.stdout

    def make(self, **definitions):
        self.definitions.update(definitions)
        words = ["%s=%s" % item for item in self.definitions.items()]
        if BY_MAKE:
            return self.command("make", "-j2", "QUORVANE=" + QUORVANE, "QUORVANE_MK=" + PACKAGE, *words)
        if definitions or not self.build.exists():
            status, output = self.command("cmake", "-S", ".", "-B", self.build, "-G", GENERATOR,
                                          "-DQuorvane_DIR=" + PACKAGE, *("-D" + word for word in words))
            if status != 0:
                return status, output
        return self.command("cmake", "--build", self.build, "--parallel", "2")

    def expect(self, what, runs, fails="", prints="", **definitions):
        """Builds with these definitions. The script runs or doesn't; the build is good, or fails with a text."""
        status, output = self.make(**definitions)
        text = " ".join(output.split())
        if (RAN in text, status != 0) != (runs, bool(fails)) or fails not in text or prints not in text:
            sys.exit("FAILED: %s\n%s" % (what, output))

    def version(self):
        """The version word of the output, which is all that differs from the linker's image."""
        new, old = (self.build / "stamped.elf").read_bytes(), IMAGE.read_bytes()
        words = {new[at:at + 4] for at in range(0, len(old), 4) if old[at:at + 4] != new[at:at + 4]}
        return [int.from_bytes(word, "little") for word in words]


def main(folder):
    project = Project(folder)
    project.expect("the first build runs the script", True)
    assert project.version() == [1] and (project.build / "firmware.elf").read_bytes() == IMAGE.read_bytes()
    project.expect("a second build runs nothing", False)
    project.expect("another definition runs the script", True, VERSION="7")
    assert project.version() == [7]
    project.expect("the same definition runs nothing", False, VERSION="7")
    for name in ("stamp.js", "tools/say.js", "linked.elf"):
        time.sleep(0.05)  # so that it is newer than everything that has been built
        os.utime(project.source / name)
        project.expect("a newer %s runs the script" % name, True)
        project.expect("then it runs nothing more", False)

    for slot, text in {"broken": "error: line", "unsaved": "has not saved its output"}.items():
        project.expect("a script that is %s fails the build" % slot, True, text, SLOT=slot)
        assert not (project.build / "stamped.elf").exists(), slot
        project.expect("a script that is %s runs again" % slot, True, text)
    project.expect("the build recovers", True, prints="slot [a]", SLOT="a")
    if not BY_MAKE:
        project.expect("a value arrives as written", True, prints="slot [two words; one $value]",
                       SLOT="two words; one $value")

    project.expect("refused", False, 'has a second "="', SLOT="a=b")
    if BY_MAKE:
        project.expect("refused", False, '"b" is not of the form name=value', SLOT="a b")
    else:
        for extra, text in (("DEFINE;plain", '"plain" is not of the form name=value'),
                            ("DEFINE;output=there.elf", "define input and output"),
                            ("LIBRARY;nowhere", "there is no LIBRARY nowhere")):
            project.expect("refused", False, text, SLOT="", EXTRA=extra)


with tempfile.TemporaryDirectory() as name:
    main(Path(name))

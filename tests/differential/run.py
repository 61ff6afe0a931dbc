#!/usr/bin/env python3
"""Runs generated programs on several engines and demands the same lines of all.

usage: run.py [--from SEED] [--scripts N] [--programs N] ENGINE...

An ENGINE is a program that takes `-load FILE`; node is asked too where there is one. Any difference is shown
with its script's seed, and makes the exit status 1.
"""
import argparse
import pathlib
import shutil
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
NODE_PRELUDE = "var WScript = {Echo: function (text) { process.stdout.write(String(text)); }};\n"


def output(command):
    done = subprocess.run(command, capture_output=True, timeout=120)
    return done.stdout.decode("latin-1") + done.stderr.decode("latin-1") + ("" if done.returncode == 0 else
                                                                            "exit %d" % done.returncode)


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--from", dest="first", type=int, default=1)
    parser.add_argument("--scripts", type=int, default=20)
    parser.add_argument("--programs", type=int, default=100, help="in each script")
    parser.add_argument("engines", nargs="+")
    options = parser.parse_args()
    node = shutil.which("node")
    failures = 0
    with tempfile.TemporaryDirectory() as folder:
        script = pathlib.Path(folder) / "programs.js"
        for seed in range(options.first, options.first + options.scripts):
            text = subprocess.run([sys.executable, str(HERE / "generate.py"), str(seed), str(options.programs)],
                                  capture_output=True, text=True, check=True).stdout
            script.write_text(text)
            results = {engine: output([engine, "-load", str(script)]) for engine in options.engines}
            if node:
                script.write_text(NODE_PRELUDE + text)
                results["node"] = output([node, str(script)])
            expected = next(reversed(results.values()))
            lines = expected.splitlines()
            if len(lines) != options.programs:
                failures += 1
                print("seed %d: %d lines instead of %d: %s" % (seed, len(lines), options.programs, expected[-300:]))
            for engine, result in results.items():
                if result != expected:
                    failures += 1
                    for ours, theirs in zip(result.splitlines(), lines):
                        if ours != theirs:
                            print("seed %d: %s gives\n  %s\ninstead of\n  %s" % (seed, engine, ours, theirs))
                            break
                    else:
                        print("seed %d: %s ends otherwise: %s" % (seed, engine, result[-300:]))
    print("%d programs, %d differences" % (options.scripts * options.programs, failures))
    sys.exit(1 if failures else 0)


if __name__ == "__main__":
    main()

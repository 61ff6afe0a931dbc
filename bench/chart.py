#!/usr/bin/env python3
"""Draws docs/pictures/benchmarks.svg from docs/pictures/benchmarks.json.

usage: chart.py [--check | RESULTS]

RESULTS is what `bench/run.py --json RESULTS` has written: its ratios replace those of benchmarks.json first. A
ratio is the user CPU time of quorvane by that of the other engine, of the fastest runs. With --check nothing is
written: the exit status is 1 when the picture is not the one that would be drawn.
"""
import json
import sys
from pathlib import Path

PICTURES = Path(__file__).resolve().parent.parent / "docs/pictures"
FIGURES, CHART = PICTURES / "benchmarks.json", PICTURES / "benchmarks.svg"

ENGINES = {"node-jitless": "node --jitless", "duk": "duk"}
LEFT, WIDTH, TOP, ROW = 92, 560, 86, 36  # of the field in which the bars lie; a row holds one program

STYLE = """text{font:13px system-ui,sans-serif;fill:var(--text)}.title{font-size:17px;font-weight:600}
.dim{fill:var(--dim)}.small{font-size:12px}.end{text-anchor:end}.mid{text-anchor:middle}
.grid{stroke:var(--line);fill:none}.equal{stroke:var(--text);stroke-dasharray:4 3;fill:none}
.e0{fill:var(--blue)}.e1{fill:var(--orange)}
svg{--back:#fff;--text:#1c2128;--dim:#57606a;--line:#d5dae0;--blue:#2f6db3;--orange:#d9772b}
@media(prefers-color-scheme:dark){svg{--back:#14171c;--text:#e4e7eb;--dim:#9ba5b1;--line:#333a44;
--blue:#6cb0f5;--orange:#f0954a}}"""


def ratios(results):
    """{program: {engine: ratio}} of the results of run.py."""
    figures = {}
    for program, engines in results["programs"].items():
        best = {name: min(run["seconds"]) for name, run in engines.items() if not run["failure"]}
        figures[program] = {name: round(best["quorvane"] / best[name], 2) for name in ENGINES if name in best}
    return figures


def chart(figures):
    top = max([1.0] + [ratio for engines in figures.values() for ratio in engines.values()])
    quarters = int(-(-top // 0.25))
    unit = WIDTH / (quarters * 0.25)
    bottom = TOP + ROW * len(figures)
    parts = []

    def text(x, y, kind, content):
        parts.append('<text x="%g" y="%g" class="%s">%s</text>' % (x, y, kind, content))

    text(20, 30, "title", "CPU time of quorvane, the other engine being 1")
    for number, name in enumerate(ENGINES.values()):
        parts.append('<rect x="%d" y="45" width="14" height="14" class="e%d"/>' % (LEFT + 170 * number, number))
        text(LEFT + 20 + 170 * number, 57, "small", "against " + name)
    for quarter in range(quarters + 1):
        x = LEFT + unit * quarter / 4
        parts.append('<path class="%s" d="M%g %dV%d"/>' % ("equal" if quarter == 4 else "grid", x, TOP - 8, bottom))
        text(x, bottom + 18, "small mid dim", "%g" % (quarter / 4))
    text(LEFT + unit, bottom + 34, "small mid dim", "as fast")
    for row, (program, engines) in enumerate(sorted(figures.items())):
        y = TOP + ROW * row
        text(LEFT - 10, y + 18, "end", program)
        for number, name in enumerate(ENGINES):
            if name in engines:
                length = unit * engines[name]
                parts.append('<rect x="%d" y="%d" width="%.1f" height="12" class="e%d"/>'
                             % (LEFT, y + 2 + 13 * number, length, number))
                text(round(LEFT + length + 6, 1), y + 12 + 13 * number, "small dim", "%.2f" % engines[name])
    text(LEFT, bottom + 34, "small dim", "shorter is faster")
    width, height = LEFT + WIDTH + 58, bottom + 46
    return ('<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 %d %d" width="%d" height="%d" role="img">\n'
            "<title>CPU time of the benchmark programs against other engines</title>\n<style>\n%s\n</style>\n"
            '<rect width="%d" height="%d" fill="var(--back)"/>\n%s\n</svg>\n'
            % (width, height, width, height, STYLE, width, height, "\n".join(parts)))


def main():
    if len(sys.argv) > 2 or sys.argv[1:] in (["-h"], ["--help"]):
        sys.exit(__doc__)
    check = sys.argv[1:] == ["--check"]
    if sys.argv[1:] and not check:
        figures = ratios(json.loads(Path(sys.argv[1]).read_text(encoding="utf-8")))
        lines = ['  "%s": %s' % (program, json.dumps(engines)) for program, engines in sorted(figures.items())]
        FIGURES.write_text("{\n%s\n}\n" % ",\n".join(lines), encoding="utf-8")
    picture = chart(json.loads(FIGURES.read_text(encoding="utf-8")))
    if not check:
        CHART.write_text(picture, encoding="utf-8")
    elif CHART.read_text(encoding="utf-8") != picture:
        sys.exit("docs/pictures/benchmarks.svg is out of date: run bench/chart.py")


if __name__ == "__main__":
    main()

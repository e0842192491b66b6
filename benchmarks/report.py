#!/usr/bin/env python3
# SPDX-FileCopyrightText: 2026 Vexel
# SPDX-License-Identifier: LicenseRef-Vexel

"""Writes tables and plots of the results of benchmarks/run.

    report.py RESULTS FOLDER

RESULTS contains the JSON files of the benchmark programs; link.txt and instructions.txt in it are copied unchanged.
FOLDER gets tables.md and one SVG file per operation.
"""

import json
import math
import pathlib
import platform
import re
import sys

PRODUCT = "product"
COLOURS = ["#1f5fa8", "#c8641e", "#5a8f29", "#7a4fa0"]


class Figure:
    """Median in seconds, and counters. `unsteady`: the coefficient of variation is above 10 %."""

    def __init__(self):
        self.seconds = None
        self.unsteady = False
        self.counters = {}


def load(results):
    """Returns operation -> subject -> entries -> Figure, in file and run order, and the benchmark context."""
    figures = {}
    context = {}
    for path in sorted(results.glob("*.json")):
        content = json.loads(path.read_text())
        context = content["context"]
        for run in content["benchmarks"]:
            if run.get("error_occurred"):
                sys.exit(f"{path.name}: {run['name']}: {run['error_message']}")
            subject, what, entries = re.sub("/iterations:[0-9]+", "", run["run_name"]).removesuffix("/manual_time").rsplit("/", 2)
            figure = figures.setdefault(what, {}).setdefault(subject, {}).setdefault(int(entries), Figure())
            unit = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1}[run["time_unit"]]
            aggregate = run["aggregate_name"] if run["run_type"] == "aggregate" else "iteration"
            if aggregate == "cv":
                figure.unsteady = run["real_time"] > 0.1
            elif aggregate == "median" or (aggregate == "iteration" and figure.seconds is None):
                figure.seconds = run["real_time"] * unit
                figure.counters = {name: value for name, value in run.items() if " " in name}
    return figures, context


def exponent(series):
    """The slope of a log-log regression line; for long lists, from 1,000 entries on."""
    least = 1_000 if max(series) >= 10_000 else 1
    points = [(math.log(n), math.log(figure.seconds)) for n, figure in series.items() if n >= least]
    if len(points) < 2:
        return None
    mean_x = sum(x for x, _ in points) / len(points)
    mean_y = sum(y for _, y in points) / len(points)
    return sum((x - mean_x) * (y - mean_y) for x, y in points) / sum((x - mean_x) ** 2 for x, _ in points)


def text(seconds):
    milliseconds = seconds * 1e3
    digits = max(0, 2 - math.floor(math.log10(milliseconds))) if milliseconds < 100 else 0
    return f"{milliseconds:.{min(digits, 4)}f}"


def table(figures):
    lines = []
    for what, subjects in figures.items():
        lengths = sorted({n for series in subjects.values() for n in series})
        lines += [f"### {what[0].upper()}{what[1:]}", ""]
        lines.append("| ms | " + " | ".join(f"{n:,}" for n in lengths) + " | exponent |")
        lines.append("|---|" + "---:|" * (len(lengths) + 1))
        for subject, series in subjects.items():
            slope = exponent(series)
            cells = [text(series[n].seconds) + "~" * series[n].unsteady if n in series else "" for n in lengths]
            lines.append(f"| {subject} | " + " | ".join(cells) + f" | {'' if slope is None else f'{slope:.2f}'} |")
        product = subjects.get(PRODUCT, {})
        for subject, series in subjects.items():
            if subject == PRODUCT:
                continue
            cells = [f"**{product[n].seconds / series[n].seconds:.2f}**" if n in series and n in product else ""
                     for n in lengths]
            lines.append(f"| ratio to: {subject} | " + " | ".join(cells) + " | |")
        for subject, series in subjects.items():
            for name in sorted({name for figure in series.values() for name in figure.counters}):
                cells = [f"{series[n].counters[name]:,.0f}" if n in series else "" for n in lengths]
                lines.append(f"| {subject}: {name} | " + " | ".join(cells) + " | |")
        lines.append("")
        if has_plot(subjects):
            lines += [f"![{what}]({file_name(what)})", ""]
    return lines


START = "start to the first painted dialog"
SAME_FORM = "a program with the same form and rows"


def above_empty(figures, counter, entries):
    """The growth of a start's memory by a list, in MB."""
    series = figures[START][PRODUCT]
    return (series[entries].counters[counter] - series[0].counters[counter]) / 1024


def start_ratio(figures, entries):
    subjects = figures[START]
    return subjects[PRODUCT][entries].seconds / subjects[SAME_FORM][entries].seconds


def model_size(figures, entries):
    return figures["fill the model"][PRODUCT][entries].counters["bytes per entry"] * entries / 1e6


def slowest_key_stroke(figures, entries):
    """In milliseconds, of all that were measured in the filter."""
    return max(figures[what][PRODUCT][entries].seconds for what in figures if what.startswith("filter")) * 1000


def pause(figures, operation):
    """With 10,000 entries, in milliseconds."""
    return figures[f"longest pause: {operation}"][PRODUCT][10_000].seconds * 1e3


# What is wanted: name, value, largest value. Times are compared within one run.
AIMS = [
    ("10,000 entries: resident memory above the empty list, MB", lambda f: above_empty(f, "resident, KiB", 10_000), 20),
    ("100,000 entries: resident memory above the empty list, MB", lambda f: above_empty(f, "resident, KiB", 100_000), 200),
    ("10,000 entries: peak above the empty list, MB", lambda f: above_empty(f, "peak, KiB", 10_000), 60),
    ("10,000 entries: the model alone, MB", lambda f: model_size(f, 10_000), 6),
    ("10,000 entries: start, ratio to the same form and rows", lambda f: start_ratio(f, 10_000), 1.5),
    ("100,000 entries: start, ratio to the same form and rows", lambda f: start_ratio(f, 100_000), 2.0),
    ("100,000 entries: a key stroke in the filter until it is painted, ms", lambda f: slowest_key_stroke(f, 100_000), 50),
    *((f"10,000 entries: longest pause, {operation}, ms", lambda f, operation=operation: pause(f, operation), 50)
      for operation in ("save after an edit", "save of an unchanged list", "hide after an edit", "connect 1 entry",
                        "connect 1 entry by command", "connect 1 entry again, same records",
                        "connect 100 entries")),
]


def aims(figures):
    """A table of the aims that this run has figures for."""
    rows = []
    for name, value, largest in AIMS:
        try:
            measured = value(figures)
        except (KeyError, ValueError):
            continue  # another subject
        rows.append(f"| {name} | {measured:.2f} | {largest:g} | {'met' if measured <= largest else '**missed**'} |")
    return ["### Aims", "", "| | measured | at most | |", "|---|---:|---:|---|", *rows, ""] if rows else []


def file_name(what):
    return "".join(c if c.isalnum() else "-" for c in what).strip("-").replace("--", "-") + ".svg"


def has_plot(subjects):
    """A single figure has none."""
    return len(subjects) > 1 or len(next(iter(subjects.values()))) > 1


def plot(what, subjects):
    """Both axes are logarithmic: the slope of a line is the exponent of growth."""
    legend = 18 * len(subjects)
    width, height, left, bottom, top, right = 640, 330 + legend, 70, 32 + legend, 30, 40
    points = [(max(n, 1), figure.seconds) for series in subjects.values() for n, figure in series.items()]
    low_x, high_x = (math.log10(f(n for n, _ in points)) for f in (min, max))
    low_y = math.floor(math.log10(min(s for _, s in points) * 1e3))
    high_y = math.ceil(math.log10(max(s for _, s in points) * 1e3))
    high_x, high_y = max(high_x, low_x + 1), max(high_y, low_y + 1)

    def x(n):
        return left + (math.log10(max(n, 1)) - low_x) / (high_x - low_x) * (width - left - right)

    def y(seconds):
        return height - bottom - (math.log10(seconds * 1e3) - low_y) / (high_y - low_y) * (height - bottom - top)

    svg = [f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" font-family="sans-serif"'
           ' font-size="12">', f'<rect width="{width}" height="{height}" fill="white"/>',
           f'<text x="{left}" y="18" font-size="14">{what[0].upper()}{what[1:]}</text>']
    for decade in range(low_y, high_y + 1):
        at = y(10.0 ** (decade - 3))
        svg.append(f'<line x1="{left}" x2="{width - right}" y1="{at:.1f}" y2="{at:.1f}" stroke="#ddd"/>')
        svg.append(f'<text x="{left - 6}" y="{at + 4:.1f}" text-anchor="end">{10.0 ** decade:g} ms</text>')
    # An empty list does not fit on a logarithmic axis; it is plotted at 1.
    for n in sorted({n for series in subjects.values() for n in series}):
        svg.append(f'<text x="{x(n):.1f}" y="{height - bottom + 18}" text-anchor="middle">{n:,}</text>')
    for colour, (subject, series) in zip(COLOURS, subjects.items()):
        line = [(x(n), y(series[n].seconds)) for n in sorted(series)]
        svg.append(f'<polyline fill="none" stroke="{colour}" stroke-width="2" points="'
                   + " ".join(f"{a:.1f},{b:.1f}" for a, b in line) + '"/>')
        svg += [f'<circle cx="{a:.1f}" cy="{b:.1f}" r="3" fill="{colour}"/>' for a, b in line]
    at = height - legend
    for colour, subject in zip(COLOURS, subjects):
        svg.append(f'<rect x="{left}" y="{at}" width="10" height="10" fill="{colour}"/>')
        svg.append(f'<text x="{left + 16}" y="{at + 9}">{subject}</text>')
        at += 18
    return "\n".join(svg + ["</svg>"]) + "\n"


def machine():
    model = "unknown processor"
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            model = line.split(":", 1)[1].strip()
            break
    cores = sum(line.startswith("processor") for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines())
    version = ".".join(platform.release().split(".")[:2])
    return f"{model}, {cores} cores; Linux {version}"


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    results, folder = (pathlib.Path(argument) for argument in sys.argv[1:])
    figures, context = load(results)
    if not figures and not any(results.glob("*.txt")):
        sys.exit(f"no figures in {results}")
    folder.mkdir(parents=True, exist_ok=True)
    for old in folder.glob("*.svg"):
        old.unlink()
    for what, subjects in figures.items():
        if has_plot(subjects):
            (folder / file_name(what)).write_text(plot(what, subjects))
    lines = ["# Results", "", f"Measured by `benchmarks/run` on: {machine()}; Qt {context.get('Qt', 'unknown')}, compiler "
             f"{context.get('compiler', 'unknown')}. Figures are medians; ~ marks a coefficient of variation above 10 %. "
             "Ratios compare with the same work done by Qt alone, in the same run. Exponents are the growth; for long lists "
             "from 1,000 entries on.", ""]
    lines += aims(figures)
    lines += table(figures)
    for name, title in (("link.txt", "The starter link"), ("instructions.txt", "Instructions")):
        if (results / name).exists():
            lines += [f"### {title}", "", "```", (results / name).read_text().rstrip(), "```", ""]
    (folder / "tables.md").write_text("\n".join(lines))


if __name__ == "__main__":
    main()

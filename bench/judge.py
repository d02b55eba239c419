"""Runs the benchmark programs and holds the results against the goals. bench/run starts it.

Usage: judge.py BUILD DOCUMENT [--count] [--document] [PROGRAM...]
"""
import argparse
import math
import os
import pathlib
import platform
import re
import statistics
import subprocess
import sys
import tempfile

from goals import GOALS

BEGIN, END = "<!-- made by bench/run -->\n", "<!-- end -->\n"


class Result:
    """One contender in one job: a list of numbers per item, one a round; a count is a list of one."""

    def __init__(self, item, numbers, unit="ns"):
        self.item = item
        self.numbers = numbers
        self.unit = unit

    def median(self):
        return statistics.median(self.numbers)


def programs(build, only):
    folder = build / "bench" / "programs"
    found = {path.name.removeprefix("bench-"): path for path in sorted(folder.iterdir())
             if os.access(path, os.X_OK)}
    for name in only:
        if name not in found:
            sys.exit(f"There is no program {name}, only: {' '.join(found)}")
    return [path for name, path in found.items() if not only or name in only]


def timed(program, scene):
    """(job, contender) -> Result, from the lines that --samples prints."""
    run = subprocess.run([program, "--samples"], cwd=scene, stdout=subprocess.PIPE, text=True)
    if run.returncode != 0:
        sys.exit(f"{program.name} failed:\n{run.stdout}")
    results = {}
    for line in run.stdout.splitlines():
        fields = line.split("\t")
        if len(fields) > 4:
            job, item, unit, contender, *numbers = fields
            results[job, contender] = Result(item, [float(n) for n in numbers], unit)
    return results


def counted(program, scene):
    """(job, contender) -> Result in instructions, from callgrind's files: one for each contender."""
    with tempfile.TemporaryDirectory() as folder:
        run = subprocess.run(
            ["valgrind", "--tool=callgrind", "-q", "--instr-atstart=no",
             f"--callgrind-out-file={folder}/out", program, "--count"],
            cwd=scene, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if run.returncode != 0:
            sys.exit(f"{program.name} failed under callgrind:\n{run.stdout}")
        results = {}
        for path in pathlib.Path(folder).iterdir():
            text = path.read_text()
            name = re.search(r"^desc: Trigger: Client Request: (.*)$", text, re.M)
            if name:
                job, item, contender, items = name.group(1).split("\t")
                total = int(re.search(r"^totals: (\d+)$", text, re.M).group(1))
                results[job, contender] = Result(item, [total / float(items)], "instructions")
        return results


def measured(goal, results):
    """(number, contender that it went against) of a goal; None when one of them was not run."""
    own = results.get((goal.job, "kelpix"))
    if own is None:
        return None
    if goal.growth_from:
        smaller = results[goal.growth_from, "kelpix"]
        # Per item: ten times the items at the same cost of each is an exponent of 1.
        return 1 + math.log10(own.median() / smaller.median()), goal.growth_from
    if not goal.against:
        return own.median(), ""
    names = [name.strip() for name in goal.against.split(",")]
    if any((goal.job, name) not in results for name in names):
        return None  # another library that is not installed
    against = min(names, key=lambda name: results[goal.job, name].median())
    other = results[goal.job, against].numbers
    base = results[goal.job, goal.baseline].numbers if goal.baseline else [0] * len(other)
    # Round by round: the two numbers of a pair come from the same moment.
    ratios = [(a - c) / (b - c) for a, b, c in zip(own.numbers, other, base)]
    return statistics.median(ratios), against


def describe(goal, against, unit):
    if goal.growth_from:
        return f"{goal.job}: exponent of the growth of {unit} from {against}"
    if not against:
        return f"{goal.job}: {unit} per item"
    net = f", net of {goal.baseline}" if goal.baseline else ""
    return f"{goal.job}: {unit} / {against}{net}"


def verdicts(times, counts, count_only):
    """One row a goal: what, measured, bound, stretch, verdict."""
    for goal in GOALS:
        by_count = goal.instructions or count_only
        results = counts if by_count else times
        outcome = measured(goal, results)
        if outcome is None:
            continue
        number, against = outcome
        unit = results[goal.job, "kelpix"].unit
        stretch = "" if goal.stretch is None else f"{goal.stretch:g}"
        yield (describe(goal, against, "time" if unit == "ns" else unit), f"{number:.3g}", f"{goal.at_most:g}", stretch,
               "met" if number <= goal.at_most else "missed")


def spread(result):
    """The width of the middle half of the rounds, as a part of the median."""
    lower, _, upper = statistics.quantiles(result.numbers, n=4)
    return (upper - lower) / result.median()


def noise(times):
    spreads = sorted(spread(result) for result in times.values() if result.unit == "ns")
    if not spreads:
        return "Instructions were counted: the machine's noise does not matter."
    load = os.getloadavg()[0]
    return (f"Noise: the middle half of the rounds spreads over {100 * statistics.median(spreads):.1f} % "
            f"of the median in the median case, {100 * spreads[-1]:.1f} % in the worst; "
            f"load average {load:.1f} on {os.cpu_count()} cores.")


def machine():
    cpu = re.search(r"^model name\s*: (.*)$", pathlib.Path("/proc/cpuinfo").read_text(), re.M)
    compiler = subprocess.run(["c++", "--version"], stdout=subprocess.PIPE, text=True).stdout
    return (f"Machine: {cpu.group(1) if cpu else platform.machine()}, {os.cpu_count()} cores, "
            f"{platform.system()} {platform.release()}; {compiler.splitlines()[0]}.")


def table(head, rows):
    rows = [head, *rows]
    widths = [max(len(row[i]) for row in rows) for i in range(len(head))]
    lines = ["| " + " | ".join(cell.ljust(w) for cell, w in zip(row, widths)) + " |" for row in rows]
    lines.insert(1, "|" + "|".join("-" * (w + 2) for w in widths) + "|")
    return "\n".join(lines) + "\n"


def report(times, counts, count_only):
    rows = list(verdicts(times, counts, count_only))
    met = sum(row[-1] == "met" for row in rows)
    text = machine() + "\n" + noise(times) + "\n\n"
    details = [(job, contender, result.item,
                f"{result.median():.{1 if result.unit == 'ns' else 0}f} {result.unit}")
               for results in (times, counts) for (job, contender), result in results.items()]
    text += table(("Job", "Contender", "Per", "Cost"), details) + "\n"
    text += table(("Goal", "Measured", "At most", "Stretch", "Verdict"), rows) + "\n"
    return text + f"{met} of {len(rows)} goals met.\n", met == len(rows)


def write_into(document, text):
    old = document.read_text()
    start, end = old.index(BEGIN) + len(BEGIN), old.index(END)
    document.write_text(old[:start] + text + old[end:])


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("build", type=pathlib.Path)
    parser.add_argument("document", type=pathlib.Path)
    parser.add_argument("--count", action="store_true")
    parser.add_argument("--document", dest="write", action="store_true")
    parser.add_argument("program", nargs="*")
    options = parser.parse_args()

    scene = options.build / "scene"
    to_count = {goal.job for goal in GOALS if goal.instructions}
    times, counts = {}, {}
    for program in programs(options.build, options.program):
        print(f"{program.name} ...", file=sys.stderr, flush=True)
        results = {} if options.count else timed(program, scene)
        times |= results
        if options.count or to_count & {job for job, _ in results}:
            counts |= counted(program, scene)
    text, all_met = report(times, counts, options.count)
    print(text, end="")
    if options.write:
        write_into(options.document, text)
    return 0 if all_met else 1


if __name__ == "__main__":
    sys.exit(main())

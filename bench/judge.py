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


class Measurements:
    """What was measured: each is a dictionary (job, contender) -> Result."""

    def __init__(self):
        self.times = {}  # and quantities that programs count themselves
        self.hardware = {}  # misses that the processor counted
        self.instructions = {}
        self.misses = {}  # in callgrind's model

    def all(self):
        for results in (self.times, self.hardware, self.instructions, self.misses):
            yield from results.items()


def programs(build, only):
    folder = build / "bench" / "programs"
    found = {path.name.removeprefix("bench-"): path for path in sorted(folder.iterdir())
             if os.access(path, os.X_OK)}
    for name in only:
        if name not in found:
            sys.exit(f"There is no program {name}, only: {' '.join(found)}")
    return [path for name, path in found.items() if not only or name in only]


def timed(program, scene):
    """Two times (job, contender) -> Result, from the lines that --samples prints: times or quantities,
    and the misses that the processor counted, where it does."""
    run = subprocess.run([program, "--samples"], cwd=scene, stdout=subprocess.PIPE, text=True)
    if run.returncode != 0:
        sys.exit(f"{program.name} failed:\n{run.stdout}")
    results, misses = {}, {}
    for line in run.stdout.splitlines():
        fields = line.split("\t")
        if len(fields) > 4:
            job, item, unit, contender, *numbers = fields
            found = misses if unit == "misses" else results
            found[job, contender] = Result(item, [float(n) for n in numbers], unit)
    return results, misses


# The caches of a common server's core: what is beyond them is shared with others, or far away.
MODEL = ["--cache-sim=yes", "--I1=32768,8,64", "--D1=32768,8,64", "--LL=1048576,16,64"]


def counted(program, scene, job=""):
    """Two times (job, contender) -> Result, in instructions and in misses, from callgrind's files: one
    for each contender of one job, or of all."""
    with tempfile.TemporaryDirectory() as folder:
        run = subprocess.run(
            ["valgrind", "--tool=callgrind", "-q", "--instr-atstart=no", *MODEL,
             f"--callgrind-out-file={folder}/out", program, "--count", *([job] if job else [])],
            cwd=scene, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        if run.returncode != 0:
            sys.exit(f"{program.name} failed under callgrind:\n{run.stdout}")
        instructions, misses = {}, {}
        for path in sorted(pathlib.Path(folder).iterdir()):
            text = path.read_text()
            name = re.search(r"^desc: Trigger: Client Request: (.*)$", text, re.M)
            if name:
                job, item, contender, items = name.group(1).split("\t")
                events = re.search(r"^events: (.*)$", text, re.M).group(1).split()
                totals = re.search(r"^totals: (.*)$", text, re.M).group(1).split()
                of = {event: int(total) / float(items) for event, total in zip(events, totals)}
                instructions[job, contender] = Result(item, [of["Ir"]], "instructions")
                misses[job, contender] = Result(
                    item, [of["ILmr"] + of["DLmr"] + of["DLmw"]], "misses")
        return instructions, misses


class Outcome:
    """What was measured for a goal, with its lower and upper quartile over the rounds."""

    def __init__(self, goal, ratios, against):
        value = exponent if goal.growth_from else float
        lower, upper = ratios[0], ratios[0]
        if len(ratios) > 1:
            lower, _, upper = statistics.quantiles(ratios, n=4)
        middle = statistics.median(ratios)
        self.number = value(middle)
        self.against = against
        # With some ten rounds the middle half is as wide as a confidence interval of the median.
        if value(lower) < goal.at_most < value(upper):
            spread = 100 * (upper - lower) / middle
            self.verdict = f"undecided: the middle half spreads over {spread:.{0 if spread >= 10 else 1}f} %"
        else:
            self.verdict = "met" if self.number <= goal.at_most else "missed"


def exponent(ratio):
    """The exponent of the growth with the number of items, from the ratio of the costs of each item:
    ten times the items at the same cost of each is an exponent of 1."""
    return 1 + math.log10(ratio)


def measured(goal, results):
    """The Outcome of a goal; None when one of its contenders was not run."""
    own = results.get((goal.job, "kelpix"))
    if own is None:
        return None
    if goal.growth_from:
        smaller = results[goal.growth_from, "kelpix"]
        return Outcome(goal, [a / b for a, b in zip(own.numbers, smaller.numbers)], goal.growth_from)
    if not goal.against:
        return Outcome(goal, own.numbers, "")
    names = [name.strip() for name in goal.against.split(",")]
    if any((goal.job, name) not in results for name in names):
        return None  # another library that is not installed
    against = min(names, key=lambda name: results[goal.job, name].median())
    other = results[goal.job, against].numbers
    base = results[goal.job, goal.baseline].numbers if goal.baseline else [0] * len(other)
    # Round by round: the two numbers of a pair come from the same moment.
    return Outcome(goal, [(a - c) / (b - c) for a, b, c in zip(own.numbers, other, base)], against)


def describe(goal, against, unit):
    if goal.growth_from:
        return f"{goal.job}: exponent of the growth of {unit} from {against}"
    if not against:
        return f"{goal.job}: {unit} per item"
    net = f", net of {goal.baseline}" if goal.baseline else ""
    return f"{goal.job}: {unit} / {against}{net}"


def verdicts(measurements, count_only):
    """One row a goal: what, measured, bound, stretch, verdict."""
    for goal in GOALS:
        results = getattr(measurements, goal.count or ("instructions" if count_only else "times"))
        outcome = measured(goal, results)
        if outcome is None:
            continue
        unit = results[goal.job, "kelpix"].unit
        stretch = "" if goal.stretch is None else f"{goal.stretch:g}"
        yield (describe(goal, outcome.against, "time" if unit == "ns" else unit),
               f"{outcome.number:.3g}", f"{goal.at_most:g}", stretch, outcome.verdict)


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


def report(measurements, count_only):
    """The text of the report, and the exit status."""
    rows = list(verdicts(measurements, count_only))
    text = machine() + "\n" + noise(measurements.times) + "\n"
    if measurements.misses:
        text += "Misses are those of 1 MiB of cache behind 32 KiB, a core's own, in callgrind's model.\n"
    if measurements.hardware:
        text += "Misses, counted, are those of the last cache, by the processor.\n"
    text += "\n"
    details = []
    for (job, contender), result in measurements.all():
        unit = "misses, counted" if result is measurements.hardware.get((job, contender)) else result.unit
        decimals = 1 if result.unit in ("ns", "misses") else 0
        details.append((job, contender, result.item, f"{result.median():.{decimals}f} {unit}"))
    text += table(("Job", "Contender", "Per", "Cost"), details) + "\n"
    text += table(("Goal", "Measured", "At most", "Stretch", "Verdict"), rows) + "\n"
    met = sum(row[-1] == "met" for row in rows)
    missed = sum(row[-1] == "missed" for row in rows)
    undecided = len(rows) - met - missed
    text += f"{met} of {len(rows)} goals met, {missed} missed, {undecided} undecided.\n"
    return text, 1 if missed else 2 if undecided else 0


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
    to_count = {goal.job for goal in GOALS if goal.count}
    found = Measurements()
    for program in programs(options.build, options.program):
        print(f"{program.name} ...", file=sys.stderr, flush=True)
        if options.count:
            instructions, misses = counted(program, scene)
            found.instructions |= instructions
            found.misses |= misses
            continue
        times, hardware = timed(program, scene)
        found.times |= times
        found.hardware |= hardware
        for job in sorted(to_count & {job for job, _ in times}):
            instructions, misses = counted(program, scene, job)
            found.instructions |= instructions
            found.misses |= misses
    text, status = report(found, options.count)
    print(text, end="")
    if options.write:
        write_into(options.document, text)
    return status


if __name__ == "__main__":
    sys.exit(main())

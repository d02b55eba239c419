#!/usr/bin/env python3
"""Watches the running scene: its memory, its open files, and its frame rate.

Usage: watch.py [--minutes N] PROGRAM FOLDER

Starts the scene's PROGRAM in the media FOLDER, prints a line each minute, ends the scene with its
own Q key after N minutes (30), and judges:
 - resident memory grows by at most 2 MiB after the first 5 minutes (or the first sixth of a shorter
   run);
 - the number of open files stays what it was then.
The rate is the mean and the least of what the window's title says, looked at every 5 seconds; it
depends on the machine and is not judged. The exit status is 0 when both goals are met, 1 when one
is missed or the scene ends early, 2 for bad arguments.

Needs an X server without a window manager, and xdotool. Without a display:

    ALSOFT_DRIVERS=null ALSOFT_CONF=packaging/alsoft.conf \\
        cmake/with-display.sh tools/soak/watch.py build/release/kelpix/kelpix build/release/scene
"""
import argparse
import math
import os
import pathlib
import re
import subprocess
import sys
import time

LARGEST_GROWTH = 2048  # KiB
SETTLED = 5            # minutes
LOOK = 5               # seconds between two looks at the title
TITLE = re.compile(r"kelpix \((.*) fps\)")


def resident(process):
    """KiB of resident memory."""
    status = pathlib.Path(f"/proc/{process}/status").read_text()
    return int(re.search(r"VmRSS:\s*(\d+) kB", status)[1])


def open_files(process):
    return len(os.listdir(f"/proc/{process}/fd"))


def settled_at(minutes):
    """The minute from which growth counts, in a run of so many minutes."""
    return min(SETTLED, minutes / 6)


def judge(samples):
    """Judges samples (minute, KiB, files) in the order of time: pairs of a text and whether met."""
    settled = settled_at(samples[-1][0])
    start = next(sample for sample in samples if sample[0] >= settled)
    end = samples[-1]
    if start == end:
        return [("too short a run: there is one sample in it to judge growth by", False)]
    growth = max(kib for minute, kib, _ in samples if minute >= settled) - start[1]
    files = sorted({count for minute, _, count in samples if minute >= settled})
    return [
        (f"resident memory, from minute {start[0]:g} to {end[0]:g}: "
         f"grows by {growth} KiB, at most {LARGEST_GROWTH}", growth <= LARGEST_GROWTH),
        (f"open files, from minute {start[0]:g} to {end[0]:g}: "
         f"{' to '.join(map(str, files[::max(len(files) - 1, 1)]))}", len(files) == 1),
    ]


class Scene:
    def __init__(self, program, folder):
        self.process = subprocess.Popen([os.path.abspath(program)], cwd=folder,
                                        stdout=subprocess.DEVNULL)
        self.window = None

    def find_window(self):
        """Waits for the window: the scene is to show one, or to end."""
        while self.window is None:
            self.check()
            search = ["xdotool", "search", "--onlyvisible", "--name", r"^kelpix \("]
            found = subprocess.run(search, capture_output=True, text=True).stdout.split()
            if found:
                self.window = found[0]
            time.sleep(0.2)

    def check(self):
        if self.process.poll() is not None:
            sys.exit(f"The scene has ended early, with status {self.process.returncode}.")

    def rate(self):
        """What the title says; none while it is being changed."""
        name = subprocess.run(["xdotool", "getwindowname", self.window],
                              capture_output=True, text=True).stdout
        match = TITLE.search(name)
        return float(match[1]) if match else None

    def end(self):
        subprocess.run(["xdotool", "windowfocus", "--sync", self.window, "key", "q"], check=True)
        return self.process.wait(600)


def watch(scene, minutes):
    samples = []
    rates = []
    start = time.monotonic()
    print("minute  resident KiB  files  rate mean  least", flush=True)
    for minute in sorted({*range(1, math.ceil(minutes)), settled_at(minutes), minutes}):
        while time.monotonic() < start + 60 * minute:
            time.sleep(min(LOOK, max(start + 60 * minute - time.monotonic(), 0)))
            scene.check()
            rates.append(scene.rate())
        rates = [rate for rate in rates if rate is not None] or [0.0]
        samples.append((minute, resident(scene.process.pid), open_files(scene.process.pid)))
        print("%6.3g  %12d  %5d  %9.1f  %5.1f"
              % (*samples[-1], sum(rates) / len(rates), min(rates)), flush=True)
        rates = []
    return samples


def main():
    parser = argparse.ArgumentParser(usage="watch.py [--minutes N] PROGRAM FOLDER",
                                     allow_abbrev=False)
    parser.add_argument("--minutes", type=float, default=30)
    parser.add_argument("program")
    parser.add_argument("folder")
    options = parser.parse_args()
    if not 0 < options.minutes < math.inf:
        parser.error("--minutes takes a number above 0")
    scene = Scene(options.program, options.folder)
    try:
        scene.find_window()
        goals = judge(watch(scene, options.minutes))
        status = scene.end()
    finally:
        if scene.process.poll() is None:
            scene.process.kill()
    for text, met in goals:
        print("met:" if met else "missed:", text)
    print(f"the scene ended with status {status}")
    return 0 if status == 0 and all(met for _, met in goals) else 1


if __name__ == "__main__":
    sys.exit(main())

"""Checks what tools/soak/watch.py says of made-up samples, and has it watch the scene for a moment.

Usage: watched.py FOLDER PROGRAM MEDIA
FOLDER holds the watch.py that is tested. Needs an X server without a window manager.
"""
import pathlib
import re
import shutil
import subprocess
import sys
import unittest

FOLDER, PROGRAM, MEDIA = sys.argv[1:]
WATCH = pathlib.Path(FOLDER) / "watch.py"
sys.path.insert(0, FOLDER)
import watch  # noqa: E402, from FOLDER


def steady(minutes):
    return [(minute, 300000, 7) for minute in range(1, minutes + 1)]


class Watch(unittest.TestCase):
    def met(self, samples):
        return [met for _, met in watch.judge(samples)]

    def test_a_steady_scene_meets_both_goals(self):
        texts = [text for text, _ in watch.judge(steady(30))]
        self.assertEqual(texts, [
            "resident memory, from minute 5 to 30: grows by 0 KiB, at most 2048",
            "open files, from minute 5 to 30: 7"])
        self.assertEqual(self.met(steady(30)), [True, True])

    def test_growth_counts_after_five_minutes(self):
        samples = steady(30)
        samples[3] = (4, 100000, 9)
        self.assertEqual(self.met(samples), [True, True])
        samples[29] = (30, 302048, 7)
        self.assertEqual(self.met(samples), [True, True])
        samples[29] = (30, 302049, 7)
        self.assertEqual(self.met(samples), [False, True])

    def test_a_peak_counts_too(self):
        samples = steady(30)
        samples[14] = (15, 303000, 7)
        self.assertEqual(self.met(samples), [False, True])

    def test_one_more_open_file_is_found(self):
        samples = steady(30)
        samples[20] = (21, 300000, 8)
        self.assertEqual(self.met(samples), [True, False])
        self.assertIn("7 to 8", watch.judge(samples)[1][0])

    def test_one_sample_meets_nothing(self):
        self.assertEqual(self.met([(0.1, 300000, 7)]), [False])

    def test_it_watches_the_scene(self):
        result = subprocess.run([WATCH, "--minutes", "0.1", PROGRAM, MEDIA],
                                capture_output=True, text=True)
        lines = result.stdout.split("\n")
        # The scene still takes memory in its first seconds: what is judged is left open.
        goals = [line.split(": ")[0] for line in lines[3:5]]
        self.assertTrue(set(goals) <= {"met", "missed"}, result.stdout + result.stderr)
        self.assertEqual(result.returncode, 1 if "missed" in goals else 0)
        self.assertEqual(lines[0], "minute  resident KiB  files  rate mean  least")
        self.assertRegex(lines[1], r"^0\.0167 +\d+ +\d+ +\d+\.\d +\d+\.\d$") # growth counts from here
        self.assertRegex(lines[2], r"^   0\.1 +\d+ +\d+ +\d+\.\d +\d+\.\d$")
        self.assertEqual(lines[-2], "the scene ended with status 0")

    def test_a_scene_that_ends_early_fails(self):
        result = subprocess.run([WATCH, shutil.which("false"), MEDIA], capture_output=True,
                                text=True)
        self.assertEqual((result.returncode, result.stdout, result.stderr),
                         (1, "", "The scene has ended early, with status 1.\n"))

    def test_bad_arguments(self):
        for arguments in [[], [PROGRAM], ["--minutes", "0", PROGRAM, MEDIA],
                          ["--minutes", "inf", PROGRAM, MEDIA], ["--minutes=nan", PROGRAM, MEDIA]]:
            result = subprocess.run([WATCH, *arguments], capture_output=True, text=True)
            self.assertEqual(result.returncode, 2)


unittest.main(argv=sys.argv[:1])

"""Checks how bench/judge.py holds results against goals, with results that are made up.

Usage: judge_test.py FOLDER
FOLDER holds the judge.py that is tested.
"""
import pathlib
import subprocess
import sys
import tempfile
import unittest
from unittest import mock

FOLDER = pathlib.Path(sys.argv.pop())
sys.path.insert(0, str(FOLDER))
import judge  # noqa: E402, from FOLDER
from goals import Goal  # noqa: E402, from FOLDER
from judge import Result  # noqa: E402, from FOLDER


def times(**contenders):
    """Results of the job "swim"."""
    return {("swim", name): Result("fish", numbers) for name, numbers in contenders.items()}


def measured(times=None, instructions=None, misses=None, hardware=None):
    result = judge.Measurements()
    result.times = times or {}
    result.instructions = instructions or {}
    result.misses = misses or {}
    result.hardware = hardware or {}
    return result


class Judge(unittest.TestCase):
    def verdict(self, goal, results):
        with mock.patch.object(judge, "GOALS", [goal]):
            [(_, number, _, _, verdict)] = judge.verdicts(measured(results), False)
        return number, verdict

    def test_a_ratio_is_the_median_of_the_ratios_of_the_rounds(self):
        results = times(kelpix=[1, 6, 20, 3, 60], bound=[2, 10, 10, 5, 100])
        self.assertEqual(self.verdict(Goal("swim", "bound", 2), results), ("0.6", "met"))
        self.assertEqual(self.verdict(Goal("swim", "bound", 0.5), results), ("0.6", "missed"))

    def test_a_bound_within_the_middle_half_of_the_ratios_is_undecided(self):
        # Of 7 numbers the second and the sixth enclose the middle half.
        results = times(kelpix=[9, 1, 7, 8, 10, 11, 13], bound=[10] * 7)
        for bound in (0.71, 0.9, 1.09):
            self.assertEqual(self.verdict(Goal("swim", "bound", bound), results),
                             ("0.9", "undecided: the middle half spreads over 44 %"))
        self.assertEqual(self.verdict(Goal("swim", "bound", 0.7), results)[1], "missed")
        self.assertEqual(self.verdict(Goal("swim", "bound", 1.1), results)[1], "met")

    def test_a_growth_is_undecided_like_a_ratio(self):
        results = times(kelpix=[5, 10, 20]) | {("splash", "kelpix"): Result("fish", [1, 1, 1])}
        goal = Goal("swim", growth_from="splash", at_most=2.2)
        self.assertEqual(self.verdict(goal, results),
                         ("2", "undecided: the middle half spreads over 150 %"))

    def test_of_several_contenders_the_fastest_counts(self):
        results = times(kelpix=[6, 6, 6], slow=[12, 12, 12], fast=[4, 4, 4])
        self.assertEqual(self.verdict(Goal("swim", "slow, fast", 1), results), ("1.5", "missed"))

    def test_what_is_in_both_sides_is_subtracted(self):
        results = times(kelpix=[12, 12, 12], bound=[14, 14, 14], window=[10, 10, 10])
        self.assertEqual(self.verdict(Goal("swim", "bound", 0.5, baseline="window"), results),
                         ("0.5", "met"))

    def test_a_goal_against_a_library_that_is_not_installed_is_left_out(self):
        with mock.patch.object(judge, "GOALS", [Goal("swim", "another", 1)]):
            self.assertEqual(list(judge.verdicts(measured(times(kelpix=[1, 1, 1])), False)), [])

    def test_a_count_has_its_own_unit_and_no_noise(self):
        results = {("dive", "kelpix"): Result("start", [4096], "bytes")}
        with mock.patch.object(judge, "GOALS", [Goal("dive", at_most=5000)]):
            text, status = judge.report(measured(results), False)
        self.assertEqual(status, 0)
        self.assertIn("| 4096 bytes |", text)
        self.assertIn("| dive: bytes per item |", text)

    def test_growth_is_an_exponent(self):
        # A hundred times the time for ten times the fish: ten times as much for each.
        results = times(kelpix=[50, 50, 50]) | {("splash", "kelpix"): Result("fish", [5, 5, 5])}
        self.assertEqual(self.verdict(Goal("swim", growth_from="splash", at_most=2), results),
                         ("2", "met"))

    def test_a_goal_whose_job_was_not_run_is_left_out(self):
        with mock.patch.object(judge, "GOALS", [Goal("dive", "bound")]):
            self.assertEqual(list(judge.verdicts(measured(times(kelpix=[1, 1, 1])), False)), [])

    def test_the_report_counts_what_was_met(self):
        goals = [Goal("swim", "bound", 0.5), Goal("swim", at_most=3), Goal("dive", "bound", 1)]
        noisy = {("dive", "kelpix"): Result("fish", [1, 2, 4]),
                 ("dive", "bound"): Result("fish", [2, 2, 2])}
        found = measured(times(kelpix=[2, 2, 2], bound=[2, 2, 2]) | noisy)
        with mock.patch.object(judge, "GOALS", goals):
            text, status = judge.report(found, False)
        self.assertEqual(status, 1)
        self.assertTrue(text.startswith("Machine: "))
        self.assertIn("\nNoise: ", text)
        self.assertTrue(text.endswith("\n1 of 3 goals met, 1 missed, 1 undecided.\n"), text)
        self.assertEqual(text.count("| met "), 1)
        self.assertEqual(text.count("| missed "), 1)
        with mock.patch.object(judge, "GOALS", goals[1:]):
            self.assertEqual(judge.report(found, False)[1], 2)

    def test_a_goal_can_be_judged_by_counts(self):
        goals = [Goal("swim", "bound", 0.5, count=kind) for kind in ("instructions", "misses")]
        found = measured(times(kelpix=[9, 9], bound=[1, 1]), times(kelpix=[1], bound=[1]),
                         times(kelpix=[1], bound=[4]), times(kelpix=[7], bound=[7]))
        with mock.patch.object(judge, "GOALS", goals):
            self.assertEqual([row[-1] for row in judge.verdicts(found, False)], ["missed", "met"])
            text, _ = judge.report(found, False)
        self.assertEqual(text.count(" misses, counted |"), 2)
        self.assertIn("Misses, counted, are", text)

    def test_counts_are_read_from_the_profiles_of_callgrind(self):
        def run(command, **_):
            self.assertIn("--LL=1048576,16,64", command)
            self.assertEqual(command[-1], "swim")
            out = next(word for word in command if "out-file" in word).partition("=")[2]
            for number, name in enumerate(("kelpix", "bound"), 1):
                pathlib.Path(f"{out}.{number}").write_text(
                    f"desc: Trigger: Client Request: swim\tfish\t{name}\t10.000000\n"
                    "events: Ir Dr Dw I1mr D1mr D1mw ILmr DLmr DLmw\n"
                    f"totals: {number}000 500 400 90 80 70 10 20 30\n")
            pathlib.Path(out).write_text("desc: Trigger: Program termination\n")
            return subprocess.CompletedProcess(command, 0)

        with mock.patch.object(judge.subprocess, "run", run):
            instructions, misses = judge.counted(pathlib.Path("bench-swim"), ".", "swim")
        self.assertEqual(instructions["swim", "bound"].numbers, [200])
        self.assertEqual(misses["swim", "kelpix"].numbers, [6])
        self.assertEqual(misses["swim", "kelpix"].item, "fish")

    def test_the_misses_that_the_processor_counts_are_told_from_times(self):
        with tempfile.TemporaryDirectory() as folder:
            program = pathlib.Path(folder) / "bench-swim"
            program.write_text("#!/bin/sh\nprintf 'swim\\tfish\\tns\\tkelpix\\t4\\t5\\n'\n"
                               "printf 'swim\\tfish\\tmisses\\tkelpix\\t27\\n'\n")
            program.chmod(0o755)
            found, hardware = judge.timed(program, folder)
        self.assertEqual(found["swim", "kelpix"].numbers, [4, 5])
        self.assertEqual(hardware["swim", "kelpix"].numbers, [27])

    def test_the_tables_go_between_the_marks_of_the_document(self):
        with tempfile.TemporaryDirectory() as folder:
            page = pathlib.Path(folder) / "page.md"
            page.write_text("before\n" + judge.BEGIN + "old\n" + judge.END + "after\n")
            judge.write_into(page, "new\n")
            self.assertEqual(page.read_text(),
                             "before\n" + judge.BEGIN + "new\n" + judge.END + "after\n")
        page = (FOLDER.parent / "docs/performance.md").read_text()
        self.assertLess(page.index(judge.BEGIN), page.index(judge.END))

    def test_a_program_that_is_not_there_is_an_error(self):
        with tempfile.TemporaryDirectory() as folder:
            programs = pathlib.Path(folder) / "bench/programs"
            programs.mkdir(parents=True)
            (programs / "bench-flock").touch(0o755)
            result = subprocess.run([sys.executable, "-B", FOLDER / "judge.py", folder, "page.md",
                                     "flok"], capture_output=True, text=True)
        self.assertEqual((result.returncode, result.stderr),
                         (1, "There is no program flok, only: flock\n"))


unittest.main()

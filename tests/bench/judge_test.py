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


class Judge(unittest.TestCase):
    def verdict(self, goal, results):
        with mock.patch.object(judge, "GOALS", [goal]):
            [(_, measured, _, _, verdict)] = judge.verdicts(results, {}, False)
        return measured, verdict

    def test_a_ratio_is_the_median_of_the_ratios_of_the_rounds(self):
        results = times(kelpix=[1, 20, 6], bound=[2, 10, 10])
        self.assertEqual(self.verdict(Goal("swim", "bound", 0.6), results), ("0.6", "met"))
        self.assertEqual(self.verdict(Goal("swim", "bound", 0.59), results), ("0.6", "missed"))

    def test_of_several_contenders_the_fastest_counts(self):
        results = times(kelpix=[6, 6, 6], slow=[12, 12, 12], fast=[4, 4, 4])
        self.assertEqual(self.verdict(Goal("swim", "slow, fast", 1), results), ("1.5", "missed"))

    def test_what_is_in_both_sides_is_subtracted(self):
        results = times(kelpix=[12, 12, 12], bound=[14, 14, 14], window=[10, 10, 10])
        self.assertEqual(self.verdict(Goal("swim", "bound", 0.5, baseline="window"), results),
                         ("0.5", "met"))

    def test_a_goal_against_a_library_that_is_not_installed_is_left_out(self):
        with mock.patch.object(judge, "GOALS", [Goal("swim", "another", 1)]):
            self.assertEqual(list(judge.verdicts(times(kelpix=[1, 1, 1]), {}, False)), [])

    def test_a_count_has_its_own_unit_and_no_noise(self):
        results = {("dive", "kelpix"): Result("start", [4096], "bytes")}
        with mock.patch.object(judge, "GOALS", [Goal("dive", at_most=5000)]):
            text, all_met = judge.report(results, {}, False)
        self.assertTrue(all_met)
        self.assertIn("| 4096 bytes |", text)
        self.assertIn("| dive: bytes per item |", text)

    def test_growth_is_an_exponent(self):
        # A hundred times the time for ten times the fish: ten times as much for each.
        results = times(kelpix=[50, 50, 50]) | {("splash", "kelpix"): Result("fish", [5, 5, 5])}
        self.assertEqual(self.verdict(Goal("swim", growth_from="splash", at_most=2), results),
                         ("2", "met"))

    def test_a_goal_whose_job_was_not_run_is_left_out(self):
        with mock.patch.object(judge, "GOALS", [Goal("dive", "bound")]):
            self.assertEqual(list(judge.verdicts(times(kelpix=[1, 1, 1]), {}, False)), [])

    def test_the_report_counts_what_was_met(self):
        goals = [Goal("swim", "bound", 0.5), Goal("swim", at_most=3)]
        with mock.patch.object(judge, "GOALS", goals):
            text, all_met = judge.report(times(kelpix=[2, 2, 2], bound=[2, 2, 2]), {}, False)
        self.assertFalse(all_met)
        self.assertTrue(text.startswith("Machine: "))
        self.assertIn("\nNoise: ", text)
        self.assertTrue(text.endswith("\n1 of 2 goals met.\n"), text)
        self.assertEqual(text.count("| met "), 1)
        self.assertEqual(text.count("| missed "), 1)

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

"""Plays a part of an hour with kelpix-soak, and looks at what it prints.

Usage: soak.py HOURS PROGRAM MEDIA
"""
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

HOURS, PROGRAM, MEDIA = sys.argv[1:]
SAMPLE = re.compile(r" +\d+\.\d\d( +\d+){6}")
HEADER = "hour fish bubbles lists textures slots heap KiB".split()


def soak(*arguments, folder="/"):
    return subprocess.run([PROGRAM, *arguments], cwd=folder, capture_output=True, text=True)


def runs(output):
    """The seed, the lines of numbers and the goals of each run in the output."""
    found = []
    for line in output.split("\n"):
        words = line.split()
        if line.startswith("seed "):
            found.append({"seed": line, "samples": [], "goals": []})
        elif found and words == HEADER:
            found[-1]["header"] = True
        elif found and found[-1].get("header") and SAMPLE.fullmatch(line):
            found[-1]["samples"].append([float(word) for word in words])
        elif line.startswith(("met: ", "missed: ")):
            found[-1]["goals"].append(line)
    return found


class Soak(unittest.TestCase):
    def test_a_part_of_an_hour_with_two_seeds(self):
        result = soak("--media", MEDIA, "--hours", HOURS, "--every", "1")
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)
        self.assertEqual(result.stderr, "")
        both = runs(result.stdout)
        self.assertEqual([run["seed"] for run in both],
                         ["seed 1, voice 120.0 s", "seed 2, voice 120.0 s"])
        for run in both:
            samples = run["samples"]
            self.assertGreaterEqual(len(samples), 1 + int(60 * float(HOURS)))
            self.assertEqual([len(sample) for sample in samples], [len(HEADER) - 1] * len(samples))
            hours = [sample[0] for sample in samples]
            self.assertEqual(hours, sorted(hours))
            self.assertAlmostEqual(hours[-1], float(HOURS), places=2)
            self.assertTrue(90 < samples[0][1] <= 100)
            fish = [sample[1] for sample in samples]
            self.assertEqual(fish, sorted(fish, reverse=True))
            self.assertTrue(all(sample[4] == 131 for sample in samples))
            self.assertEqual([goal.split(":")[0] for goal in run["goals"]], ["met"] * 3)
            # Growth counts from the middle.
            middle = float(HOURS) / 2
            self.assertIn(f" from hour {middle:.2f} to hour {float(HOURS):.2f}: ", run["goals"][0])
        self.assertNotEqual(both[0]["samples"], both[1]["samples"])

    def test_the_same_seed_gives_the_same_numbers(self):
        again = [soak("--media", MEDIA, "--hours=0.02", "--seed=5", "--voice=10")
                 for _ in range(2)]
        first, second = (runs(result.stdout)[0] for result in again)
        self.assertEqual(first["seed"], "seed 5, voice 10.0 s")
        self.assertEqual([sample[:6] for sample in first["samples"]],
                         [sample[:6] for sample in second["samples"]])
        # A run shorter than --every has its middle to be judged from.
        self.assertEqual([sample[0] for sample in first["samples"]], [0, 0.01, 0.02])
        self.assertIn("heap growth from hour 0.01 to hour 0.02: ", first["goals"][0])

    def test_a_run_of_one_step_has_no_growth_to_judge(self):
        result = soak("--media", MEDIA, "--hours=0.00001", "--seed=5")
        self.assertEqual(result.returncode, 1)
        self.assertIn("\nmissed: too short a run: ", result.stdout)

    def test_nothing_to_play_is_no_success(self):
        result = soak("--media", MEDIA, "--hours", "0", "--seed", "1")
        self.assertEqual(result.returncode, 1)
        self.assertIn("\nmissed: nothing was played\n", result.stdout)

    def test_help(self):
        result = soak("--help")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertTrue(result.stdout.startswith("usage: kelpix-soak [option ...]\n"))

    def test_version(self):
        result = soak("--version")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertRegex(result.stdout, r"^kelpix-soak \d+\.\d+\.\d+\n$")

    def test_bad_options(self):
        for arguments, message in [
                (["--days", "3"], "unknown option \"--days\""),
                (["--hours", "many"], "--hours takes a number from 0 to 10000, not \"many\""),
                (["--media", "/no/such"], "there is no folder \"/no/such\"")]:
            result = soak(*arguments)
            self.assertEqual(result.returncode, 2)
            self.assertEqual(result.stdout, "")
            self.assertEqual(result.stderr,
                             f"kelpix-soak: {message}\nkelpix-soak --help lists the options.\n")

    def test_a_folder_without_media(self):
        with tempfile.TemporaryDirectory() as folder:
            result = soak("--media", folder)
            self.assertEqual((result.returncode, result.stdout), (1, ""))
            self.assertEqual(result.stderr, f"kelpix-soak: no media in {folder}: there is no "
                             "data/mocap.txt; \"kelpix-media --out DIR\" makes some, --media DIR "
                             "plays them\n")

    def test_the_installed_media_are_played_when_this_folder_has_none(self):
        with tempfile.TemporaryDirectory() as folder:
            program = pathlib.Path(folder) / "bin/kelpix-soak"
            program.parent.mkdir()
            shutil.copy(PROGRAM, program)
            command = [program, "--hours", "0.001", "--seed", "1"]
            result = subprocess.run(command, cwd="/", capture_output=True, text=True)
            self.assertEqual((result.returncode, result.stdout), (1, ""))
            media = pathlib.Path(folder) / "share/kelpix/media"
            self.assertIn(f"kelpix-soak: no media in {media}: ", result.stderr)
            media.parent.mkdir(parents=True)
            media.symlink_to(MEDIA)
            result = subprocess.run(command, cwd="/", capture_output=True, text=True)
            self.assertIn("\nseed 1, voice 120.0 s\n", result.stdout, result.stderr)

    def test_a_scene_that_ends_with_status_0_is_no_success(self):
        with tempfile.TemporaryDirectory() as folder:
            (pathlib.Path(folder) / "data").mkdir()
            (pathlib.Path(folder) / "data/mocap.txt").write_text("nothing\n")
            result = soak("--voice", "1", folder=folder)
            self.assertEqual(result.returncode, 1)
            self.assertTrue(result.stdout.endswith("No MOCAP specified!\n"), result.stdout)
            self.assertIn("kelpix-soak: the scene has ended early\n", result.stderr)
            # The name of a recording may hold commands for the terminal.
            (pathlib.Path(folder) / "data/mocap.txt").write_text("MOCAP 1 3 a\x1b[2Jb\n")
            result = soak("--voice", "1", folder=folder)
            self.assertIn("\nLoading mocap file 0, a\\x1b[2Jb\n", result.stdout)


unittest.main(argv=sys.argv[:1])

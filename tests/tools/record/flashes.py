"""Checks that nothing in the scene flashes, and that kelpix-record --flashes sees what does.

Usage: flashes.py PROGRAM MEDIA BEGIN SECONDS
BEGIN, SECONDS: the part of the scene that is looked at
"""
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

PROGRAM, MEDIA, BEGIN, SECONDS = sys.argv[1:]


def flashes(media, *options):
    return subprocess.run([PROGRAM, "--media", media, "--flashes", *options], capture_output=True,
                          text=True)


class Flashes(unittest.TestCase):
    def test_nothing_in_the_scene_flashes(self):
        run = flashes(MEDIA, "--at", BEGIN, "--seconds", SECONDS, "--size", "192x192")
        self.assertEqual(run.returncode, 0, run.stdout + run.stderr)
        self.assertEqual(run.stdout.splitlines()[0],
                         f"from {BEGIN} s to {int(BEGIN) + int(SECONDS)} s")
        self.assertRegex(run.stdout, r"(?m)^general +0 ")
        self.assertRegex(run.stdout, r"(?m)^red +0 ")
        # The fish move, so something changes; the bound leaves the media room below the 25 %.
        largest = float(re.search(r"(?m)^general .* ([\d.]+) %$", run.stdout)[1])
        self.assertGreater(largest, 1)
        self.assertLess(largest, 20)
        self.assertEqual(run.stdout.splitlines()[-1].partition(":")[0], "WCAG 2.3.1 is met")

    def test_bright_water_that_comes_and_goes_is_seen(self):
        with tempfile.TemporaryDirectory() as folder:
            media = pathlib.Path(folder) / "media"
            shutil.copytree(MEDIA, media)
            subprocess.run(["ffmpeg", "-nostdin", "-v", "error", "-y", "-f", "lavfi", "-i",
                            "color=white:s=64x64", "-frames:v", "1", media / "data/underwater.jpg"],
                           check=True)
            script = pathlib.Path(folder) / "strobe.txt"

            def cut(flash_count):
                lines = []
                for flash in range(flash_count):
                    lines += [f"{flash / 4} glide pan 50 50 50 50 0",
                              f"{flash / 4 + 0.125} glide pan 0.5 0.5 0.5 0.5 0"]
                script.write_text("\n".join(lines))
                return flashes(media, "--script", script, "--seconds", "1.5", "--size", "64x64")

            run = cut(5)
            self.assertEqual(run.returncode, 3, run.stdout + run.stderr)
            self.assertRegex(run.stdout, r"(?m)^general +4 or more +100\.0 %$")
            self.assertIn("\nWCAG 2.3.1 is not met: ", run.stdout)
            run = cut(3)
            self.assertEqual(run.returncode, 0, run.stdout + run.stderr)


unittest.main(argv=sys.argv[:1])

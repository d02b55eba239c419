"""Tests the installed launcher with the real program, on the X server of this test.

Usage: start.py FOLDER
FOLDER: where install.py has unpacked the packages.
"""
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

from program import PATIENCE, Program

FOLDER = pathlib.Path(sys.argv.pop())
KELPIX = FOLDER / "root/usr/bin/kelpix"
SOFTWARE = ("kelpix: llvmpipe: below 40 updates a second the tentacles break into zigzags; a smaller "
            "window helps\n")


def environment(**changes):
    """This test's, without sound settings."""
    variables = {name: value for name, value in os.environ.items() if not name.startswith("ALSOFT_")}
    return dict(variables, **changes)


class Start(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def start(self, **changes):
        return Program(KELPIX, cwd=self.folder, env=environment(**changes))

    def test_plays_from_any_folder_and_ends_with_q(self):
        # OpenAL finds no device with a driver that does not exist; "null" then is the launcher's.
        with self.start(ALSOFT_DRIVERS="none") as scene:
            output, errors = scene.quit()
        self.assertIn("GLEW ok; ", output)
        self.assertEqual(errors, "kelpix: no sound device: the voice plays silently\n" + SOFTWARE)

    def test_has_a_sound_device_where_there_is_one(self):
        with self.start(ALSOFT_DRIVERS="null") as scene:
            scene.process.terminate()
            self.assertEqual(scene.process.wait(PATIENCE), -15)
            self.assertEqual(scene.printed(scene.errors), SOFTWARE)

    def test_the_recorder_finds_the_installed_media(self):
        subprocess.run([KELPIX.parent / "kelpix-record", "--png", "scene.png"], cwd=self.folder,
                       check=True, stdout=subprocess.DEVNULL)
        self.assertTrue((self.folder / "scene.png").exists())

    def test_says_that_the_display_cannot_be_opened(self):
        scene = subprocess.run([KELPIX], cwd=self.folder, capture_output=True, text=True,
                               env=environment(DISPLAY=":99999", ALSOFT_DRIVERS="null"))
        self.assertEqual(scene.returncode, 1)
        self.assertIn("no window: Can't open display: :99999", scene.stderr)


unittest.main()

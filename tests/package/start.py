"""Tests the installed launcher with the real program, on the X server of this test.

Usage: start.py FOLDER
FOLDER: where install.py has unpacked the packages.
"""
import os
import pathlib
import subprocess
import sys
import tempfile
import time
import unittest

FOLDER = pathlib.Path(sys.argv.pop())
KELPIX = FOLDER / "root/usr/bin/kelpix"


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
        with open(self.folder / "out", "w") as out, open(self.folder / "err", "w") as err:
            scene = subprocess.Popen([KELPIX], cwd=self.folder, stdout=out, stderr=err,
                                     env=environment(**changes))
        self.addCleanup(scene.wait)
        self.addCleanup(scene.kill)
        return scene

    def printed(self, name):
        return (self.folder / name).read_text()

    def window(self, scene):
        """Waits until the scene draws."""
        for _ in range(600):
            self.assertIsNone(scene.poll(), self.printed("err"))
            found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", r"^kelpix \("],
                                   stdout=subprocess.PIPE, text=True).stdout.split()
            if found:
                return found[0]
            time.sleep(0.1)
        self.fail("no window after a minute")

    def test_plays_from_any_folder_and_ends_with_q(self):
        # OpenAL finds no device with a driver that does not exist; "null" then is the launcher's.
        scene = self.start(ALSOFT_DRIVERS="none")
        window = self.window(scene)
        subprocess.run(["xdotool", "windowfocus", "--sync", window, "key", "q"], check=True)
        self.assertEqual(scene.wait(60), 0)
        self.assertIn("GLEW ok; ", self.printed("out"))
        self.assertEqual(self.printed("err"), "kelpix: no sound device: the voice plays silently\n")

    def test_has_a_sound_device_where_there_is_one(self):
        scene = self.start(ALSOFT_DRIVERS="null")
        self.window(scene)
        scene.terminate()
        self.assertEqual(scene.wait(60), -15)
        self.assertEqual(self.printed("err"), "")

    def test_the_recorder_finds_the_installed_media(self):
        subprocess.run([KELPIX.parent / "kelpix-record", "--png", "scene.png"], cwd=self.folder,
                       check=True, stdout=subprocess.DEVNULL)
        self.assertTrue((self.folder / "scene.png").exists())

    def test_says_that_the_display_cannot_be_opened(self):
        scene = self.start(DISPLAY=":99999", ALSOFT_DRIVERS="null")
        self.assertEqual(scene.wait(60), 1)
        self.assertIn("no window: Can't open display: :99999", self.printed("err"))


unittest.main()

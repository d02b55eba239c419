"""Goes through docs/first-hour.md: runs its commands in their order, with the installed programs and
the files that it shows, and plays with the program that comes out.

Usage: first_hour.py PAGE FOLDER
FOLDER: where install.py has unpacked the packages.
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

from program import BACKGROUND, Program

FOLDER = pathlib.Path(sys.argv.pop())
PAGE = pathlib.Path(sys.argv.pop()).read_text()
USR = FOLDER / "root/usr"

# Stands in for a program with a window: starts it, and presses q as soon as it draws.
PRESS_Q = """#!/bin/sh
"%s" "$@" & scene=$!
until window=$(xdotool search --onlyvisible --name '^kelpix \\(' 2>/dev/null); do
    kill -0 "$scene" 2>/dev/null || break
    sleep 0.1
done
xdotool windowfocus --sync "$window" key q
wait "$scene"
"""


def blocks():
    return re.findall(r"^```(\S+) ?(\S*)\n(.*?)^```$", PAGE, re.M | re.S)


class FirstHour(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.temporary = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.temporary.cleanup)
        cls.folder = pathlib.Path(cls.temporary.name)
        (cls.folder / "bin").mkdir()
        kelpix = cls.folder / "bin/kelpix"
        kelpix.write_text(PRESS_Q % (USR / "bin/kelpix"))
        kelpix.chmod(0o755)
        cls.environment = dict(os.environ, CMAKE_PREFIX_PATH=str(USR),
                               PATH=f"{cls.folder}/bin:{USR}/bin:{os.environ['PATH']}")

    def sh(self, commands, folder):
        result = subprocess.run(["sh", "-eu", "-c", commands], cwd=folder, env=self.environment,
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.assertEqual(result.returncode, 0, f"{commands}\n{result.stdout}")
        return result.stdout

    def test_every_step_works(self):
        folder = self.folder
        done = []
        for language, name, text in blocks():
            if language != "sh":
                (folder / name).write_text(text)
            elif text.startswith("sudo apt-get"):
                continue  # package/debian installs the packages
            elif text.rstrip().endswith("build/toy"):
                self.sh(text.rstrip().removesuffix("build/toy"), folder)
            else:
                out = self.sh(text, folder)
                if "cd reef\n" in text:
                    folder = folder / "reef"
                if "--check" in text:
                    self.assertRegex(out, r"(?m)^ok +data/fish0\.png")
            done.append(name or text.split()[0])
        self.assertLessEqual({"kelpix", "kelpix-media", "convert", "toy.cpp", "CMakeLists.txt",
                              "cmake"}, set(done))
        self.play(folder)
        self.change_title(folder)

    def change_title(self, folder):
        toy = (folder / "toy.cpp").read_text()
        (folder / "toy.cpp").write_text('#include "ToyWindow.h"\n' + toy.replace(
            "SceneWindow window(740, 740);", "ToyWindow window(740, 740);"))
        self.sh("cmake --build build", folder)
        with Program(folder / "build/toy", cwd=folder, env=self.environment, title="^Toy$") as toy:
            toy.quit()

    def play(self, folder):
        """The cube turns in the middle, and goes where the right button clicks."""
        with Program(folder / "build/toy", cwd=folder, env=self.environment) as toy:
            toy.await_look(lambda picture: self.check_cube(picture, 370, 370))
            toy.click(560, 200)
            toy.await_look(lambda picture: self.check_cube(picture, 560, 200))
            # Zoomed out by two steps, a click still finds its place.
            toy.click(560, 200, button=5)
            toy.click(560, 200, button=5)
            toy.click(150, 600)
            toy.await_look(lambda picture: self.check_cube(picture, 150, 600))
            toy.quit()

    def check_cube(self, picture, x, y):
        self.assertEqual((picture.width, picture.height), (740, 740))
        cube = picture.places(lambda *color: color != BACKGROUND)
        self.assertTrue(cube)
        middle = [sum(values) / len(cube) for values in zip(*cube)]
        self.assertAlmostEqual(middle[0], x, delta=12)
        self.assertAlmostEqual(middle[1], y, delta=12)


unittest.main()

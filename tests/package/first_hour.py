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
import time
import unittest

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

    def play(self, folder):
        """The cube turns in the middle, and goes where the right button clicks."""
        toy = subprocess.Popen([folder / "build/toy"], cwd=folder, env=self.environment,
                               stdout=subprocess.DEVNULL)
        self.addCleanup(toy.wait)
        self.addCleanup(toy.kill)
        find = ["xdotool", "search", "--onlyvisible", "--name", r"^kelpix \("]
        for _ in range(600):
            found = subprocess.run(find, stdout=subprocess.PIPE, text=True).stdout.split()
            if found:
                break
            self.assertIsNone(toy.poll())
            time.sleep(0.1)
        window = found[0]
        self.wait_for_cube(window, 370, 370)
        subprocess.run(["xdotool", "mousemove", "--window", window, "560", "200", "click", "3"],
                       check=True)
        self.wait_for_cube(window, 560, 200)
        # Zoomed out by two steps, a click still finds its place.
        subprocess.run(["xdotool", "click", "5", "click", "5", "mousemove", "--window", window,
                        "150", "600", "click", "3"], check=True)
        self.wait_for_cube(window, 150, 600)
        subprocess.run(["xdotool", "windowfocus", "--sync", window, "key", "q"], check=True)
        self.assertEqual(toy.wait(60), 0)

    def wait_for_cube(self, window, x, y):
        for _ in range(300):
            picture = subprocess.run(
                ["import", "-window", window, "-depth", "8", "rgb:-"], check=True,
                stdout=subprocess.PIPE).stdout
            self.assertEqual(len(picture), 740 * 740 * 3)
            cube = [i // 3 for i in range(0, len(picture), 3 * 7)
                    if picture[i:i + 3] != b"\x05\x1a\x26"]
            if cube:
                middle = (sum(i % 740 for i in cube) / len(cube), sum(i // 740 for i in cube) / len(cube))
                if abs(middle[0] - x) < 12 and abs(middle[1] - y) < 12:
                    return
            time.sleep(0.1)
        self.fail(f"the cube is at {cube and middle}, not at {x}, {y}")


unittest.main()

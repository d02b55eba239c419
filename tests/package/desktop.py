"""Tests the scene's window under a window manager, or without one: maximized, full screen, restored and
tiled, and set up by the launcher's options. In each state the scene fills the window, and drags in its
corners land where the pointer is.

Usage: desktop.py LAUNCHER MEDIA MANAGER
MANAGER: openbox, i3 or none.
Where KELPIX_PICTURES names a folder, the pictures that were looked at are kept there.
"""
import contextlib
import math
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time
import unittest

from program import BACKGROUND, PATIENCE, Picture, Program

MANAGER = sys.argv.pop()
MEDIA = sys.argv.pop()
LAUNCHER = sys.argv.pop()
LARGE = (1920, 1080)
SMALL = (400, 300)
VISIBLE = 2 * math.tan(math.radians(30))  # of the world, from the lower edge of a window to the upper
WATER = 1.2 / 2  # from the middle of the water to its edges
COMMANDS = {"openbox": ["openbox", "--config-file", "/etc/xdg/openbox/rc.xml"],
            "i3": ["i3", "-c", "CONFIG"]}
I3_CONFIG = "font pango:monospace 8\ndefault_border pixel 2\nworkspace_layout default\n"


def output(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


def await_true(condition, what):
    end = time.monotonic() + PATIENCE
    while not condition():
        if time.monotonic() > end:
            raise AssertionError(f"not within {PATIENCE} seconds: {what}")
        time.sleep(0.05)


class Desktop:
    """An X server of its own with the window manager. Use it in a with statement."""

    def __init__(self, size):
        self.size = size
        self.rest = contextlib.ExitStack()

    def start(self, command, **options):
        process = subprocess.Popen(command, **options)
        self.rest.callback(process.wait)
        self.rest.callback(process.terminate)
        return process

    def __enter__(self):
        with contextlib.ExitStack() as on_failure:
            on_failure.callback(self.rest.close)
            folder = pathlib.Path(self.rest.enter_context(tempfile.TemporaryDirectory()))
            server = self.start(["Xvfb", "-displayfd", "1", "-noreset", "-nolisten", "tcp",
                                 "-screen", "0", "{}x{}x24".format(*self.size)],
                                stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
            os.environ["DISPLAY"] = ":" + server.stdout.readline().strip()
            self.rest.callback(server.stdout.close)
            os.environ["HOME"] = str(folder)
            if MANAGER != "none":
                (folder / "config").write_text(I3_CONFIG)
                command = [str(folder / "config") if word == "CONFIG" else word
                           for word in COMMANDS[MANAGER]]
                with open(folder / "log", "w") as log:
                    self.start(command, stdout=log, stderr=log)
                await_true(self.is_managed, f"{MANAGER} runs")
            on_failure.pop_all()
        return self

    def __exit__(self, *_):
        self.rest.close()

    @staticmethod
    def is_managed():
        return "window id" in output("xprop", "-root", "_NET_SUPPORTING_WM_CHECK")


class Scene(Program):
    """The scene on the current desktop, and a person at it."""

    def __init__(self, *options):
        super().__init__(LAUNCHER, *options, MEDIA)
        self.water = [0, 0]  # where its middle is, in the world
        self.zoom = 1

    def place(self):
        """x, y, width and height on the screen."""
        text = output("xwininfo", "-id", self.window)
        return tuple(int(re.search(name + r":\s+(-?\d+)", text).group(1)) for name in (
            "Absolute upper-left X", "Absolute upper-left Y", "Width", "Height"))

    def await_size(self, width, height):
        def has_size():
            found = self.place()[2:]
            return abs(found[0] - width) <= 8 and abs(found[1] - height) <= 40
        await_true(has_size, f"a size of about {width} by {height}, not {self.place()}")

    def expected(self, width, height):
        """For each pixel of a grid whether there is water, "edge" near the edges of the water."""
        scale = height / VISIBLE
        middle = (width / 2 + self.water[0] * scale, height / 2 - self.water[1] * scale)
        half = WATER * self.zoom * scale
        for y in [*range(2, height, max(height // 60, 1)), height - 3]:
            for x in [*range(2, width, max(width // 60, 1)), width - 3]:
                inside = half - max(abs(x - middle[0]), abs(y - middle[1]))
                # A fish, or a figure, reaches beyond the water's edge.
                yield x, y, "edge" if abs(inside) < 4 else "water" if inside > 0 else "beside"

    def assert_fills_its_window(self, name):
        """The picture on the screen shows the whole scene, in the window's size."""
        left, top, width, height = self.place()
        screen = output("xdotool", "getdisplaygeometry").split()
        width, height = min(width, int(screen[0]) - left), min(height, int(screen[1]) - top)

        def check():
            grab = subprocess.run(
                ["import", "-silent", "-window", "root", "-crop", f"{width}x{height}+{left}+{top}",
                 "+repage", "-depth", "8", "ppm:-"], check=True, stdout=subprocess.PIPE).stdout
            picture = Picture(grab)
            folder = os.environ.get("KELPIX_PICTURES")
            if folder:
                pathlib.Path(folder, f"{MANAGER}-{name}.ppm").write_bytes(grab)
            colors = {"water": [], "beside": [], "edge": []}
            for x, y, what in self.expected(*self.place()[2:]):
                if x < width and y < height:
                    colors[what].append(picture.at(x, y))
            water, beside = colors["water"], colors["beside"]
            wrong = sum(color in (BACKGROUND, (0, 0, 0)) for color in water)
            assert wrong <= 0.03 * len(water), f"{wrong} of {len(water)} pixels are no water"
            wrong = sum(color != BACKGROUND for color in beside)
            assert wrong <= 0.1 * len(beside), f"{wrong} of {len(beside)} pixels beside the water"

        end = time.monotonic() + PATIENCE
        while True:
            try:
                return check()
            except AssertionError as failure:
                if time.monotonic() > end:
                    raise AssertionError(f"{name}, {self.place()}: {failure}") from failure
                time.sleep(0.1)

    def act(self, *command):
        output("xdotool", *map(str, command))
        time.sleep(0.2)  # longer than a frame: FLTK joins movements that come together

    def drag(self, start, end):
        """With V, from where the pointer is: FLTK tells that place once more after a drag."""
        self.act("mousedown", 1)
        self.act("keydown", "v")
        self.act("mousemove", "--window", self.window, *end)
        self.act("keyup", "v")
        self.act("mouseup", 1)
        self.water[0] += (end[0] - start[0]) / 1000
        self.water[1] -= (end[1] - start[1]) / 1000

    def assert_drags_in_the_corners(self, name):
        """Drags there and back again, in two corners, move the scene by as much as the pointer."""
        width, height = self.place()[2:]
        self.act("windowfocus", "--sync", self.window)
        for corner, inside in (((3, 3), (93, 63)), ((width - 4, height - 4), (width - 94, height - 64))):
            self.act("mousemove", "--window", self.window, *corner)
            self.drag(corner, inside)
            self.assert_fills_its_window(f"{name}-dragged")
            self.drag(inside, corner)
            self.assert_fills_its_window(f"{name}-dragged-back")


def manage(scene, *arguments):
    """Asks the window manager by its hints."""
    output("wmctrl", "-i", "-r", hex(int(scene.window)), *arguments)


def i3(command):
    output("i3-msg", f'[instance="^kelpix$"] {command}')


class Window(unittest.TestCase):
    @unittest.skipUnless(MANAGER == "openbox", "of openbox")
    def test_stacked(self):
        with Desktop(LARGE), Scene() as scene:
            scene.await_size(740, 740)
            scene.assert_fills_its_window("start")
            manage(scene, "-e", "0,400,150,740,740")
            await_true(lambda: scene.place()[0] >= 400, "it is moved")
            scene.assert_drags_in_the_corners("moved")

            manage(scene, "-b", "add,maximized_vert,maximized_horz")
            scene.await_size(*LARGE)
            scene.assert_drags_in_the_corners("maximized")
            manage(scene, "-b", "remove,maximized_vert,maximized_horz")
            scene.await_size(740, 740)
            scene.assert_fills_its_window("restored")

            manage(scene, "-b", "add,fullscreen")
            await_true(lambda: scene.place() == (0, 0, *LARGE), "it has the whole screen")
            scene.assert_drags_in_the_corners("fullscreen")
            manage(scene, "-b", "remove,fullscreen")
            scene.await_size(740, 740)
            self.assertGreaterEqual(scene.place()[0], 400)
            scene.assert_drags_in_the_corners("restored-again")

            for wanted, given in (((400, 300), (400, 300)), ((10, 10), (100, 100))):
                manage(scene, "-e", "0,50,50,{},{}".format(*wanted))
                await_true(lambda size=given: scene.place()[2:] == size, f"its size is {given}")
                scene.assert_fills_its_window("{}x{}".format(*given))
            scene.quit()

    @unittest.skipUnless(MANAGER == "i3", "of i3")
    def test_tiled(self):
        with Desktop(LARGE), Scene() as scene:
            scene.await_size(*LARGE)
            scene.assert_drags_in_the_corners("alone")
            output("i3-msg", "open")  # an empty tile beside it
            scene.await_size(960, 1080)
            scene.assert_drags_in_the_corners("tiled")
            i3("fullscreen enable")
            await_true(lambda: scene.place() == (0, 0, *LARGE), "it has the whole screen")
            scene.assert_drags_in_the_corners("fullscreen")
            i3("fullscreen disable")
            scene.await_size(960, 1080)
            scene.assert_fills_its_window("tiled-again")
            i3("floating enable, resize set 400 300, move position 500 200")
            scene.await_size(400, 300)
            scene.assert_drags_in_the_corners("floating")
            scene.quit()

    def test_the_launcher_gives_it_the_whole_screen(self):
        for size in LARGE, SMALL:
            with self.subTest(size=size), Desktop(size), \
                    Scene("--fullscreen", "--zoom", "3") as scene:
                await_true(lambda size=size: scene.place() == (0, 0, *size),
                           "it has the whole screen")
                scene.zoom = 1.25 ** 3
                scene.assert_fills_its_window("option-{}x{}".format(*size))
                scene.quit()

    def test_the_launcher_zooms_out(self):
        with Desktop((800, 600)), Scene("--zoom=-2") as scene:
            scene.zoom = 0.64
            scene.assert_fills_its_window("zoomed-out")
            scene.quit()

    @unittest.skipUnless(MANAGER == "none", "once")
    def test_the_helper_goes_with_a_program_that_shows_nothing(self):
        # $0 becomes the program, after it has started the helper as the launcher does.
        with Desktop(SMALL):
            process = subprocess.run(
                ["sh", "-c", '("$0" --pid $$ --fullscreen & echo $! >&2); exec sleep 0.3',
                 pathlib.Path(LAUNCHER).parent / "kelpix-window-setup"],
                stderr=subprocess.PIPE, text=True)
            helper = int(process.stderr)
            await_true(lambda: not pathlib.Path(f"/proc/{helper}").exists(), "the helper has ended")


unittest.main()

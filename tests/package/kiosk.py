"""Tests the kiosk: the unit is valid, and what it starts fills a screen.

Usage: kiosk.py FOLDER
FOLDER: where install.py has unpacked the packages.
"""
import contextlib
import os
import pathlib
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

FOLDER = pathlib.Path(sys.argv.pop())
USR = FOLDER / "root/usr"
KIOSK = USR / "share/doc/kelpix/kiosk"
NOBODY = 65534


def exec_start():
    """The unit's command, as systemd would split it."""
    line = re.search(r"^ExecStart=(.*)$", (KIOSK / "kelpix-kiosk.service").read_text(), re.M).group(1)
    command = re.match(r"(\S+) -- (\S+) -c '(.*)'$", line)
    return [*command.group(1, 2), command.group(3).replace("$$", "$")]


class Kiosk(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.folder.chmod(0o755)

    def test_the_unit_is_valid(self):
        units = self.folder / "units"
        dropins = units / "kelpix-kiosk.service.d"
        dropins.mkdir(parents=True)
        text = (KIOSK / "kelpix-kiosk.service").read_text()
        (units / "kelpix-kiosk.service").write_text(text)
        shutil.copy(KIOSK / "showing.conf", dropins)
        result = subprocess.run(
            ["systemd-analyze", "verify", "--man=no", units / "kelpix-kiosk.service"],
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.assertEqual((result.returncode, result.stdout), (0, ""))

    def wait_for(self, condition, process):
        for _ in range(3000):
            value = condition()
            if value:
                return value
            self.assertIsNone(process.poll(), self.log())
            time.sleep(0.1)
        self.fail("nothing after five minutes:\n" + self.log())

    def log(self):
        return (self.folder / "log").read_text()

    def start(self, command, **changes):
        with open(self.folder / "log", "w") as log:
            process = subprocess.Popen(command, stdout=log, stderr=log, start_new_session=True,
                                       env=dict(os.environ, **changes), cwd=self.folder)
        self.addCleanup(self.end, process)
        return process

    def end(self, process):
        """Ends it with all that it has started."""
        with contextlib.suppress(ProcessLookupError):
            os.killpg(process.pid, signal.SIGKILL)
        process.wait()

    def geometry(self, display, user=()):
        result = subprocess.run(
            [*user, "xdotool", "search", "--onlyvisible", "--name", r"^kelpix \(", "getwindowgeometry"],
            env=dict(os.environ, DISPLAY=display), stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
            text=True)
        size = re.search(r"Geometry: (\d+x\d+)", result.stdout)
        return size and size.group(1)

    def test_cage_gives_the_window_the_whole_screen(self):
        cage, shell, script = exec_start()
        # cage refuses to be root, and who is not may not be able to look into this build.
        user = []
        if os.geteuid() == 0:
            user = ["setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups"]
            os.chown(self.folder, NOBODY, NOBODY)
        if subprocess.run([*user, "test", "-w", "/dev/shm"]).returncode != 0:
            self.skipTest("there is no shared memory, in which pictures of the screen are handed over")
        shutil.copytree(USR, self.folder / "usr")
        script = script.replace("/usr/bin/kelpix", str(self.folder / "usr/bin/kelpix"))
        (self.folder / "run").mkdir(mode=0o700)
        if user:
            os.chown(self.folder / "run", NOBODY, NOBODY)
        # A screen that is not there, 1280 by 720.
        process = self.start([*user, cage, "--", shell, "-c", f"echo display $DISPLAY; {script}"],
                             HOME=str(self.folder), XDG_RUNTIME_DIR=str(self.folder / "run"),
                             WLR_BACKENDS="headless", WLR_RENDERER="pixman",
                             WLR_LIBINPUT_NO_DEVICES="1")
        display = self.wait_for(lambda: re.search(r"^display (:\d+)$", self.log(), re.M), process)
        display = display.group(1)
        self.wait_for(lambda: self.geometry(display, user) == "1280x720", process)

        # In the picture of the screen there is water in the middle and the dark blue at both sides.
        sockets = [path.name for path in (self.folder / "run").glob("wayland-*")
                   if not path.name.endswith(".lock")]
        picture = self.folder / "screen.png"

        def colors():
            grim = subprocess.run([*user, "grim", picture], env=dict(
                os.environ, WAYLAND_DISPLAY=sockets[0], XDG_RUNTIME_DIR=str(self.folder / "run")))
            if grim.returncode != 0:
                return False # a screen that changes meanwhile cannot be copied
            text = subprocess.run(
                ["convert", picture, "-format",
                 "%w %h %[pixel:p{20,360}] %[pixel:p{1260,360}] %[pixel:p{640,700}]", "info:"],
                check=True, stdout=subprocess.PIPE, text=True).stdout
            width, height, left, right, middle = text.split(" ")
            self.assertEqual((width, height), ("1280", "720"))
            return left == right == "srgb(5,26,38)" and middle != left

        self.wait_for(colors, process)

        scene = subprocess.run([*user, "xdotool", "search", "--onlyvisible", "--name", r"^kelpix \(",
                                "getwindowpid"], env=dict(os.environ, DISPLAY=display), check=True,
                               stdout=subprocess.PIPE, text=True).stdout
        os.kill(int(scene), signal.SIGTERM)
        self.assertEqual(process.wait(300), 0)
        self.assertIn("kelpix: ended with status 143\n", self.log())

    def test_without_a_window_manager_it_fills_the_screen(self):
        process = self.start([USR / "bin/kelpix", "--fullscreen"])
        self.wait_for(lambda: self.geometry(os.environ["DISPLAY"]) == "1280x1024", process)
        process.terminate()
        self.assertEqual(process.wait(300), -signal.SIGTERM)
        # Nothing stays on the screen.
        self.assertIsNone(self.geometry(os.environ["DISPLAY"]))


unittest.main()

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
import socket
import struct
import subprocess
import sys
import tempfile
import time
import unittest

FOLDER = pathlib.Path(sys.argv.pop())
USR = FOLDER / "root/usr"
KIOSK = USR / "share/doc/kelpix/kiosk"
NOBODY = 65534


def unit(name):
    """The last value of a name in the unit."""
    text = (KIOSK / "kelpix-kiosk.service").read_text().replace("\\\n", " ")
    return re.findall(rf"^{name}=(.*)$", text, re.M)[-1]


class Kiosk(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.folder.chmod(0o755)

    def test_the_unit_is_valid(self):
        units = self.folder / "units"
        units.mkdir()
        text = (KIOSK / "kelpix-kiosk.service").read_text().replace("/usr/libexec", f"{USR}/libexec")
        (units / "kelpix-kiosk.service").write_text(text)
        result = subprocess.run(
            ["systemd-analyze", "verify", "--man=no", units / "kelpix-kiosk.service"],
            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
        self.assertEqual((result.returncode, result.stdout), (0, ""))

    def test_the_unit_of_a_wall_is_valid(self):
        unit_of_a_wall = USR / "share/doc/kelpix-wall/kelpix-wall.service"
        if not unit_of_a_wall.exists():
            self.skipTest("kelpix-wall is built where there is Open MPI")
        copy = self.folder / "kelpix-wall.service"
        copy.write_text(unit_of_a_wall.read_text().replace("/usr/bin", f"{USR}/bin"))
        result = subprocess.run(["systemd-analyze", "--user", "verify", "--man=no", copy],
                                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                                env=dict(os.environ, XDG_RUNTIME_DIR=str(self.folder)))
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

    def assert_the_pointer_is_hidden(self, cursors):
        """The theme that the unit names has cage's pointer, which has no visible pixel."""
        data = (cursors / "default/cursors/left_ptr").read_bytes()
        numbers = struct.unpack(f"<{len(data) // 4 - 1}I", data[4:])
        self.assertEqual(data[:4], b"Xcur")
        self.assertEqual(numbers[2], 1)  # one image
        image = numbers[numbers[5] // 4 - 1:]
        self.assertEqual(image[4:6], (1, 1))  # width and height
        self.assertEqual(image[9:], (0,))

    def test_cages_own_pointer_cannot_be_seen(self):
        # On an X server cage has a pointer, whatever is plugged in.
        user = self.nobody()
        runtime = self.runtime(user)
        name, theme = unit("Environment").replace("/usr", str(USR)).split("=")

        def pointer():
            """Whether the picture of the screen has a pixel that is not black."""
            picture = subprocess.run(
                ["ffmpeg", "-nostdin", "-loglevel", "error", "-f", "x11grab", "-draw_mouse", "1",
                 "-video_size", "1280x1024", "-i", os.environ["DISPLAY"], "-frames:v", "1",
                 "-f", "rawvideo", "-pix_fmt", "gray", "-"], check=True, stdout=subprocess.PIPE)
            return max(picture.stdout) > 32

        for changes, is_seen in ({}, True), ({name: theme}, False):
            process = self.start([*user, "cage", "--", "sh", "-c", "echo ready; sleep 600"],
                                 XDG_RUNTIME_DIR=str(runtime), WLR_BACKENDS="x11",
                                 WLR_RENDERER="pixman", **changes)
            self.wait_for(lambda: "ready\n" in self.log(), process)
            for x in 300, 320:
                subprocess.run(["xdotool", "mousemove", str(x), "300"], check=True)
                time.sleep(0.5)
            self.wait_for(lambda seen=is_seen: pointer() == seen, process)
            # It stays so.
            self.assertEqual([pointer() for _ in range(5)], [is_seen] * 5)
            self.end(process)

    def nobody(self):
        """How to become nobody: cage refuses to be root."""
        if os.geteuid() != 0:
            return []
        os.chown(self.folder, NOBODY, NOBODY)
        return ["setpriv", f"--reuid={NOBODY}", f"--regid={NOBODY}", "--clear-groups"]

    def runtime(self, user):
        runtime = self.folder / "run"
        runtime.mkdir(mode=0o700)
        if user:
            os.chown(runtime, NOBODY, NOBODY)
        return runtime

    def test_one_showing_after_the_other_has_the_whole_screen(self):
        user = self.nobody()
        if subprocess.run([*user, "test", "-w", "/dev/shm"]).returncode != 0:
            self.skipTest("there is no shared memory, in which pictures of the screen are handed over")
        # Nobody may not be able to look into this build.
        shutil.copytree(USR, self.folder / "usr")
        runtime = self.runtime(user)
        manager = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self.addCleanup(manager.close)
        manager.bind(str(self.folder / "notify"))
        (self.folder / "notify").chmod(0o777)
        manager.settimeout(300)

        command = unit("ExecStart").replace("/usr/libexec", f"{self.folder}/usr/libexec").replace(
            "/usr/bin/kelpix", f"{self.folder}/usr/bin/kelpix").replace("%t/kelpix", str(runtime))
        theme = unit("Environment").replace("/usr", f"{self.folder}/usr").split("=")
        self.assert_the_pointer_is_hidden(pathlib.Path(theme[1]))
        # A screen that is not there, 1280 by 720.
        process = self.start([*user, *command.split()], **dict([theme]),
                             HOME=str(self.folder), XDG_RUNTIME_DIR=str(runtime),
                             NOTIFY_SOCKET=str(self.folder / "notify"), WATCHDOG_USEC="60000000",
                             WLR_BACKENDS="headless", WLR_RENDERER="pixman",
                             WLR_LIBINPUT_NO_DEVICES="1")
        # All that is told comes from the main process.
        manager.setsockopt(socket.SOL_SOCKET, socket.SO_PASSCRED, 1)
        first, control, _, _ = manager.recvmsg(4096, 1024)
        self.assertEqual(first, b"READY=1")
        self.assertEqual([struct.unpack("3i", data)[0] for _, _, data in control], [process.pid])
        status = runtime / "status"
        self.wait_for(lambda: status.exists() and " showing=1 " in status.read_text(), process)
        scene = self.scene(process)
        environment = pathlib.Path(f"/proc/{scene}/environ").read_bytes().split(b"\0")
        display, = (line[8:].decode() for line in environment if line.startswith(b"DISPLAY="))
        self.wait_for(lambda: self.geometry(display, user) == "1280x720", process)

        # In the picture of the screen there is water in the middle and the dark blue at both sides.
        sockets = [path.name for path in runtime.glob("wayland-*") if path.suffix != ".lock"]
        picture = self.folder / "screen.png"

        def colors():
            grim = subprocess.run([*user, "grim", picture], env=dict(
                os.environ, WAYLAND_DISPLAY=sockets[0], XDG_RUNTIME_DIR=str(runtime)))
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

        os.kill(scene, signal.SIGKILL)
        self.wait_for(lambda: " showing=2 " in status.read_text(), process)
        self.assertIn("the program ended by signal 9", status.read_text())
        second = self.scene(process)
        process.terminate()
        # cage 0.1.4 aborts when it is asked to end.
        self.assertIn(process.wait(300), (0, 134))
        self.await_end(second)

    def scene(self, process):
        """The scene's process, below kelpix-show, cage and the relay."""
        def find():
            ids = [process.pid]
            for _ in range(3):
                ids = [int(word) for pid in ids for word in
                       pathlib.Path(f"/proc/{pid}/task/{pid}/children").read_text().split()]
            scenes = [pid for pid in ids
                      if os.readlink(f"/proc/{pid}/exe").endswith("/libexec/kelpix/kelpix")]
            return scenes and scenes[0]
        return self.wait_for(find, process)

    @staticmethod
    def await_end(pid):
        while pathlib.Path(f"/proc/{pid}").exists():
            time.sleep(0.1)

    def test_without_a_window_manager_it_fills_the_screen(self):
        process = self.start([USR / "bin/kelpix", "--fullscreen"])
        self.wait_for(lambda: self.geometry(os.environ["DISPLAY"]) == "1280x1024", process)
        process.terminate()
        self.assertEqual(process.wait(300), -signal.SIGTERM)
        # Nothing stays on the screen.
        self.assertIsNone(self.geometry(os.environ["DISPLAY"]))


unittest.main()

"""Has kelpix-show conduct a program, and looks at the screen ten times a second.

Usage: show.py SHOW FAKE MEDIA_PROGRAM LAUNCHER TEST...
FAKE: FakeScene, which has one color for each process; MEDIA_PROGRAM: kelpix-media; LAUNCHER: of the
scene itself. TEST: names of classes. Needs an X server with a screen of 320 by 240, ffmpeg, and for
Managed the window managers.
Where KELPIX_PICTURES names a folder, the pictures of the scene are kept there.
"""
import contextlib
import ctypes
import os
import pathlib
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest

SHOW, FAKE, MEDIA_PROGRAM, LAUNCHER = sys.argv[1:5]
PATIENCE = 240  # seconds, on a machine that does much else
SIZE = (320, 240)


def await_value(ask, what):
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        answer = ask()
        if answer:
            return answer
        time.sleep(0.05)
    raise AssertionError(f"never: {what() if callable(what) else what}")


def children(process):
    try:
        with open(f"/proc/{process}/task/{process}/children", encoding="ascii") as file:
            return [int(word) for word in file.read().split()]
    except OSError:
        return []


def name_of(process):
    with contextlib.suppress(OSError):
        return pathlib.Path(f"/proc/{process}/comm").read_text(encoding="utf-8").strip()
    return None


def marked(mark):
    """The processes that have inherited a mark in their environment."""
    found = []
    for folder in pathlib.Path("/proc").glob("[0-9]*"):
        with contextlib.suppress(OSError):
            if mark.encode() in (folder / "environ").read_bytes():
                found.append(int(folder.name))
    return found


class Shots:
    """Pictures of the screen, ten a second, as bytes: red, green, blue. Use it in a with statement."""

    def __init__(self, pointer=True):
        self.pointer = str(int(pointer))
        self.taken = []

    def __enter__(self):
        self.ffmpeg = subprocess.Popen(
            ["ffmpeg", "-nostdin", "-loglevel", "error", "-f", "x11grab", "-draw_mouse", self.pointer,
             "-framerate", "10", "-video_size", "{}x{}".format(*SIZE), "-i",
             os.environ["DISPLAY"], "-f", "rawvideo", "-pix_fmt", "rgb24", "-"],
            stdout=subprocess.PIPE)
        self.thread = threading.Thread(target=self.read)
        self.thread.start()
        return self

    def read(self):
        length = 3 * SIZE[0] * SIZE[1]
        for shot in iter(lambda: self.ffmpeg.stdout.read(length), b""):
            if len(shot) == length and (not self.taken or self.taken[-1] != shot):
                self.taken.append(shot)

    def __exit__(self, *_):
        self.ffmpeg.terminate()
        self.thread.join()
        self.ffmpeg.stdout.close()
        self.ffmpeg.wait()

    def colors(self):
        """Of the different shots in their order: the color where all is of one, else None."""
        return [shot[:3] if shot == shot[:3] * (len(shot) // 3) else None for shot in self.taken]


class Running:
    """A kelpix-show. Use it in a with statement, which ends it."""

    def __init__(self, *arguments, **environment):
        self.folder = tempfile.TemporaryDirectory()
        self.log_file = pathlib.Path(self.folder.name, "log")
        self.status_file = pathlib.Path(self.folder.name, "status")
        self.mark = f"KELPIX_SHOW_TEST={os.getpid()}-{time.monotonic_ns()}"
        name, value = self.mark.split("=")
        environment = dict(os.environ, **environment, **{name: value})
        # Another one that has died must be found in an hour, not in a moment of much load.
        patience = [] if "--patience" in arguments else ["--patience", "60"]
        with open(self.log_file, "w", encoding="utf-8") as log:
            self.process = subprocess.Popen(
                [SHOW, "--status", self.status_file, *patience, *arguments],
                stdout=log, stderr=log, env=environment)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.kill()
        self.process.wait()
        for process in marked(self.mark):
            with contextlib.suppress(ProcessLookupError):
                os.kill(process, signal.SIGKILL)
        self.folder.cleanup()

    def log(self):
        """What it has printed, without the times."""
        return re.sub(r"^kelpix-show: \d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ ", "kelpix-show: ",
                      self.log_file.read_text(encoding="utf-8"), flags=re.M)

    def await_line(self, text):
        await_value(lambda: text in self.log(), lambda: f"{text} in\n{self.log()}")

    def status(self):
        """The fields of the status file."""
        with contextlib.suppress(OSError):
            line = self.status_file.read_text(encoding="utf-8")
            assert line.count("\n") == 1 and line[-1] == "\n", line
            return dict(re.findall(r'(\w+)=("(?:\\.|[^"])*"|\S+)', line))
        return {}

    def await_showing(self, number):
        self.await_line(f"kelpix-show: showing {number} plays\n")
        await_value(lambda: int(self.status().get("showing", 0)) >= number, "its status")

    def await_rate(self, rate):
        await_value(lambda: self.status().get("rate") == rate, self.status)

    def scene(self):
        """The one process of the showing in front, once the one before has gone."""
        def only():
            found = [child for child in children(self.process.pid) if name_of(child) != "sleep"]
            return found if len(found) == 1 else None
        return await_value(only, lambda: f"one process, not {children(self.process.pid)}")[0]

    def end(self, by=signal.SIGTERM):
        """Ends it. Returns its exit status, and the processes that it has left."""
        self.process.send_signal(by)
        status = self.process.wait(PATIENCE)
        return status, marked(self.mark)


class Look(unittest.TestCase):
    """Looks at the colors of the screen."""

    def assert_never_empty(self, shots, least):
        """From the first showing on the whole screen has the color of one showing, of at least so
        many, and no color comes back."""
        colors = shots.colors()
        black = bytes(3)
        while colors and colors[0] in (black, None):
            colors.pop(0)
        self.assertEqual(len(colors), len(set(colors)), colors)
        self.assertGreaterEqual(len(colors), least, colors)
        self.assertNotIn(black, colors)
        self.assertNotIn(None, colors)


class Show(Look):
    def test_three_showings_in_a_row_and_one_that_hangs(self):
        with Shots() as shots, Running("--every", "5", "--fullscreen", "--patience", "20", "--",
                                       FAKE, "orphan") as show:
            show.await_showing(3)
            self.assertEqual(show.status()["faults"], "0")
            show.await_rate("20.0")
            # Each has left something behind: that of the one that plays is still there, alone.
            show.scene()
            await_value(lambda: len(marked(show.mark)) == 3, lambda: marked(show.mark))
            time.sleep(1)
            self.assertEqual(sorted(map(name_of, marked(show.mark))),
                             ["FakeScene", "kelpix-show", "sleep"])
            # The last frame of that which is stopped stays until the next one is in front.
            os.kill(show.scene(), signal.SIGSTOP)
            show.await_showing(4)
            await_value(lambda: len({color for color in shots.colors() if color}) >= 5, shots.colors)
            self.assertEqual(show.end(), (0, []))
        # All seen, but for the black after the end.
        shots.taken = [shot for shot in shots.taken if shot[:3] != bytes(3) or shot is shots.taken[0]]
        self.assert_never_empty(shots, 4)

    def test_a_showing_that_is_killed_is_replaced(self):
        with Running("--fullscreen", "--", FAKE, "children") as show:
            show.await_showing(1)
            first = show.scene()
            rest = children(first)
            self.assertEqual(len(rest), 2)
            os.kill(first, signal.SIGKILL)
            show.await_showing(2)
            # What it has started goes with it.
            await_value(lambda: not set(rest) & set(marked(show.mark)), "they are gone")
            self.assertNotEqual(show.scene(), first)
            self.assertEqual(show.status()["faults"], "1")
            self.assertRegex(show.status()["last_fault"], "^\"the program ended by signal 9 ")
            # A visitor's key is no fault.
            second = show.scene()
            window = subprocess.run(["xdotool", "search", "--name", "^kelpix"], check=True,
                                    stdout=subprocess.PIPE, text=True).stdout.split()[0]
            subprocess.run(["xdotool", "windowfocus", "--sync", window, "key", "q"], check=True)
            show.await_showing(3)
            self.assertNotEqual(show.scene(), second)
            self.assertEqual(show.status()["faults"], "1")

    def test_a_command_may_give_its_processes_groups_of_their_own(self):
        with Running("--", "sh", "-c", f"setsid {FAKE}; exit $?") as show:
            show.await_showing(1)
            # Both count.
            scene = children(show.scene())[0]
            size = re.search(r"VmRSS:\s+(\d+)", pathlib.Path(f"/proc/{scene}/status").read_text())
            self.assertGreaterEqual(int(show.status()["memory_mib"]), int(size[1]) // 1024)
            self.assertEqual(show.end(), (0, []))

    def test_any_window_may_be_shown(self):
        with Shots() as shots, Running("--every", "5", "--fullscreen", "--", FAKE,
                                       "title=Slides (2)") as show:
            show.await_showing(2)
            self.assertEqual(show.status()["rate"], "none")
            show.scene()
            self.assertEqual(show.status()["faults"], "0")
            taken = list(shots.taken)
        shots.taken = taken
        self.assert_never_empty(shots, 2)

    def test_a_window_that_is_taken_away_does_not_hang(self):
        with Running("--", FAKE) as show:
            show.await_rate("20.0")
            window = subprocess.run(["xdotool", "search", "--name", "^kelpix"], check=True,
                                    stdout=subprocess.PIPE, text=True).stdout.split()[0]
            subprocess.run(["xdotool", "windowunmap", window], check=True)
            show.await_rate("none")
            subprocess.run(["xdotool", "windowmap", window], check=True)
            show.await_rate("20.0")
            self.assertEqual(show.status()["faults"], "0")
            # Nobody else could conduct this screen.
            other = subprocess.run([SHOW, "--", FAKE], stderr=subprocess.PIPE, text=True)
            self.assertEqual((other.returncode, other.stderr),
                             (1, "kelpix-show: another kelpix-show has this screen: two need a window "
                                 "manager\n"))

    def test_nothing_is_left_when_it_ends(self):
        for by in signal.SIGTERM, signal.SIGINT, signal.SIGHUP:
            with self.subTest(by=by), Running("--", FAKE, "stubborn", "children") as show:
                show.await_showing(1)
                await_value(lambda: len(marked(show.mark)) == 4, "its four processes")
                self.assertEqual(show.end(by), (0, []))

    def test_one_that_is_stopped_ends_too(self):
        with Running("--", FAKE) as show:
            show.await_showing(1)
            os.kill(show.scene(), signal.SIGSTOP)
            self.assertEqual(show.end(), (0, []))

    def test_the_scene_does_not_outlive_it(self):
        with Running("--", FAKE) as show:
            show.await_showing(1)
            show.process.kill()
            show.process.wait()
            await_value(lambda: not marked(show.mark), "all gone")

    def test_repeated_quick_ends_are_slowed_down(self):
        for command, end in ([FAKE, "status=3"], "status 3"), (["no-such-program"], "status 127"):
            with self.subTest(command=command), Running("--", *command) as show:
                show.await_line("3 times in a row: the next start in 4 s")
                self.assertIn(f"kelpix-show: the program ended with {end} before it was in front\n",
                              show.log())
                self.assertEqual(show.end(), (0, []))

    def test_it_ends_with_the_x_server(self):
        server = subprocess.Popen(["Xvfb", "-displayfd", "1", "-noreset", "-nolisten", "tcp"],
                                  stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        try:
            display = ":" + server.stdout.readline().strip()
            with Running("--", FAKE, DISPLAY=display) as show:
                show.await_showing(1)
                server.terminate()
                self.assertEqual(show.process.wait(PATIENCE), 1)
                self.assertEqual(marked(show.mark), [])
                self.assertIn("kelpix-show: the X server has gone\n", show.log())
        finally:
            server.kill()
            server.wait()
            server.stdout.close()

    def test_the_screen_stays_awake(self):
        class Info(ctypes.Structure):
            _fields_ = [("window", ctypes.c_ulong), ("state", ctypes.c_int), ("kind", ctypes.c_int),
                        ("til_or_since", ctypes.c_ulong), ("idle", ctypes.c_ulong),
                        ("event_mask", ctypes.c_ulong)]

        x11, saver = ctypes.CDLL("libX11.so.6"), ctypes.CDLL("libXss.so.1")
        x11.XOpenDisplay.restype = ctypes.c_void_p
        saver.XScreenSaverAllocInfo.restype = ctypes.POINTER(Info)
        display = ctypes.c_void_p(x11.XOpenDisplay(None))
        root = x11.XDefaultRootWindow(display)
        info = saver.XScreenSaverAllocInfo()

        def is_dark():
            saver.XScreenSaverQueryInfo(display, ctypes.c_ulong(root), info)
            return info.contents.state == 1

        try:
            with Running("--", FAKE) as show:
                show.await_showing(1)
                subprocess.run(["xset", "s", "1"], check=True)
                # Far beyond the second: it would be dark.
                time.sleep(4)
                self.assertFalse(is_dark())
            subprocess.run(["xset", "s", "reset"], check=True)
            await_value(is_dark, "a screen that goes dark without it")
        finally:
            subprocess.run(["xset", "s", "off", "s", "reset"], check=True)
            x11.XFree(info)
            x11.XCloseDisplay(display)

    def test_a_monitor_of_its_own(self):
        subprocess.run(["xrandr", "--setmonitor", "left", "160/40x240/60+0+0", "screen"], check=True,
                       stdout=subprocess.DEVNULL)
        subprocess.run(["xrandr", "--setmonitor", "right", "160/40x240/60+160+0", "none"], check=True)
        try:
            with Running("--every", "5", "--fullscreen", "--screen", "1", "--", FAKE) as show:
                with Shots() as shots:
                    show.await_showing(1)
                    await_value(lambda: shots.taken and shots.taken[-1][-3:] != bytes(3), "a shot")
                # It is switched off, as a screen is in the evening.
                subprocess.run(["xrandr", "--delmonitor", "right"], check=True)
                show.await_showing(3)
                self.assertEqual(show.end(), (0, []))
            subprocess.run(["xrandr", "--setmonitor", "right", "160/40x240/60+160+0", "none"], check=True)
            row = shots.taken[-1][:3 * SIZE[0]]
            self.assertEqual(row[:3 * 160], bytes(3 * 160))
            self.assertEqual(row[3 * 160:], row[-3:] * 160)
            with Running("--fullscreen", "--screen", "2", "--", FAKE) as show:
                self.assertEqual(show.process.wait(PATIENCE), 1)
                self.assertEqual(show.log(), "kelpix-show: there is no monitor 2: the X server has 2, "
                                             "counted from 0\n")
        finally:
            for name in "left", "right":
                subprocess.run(["xrandr", "--delmonitor", name], check=True)

    def test_the_service_manager_hears_of_it(self):
        with tempfile.TemporaryDirectory() as folder, \
                socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM) as manager:
            address = f"{folder}/notify"
            manager.bind(address)
            manager.settimeout(PATIENCE)
            with Running("--", FAKE, NOTIFY_SOCKET=address, WATCHDOG_USEC="200000",
                         WATCHDOG_PID="1") as show:
                show.await_showing(1)
                show.await_rate("20.0")
                scene = pathlib.Path(f"/proc/{show.scene()}/environ").read_bytes()
                self.assertNotIn(b"NOTIFY_SOCKET", scene)
                self.assertNotIn(b"WATCHDOG", scene)
                show.process.terminate()
                heard = []
                while "STOPPING=1" not in heard:
                    heard.append(manager.recv(4096).decode())
                self.assertEqual(heard[0], "READY=1")
                self.assertGreater(heard.count("WATCHDOG=1"), 1)
                rates = [re.search(r" showing=1 rate=(\S+) ", text)[1] for text in heard
                         if text.startswith("STATUS=time=") and " showing=1 " in text]
                self.assertEqual(rates[-1], "20.0", heard)
                self.assertNotIn("0.0", rates)
                self.assertEqual(show.process.wait(PATIENCE), 0)

    def test_what_makes_no_sense_is_refused(self):
        for arguments, status, line in [
                (["--zoom", "30"], 2, "--zoom takes a whole number from -20 to 20, not \"30\""),
                (["--media", "/no/such"], 1, "no media in /no/such: there is no data/mocap.txt; "
                                             "\"kelpix-media --out DIR\" makes some, --media DIR "
                                             "plays them")]:
            result = subprocess.run([SHOW, *arguments], stderr=subprocess.PIPE, text=True)
            self.assertEqual(result.returncode, status)
            self.assertEqual(result.stderr.split("\n")[0], f"kelpix-show: {line}")
        result = subprocess.run([SHOW, "--", FAKE], stderr=subprocess.PIPE, text=True,
                                env={**os.environ, "DISPLAY": ""})
        self.assertEqual((result.returncode, result.stderr),
                         (1, "kelpix-show: no display: start it in a graphical session, or set DISPLAY "
                             "to an X server\n"))


class Media(Look):
    """A folder that is changed while it is shown."""

    def test_it_begins_anew_with_good_media_alone(self):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name, "reef")
            subprocess.run([MEDIA_PROGRAM, "--out", folder, "--seconds", "5", "--water", "64"],
                           check=True, stdout=subprocess.DEVNULL)
            path = f"{pathlib.Path(MEDIA_PROGRAM).parent}:{os.environ['PATH']}"
            with Shots() as shots, Running("--media", f"{folder}/", "--fullscreen", "--", FAKE,
                                           PATH=path) as show:
                # The voice of five seconds tells when.
                show.await_showing(2)
                index = folder / "data/mocap.txt"
                good = index.read_text(encoding="utf-8")
                index.write_text("no index", encoding="utf-8")
                show.await_line("kelpix-show: the media have changed, but cannot be shown as they are")
                self.assertIn("data/mocap.txt: ", show.log())
                scene = show.scene()
                # Well beyond its period: it would have been replaced.
                time.sleep(8)
                self.assertEqual(show.scene(), scene)

                index.write_text(good, encoding="utf-8")
                show.await_line("kelpix-show: the media have changed: the next showing plays them\n")
                await_value(lambda: scene not in children(show.process.pid), "the next showing")
                self.assertEqual(show.status()["faults"], "0")
                # The whole folder is exchanged.
                folder.rename(pathlib.Path(name, "old"))
                shutil.copytree(pathlib.Path(name, "old"), folder)
                await_value(lambda: show.log().count("plays them\n") == 2, show.log)
                await_value(lambda: len(shots.taken) > 3, "shots")
                taken = list(shots.taken)
            shots.taken = taken
            self.assert_never_empty(shots, 3)


    def test_a_check_that_comes_too_late_says_nothing(self):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name, "reef")
            (folder / "data").mkdir(parents=True)
            index = folder / "data/mocap.txt"
            index.write_text("", encoding="utf-8")
            # The first check lasts until it is ended; the others find nothing.
            checker = pathlib.Path(name, "kelpix-media")
            checker.write_text(f"""#!/bin/sh
[ -e {name}/begun ] && exit 0
touch {name}/begun
exec sleep 600
""", encoding="utf-8")
            checker.chmod(0o755)
            with Running("--media", folder, "--", FAKE, PATH=f"{name}:{os.environ['PATH']}") as show:
                show.await_showing(1)
                index.write_text("1", encoding="utf-8")
                await_value(pathlib.Path(name, "begun").exists, "a check")
                index.write_text("2", encoding="utf-8")
                show.await_line("kelpix-show: the media have changed: the next showing plays them\n")
                self.assertNotIn("cannot be shown", show.log())


class Managed(Look):
    """Under window managers: one that stacks windows, and one that tiles them."""

    @contextlib.contextmanager
    def manager(self, *command):
        with tempfile.TemporaryDirectory() as folder, \
                open(f"{folder}/log", "w", encoding="utf-8") as log:
            config = pathlib.Path(folder, "config")
            config.write_text("# i3 config file (v4)\nfont pango:monospace 8\n", encoding="utf-8")
            command = [str(config) if word == "CONFIG" else word for word in command]
            process = subprocess.Popen(command, stdout=log, stderr=log,
                                       env=dict(os.environ, HOME=folder))
            try:
                await_value(lambda: "window id" in subprocess.run(
                    ["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], check=True,
                    stdout=subprocess.PIPE, text=True).stdout, "the window manager")
                yield
            finally:
                process.terminate()
                process.wait()

    def check_fullscreen(self, *manager):
        with self.manager(*manager):
            with Shots() as shots, Running("--every", "5", "--fullscreen", "--", FAKE) as show:
                show.await_showing(1)
                # From here on: the manager shows the first window as it likes.
                await_value(lambda: shots.taken and shots.colors()[-1] not in (None, bytes(3)),
                            "a full screen")
                first = len(shots.taken) - 1
                await_value(lambda: len(set(shots.colors()[first:])) >= 4, shots.colors)
                colors = shots.colors()[first:]
            self.keep(manager[0], shots.taken)
            self.assertEqual(len(colors), len(set(colors)), colors)
            self.assertNotIn(None, colors)
            self.assertNotIn(bytes(3), colors)

    @staticmethod
    def keep(name, shots):
        if "KELPIX_PICTURES" in os.environ:
            for number, shot in enumerate(shots):
                pathlib.Path(os.environ["KELPIX_PICTURES"], f"{name}{number:03}.ppm").write_bytes(
                    "P6 {} {} 255\n".format(*SIZE).encode() + shot)

    @staticmethod
    def places():
        """Of the visible windows of the scene: where they are, and how large."""
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", "^kelpix"], check=False,
                               stdout=subprocess.PIPE, text=True).stdout.split()
        places = []
        for window in found:
            text = subprocess.run(["xwininfo", "-id", window], check=False, stdout=subprocess.PIPE,
                                  stderr=subprocess.DEVNULL, text=True).stdout
            places.append(tuple(re.findall(r"(?:Absolute.*|Width|Height): +(\d+)$", text, re.M)))
        return found, places

    def test_openbox(self):
        self.check_fullscreen("openbox", "--config-file", "/etc/xdg/openbox/rc.xml")

    def test_i3(self):
        self.check_fullscreen("i3", "-c", "CONFIG")

    def test_a_window_follows_in_the_place_of_the_one_before(self):
        with self.manager("openbox", "--config-file", "/etc/xdg/openbox/rc.xml"):
            with Running("--every", "5", "--", FAKE) as show:
                show.await_showing(1)
                window = self.places()[0][0]
                subprocess.run(["xdotool", "windowsize", "--sync", window, "220", "120"], check=True)
                subprocess.run(["xdotool", "windowmove", window, "60", "70"], check=True)
                await_value(lambda: self.places()[1][0][2:] == ("220", "120"), self.places)
                place = self.places()[1][0]
                # The manager shows its pointer for a moment when a window opens.
                with Shots(pointer=False) as shots:
                    show.await_showing(4)
                    show.scene()
                    await_value(lambda: self.places()[1] == [place], self.places)
                self.assertEqual(show.status()["faults"], "0")
        self.keep("window", shots.taken)
        # What can be seen within that place is of one showing after the other.
        left, top, width, height = map(int, place)
        colors = []
        for shot in shots.taken:
            rows = [shot[3 * (y * SIZE[0] + left):3 * (y * SIZE[0] + left + width)]
                    for y in range(top, top + height)]
            self.assertTrue(rows == [rows[0][:3] * width] * height)
            if rows[0][:3] not in colors[-1:]:
                colors.append(rows[0][:3])
        self.assertEqual(len(colors), len(set(colors)), colors)
        self.assertGreaterEqual(len(colors), 3)
        self.assertNotIn(bytes(3), colors)


class Scene(unittest.TestCase):
    """The scene itself."""

    def test_three_showings_of_a_short_voice(self):
        with tempfile.TemporaryDirectory() as name:
            folder = pathlib.Path(name, "reef")
            subprocess.run([MEDIA_PROGRAM, "--out", folder, "--seconds", "8"], check=True,
                           stdout=subprocess.DEVNULL)
            with Shots() as shots, Running("--media", folder, "--fullscreen", "--zoom", "3",
                                           "--patience", "120", "--", LAUNCHER, folder) as show:
                show.await_showing(1)
                await_value(lambda: shots.taken and self.is_scene(shots.taken[-1]), "the scene")
                first = len(shots.taken) - 1
                show.await_showing(3)
                self.assertGreater(int(show.status()["memory_mib"]), 100)
                self.assertEqual(show.status()["faults"], "0")
                # Of a software renderer, and not said for each showing.
                self.assertLessEqual(show.log().count("kelpix: llvmpipe: "), 1)
                taken = shots.taken[first:]
                self.assertEqual(show.end(), (0, []))
        self.assertGreater(len(taken), 30)
        pictures = os.environ.get("KELPIX_PICTURES")
        for number, shot in enumerate(taken):
            if pictures:
                pathlib.Path(pictures, f"shot{number:04}.ppm").write_bytes(
                    "P6 {} {} 255\n".format(*SIZE).encode() + shot)
            self.assertTrue(self.is_scene(shot), number)

    @staticmethod
    def is_scene(shot):
        """Whether there is water everywhere, or a fish: nothing is black, nor the clear color."""
        pixels = [shot[i:i + 3] for i in range(0, len(shot), 3 * 7)]
        return sum(pixel in (bytes(3), bytes((5, 26, 38))) for pixel in pixels) < 0.05 * len(pixels)


class Long(unittest.TestCase):
    def test_memory_after_fifty_showings(self):
        def size(process):
            with open(f"/proc/{process}/status", encoding="ascii") as file:
                return int(re.search(r"VmRSS:\s+(\d+)", file.read()).group(1))

        def files(process):
            return len(os.listdir(f"/proc/{process}/fd"))

        with Running("--every", "5", "--fullscreen", "--", FAKE) as show:
            end = time.monotonic() + 50 * 30
            seen = {}
            while show.status().get("showing") != "50":
                self.assertLess(time.monotonic(), end, show.log())
                number = show.status().get("showing")
                if number == "10":
                    # More are open while one showing hands over to the next.
                    seen.setdefault("size", size(show.process.pid))
                    seen["files"] = min(seen.get("files", 99), files(show.process.pid))
                time.sleep(0.2)
            self.assertLessEqual(size(show.process.pid), seen["size"] + 256)
            while files(show.process.pid) > seen["files"]:
                self.assertLess(time.monotonic(), end, show.log())
                time.sleep(0.2)
            self.assertEqual(show.status()["faults"], "0")
            show.scene()
            self.assertEqual(show.end(), (0, []))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[5:]])

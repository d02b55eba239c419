"""Plays the scene with kelpix-live, and sends it OSC messages with oscsend and from sockets.

Usage: live.py KELPIX-LIVE KELPIX-MEDIA MEDIA
Needs an X server without a window manager, xdotool, ImageMagick's import and liblo's oscsend.
Where KELPIX_PICTURES names a folder, a picture with the figures in place is kept there.
"""
import os
import pathlib
import re
import shutil
import socket
import struct
import subprocess
import sys
import tempfile
import unittest

from program import PATIENCE, Program

LIVE, MEDIA_PROGRAM, MEDIA = (str(pathlib.Path(name).resolve()) for name in sys.argv[1:4])
SIDE = 200  # pixels of the window: small ones are drawn fast


def padded(text):
    return text.encode() + b"\0" * (4 - len(text) % 4)


def message(address, *numbers):
    return (padded(address) + padded("," + "f" * len(numbers))
            + b"".join(struct.pack(">f", number) for number in numbers))


def bundle(*messages):
    """What is to be done at once, together."""
    return b"#bundle\0" + struct.pack(">Q", 1) + b"".join(struct.pack(">I", len(m)) + m
                                                         for m in messages)


def is_figure(red, green, blue):
    return blue > 180 and blue > red + 60 and abs(red - green) < 40


class Sender:
    """A socket that asks the program how it does."""

    def __init__(self, port):
        self.port = port
        self.socket = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.socket.settimeout(1)

    def send(self, packet):
        self.socket.sendto(packet, ("127.0.0.1", self.port))

    def status(self):
        """The program's line; empty when there is none yet, or the answer was lost."""
        self.send(message("/status"))
        try:
            answer = self.socket.recv(2000)
        except socket.timeout:
            return ""
        assert answer.startswith(padded("/status") + padded(",s")), answer
        return answer[12:].rstrip(b"\0").decode()

    @staticmethod
    def number(line, name):
        found = re.search(rf"\b{name}=(-?[0-9.]+)", line)
        return float(found.group(1)) if found else None

    @staticmethod
    def figure(line, number):
        """Its state and its place."""
        found = re.search(rf"\bfigure{number}=([a-z]+),(-?[0-9.]+),(-?[0-9.]+)", line)
        return (found.group(1), float(found.group(2)), float(found.group(3))) if found else None


class Live(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.other = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.addCleanup(self.other.close)
        self.other.bind(("127.0.0.1", 0))
        self.port = self.other.getsockname()[1]
        self.sender = Sender(self.port)
        self.addCleanup(self.sender.socket.close)

    def oscsend(self, *words):
        subprocess.run(["oscsend", "127.0.0.1", str(self.port), *words], check=True)

    def await_status(self, condition, what, keep=()):
        """The first status line that meets a condition. Sends the packets of \\p keep before each
        question, which is 20 times a second."""
        def ask():
            for packet in keep:
                self.sender.send(packet)
            line = self.sender.status()
            return line if line and condition(line) else None
        return self.program.await_value(ask, what)

    def await_figure(self, number, state, x, y, keep=()):
        def is_there(line):
            figure = self.sender.figure(line, number)
            return figure and figure[0] == state and abs(figure[1] - x) < 2e-4 \
                and abs(figure[2] - y) < 2e-4
        return self.await_status(is_there, f"figure {number} {state} at {x} {y}", keep)

    def memory(self):
        status = pathlib.Path("/proc", str(self.program.process.pid), "status").read_text()
        return int(re.search(r"VmRSS:\s+([0-9]+)", status).group(1))  # KiB

    def test_a_person_leads_the_figures_and_their_dance_is_recorded(self):
        with Program(LIVE, "--media", MEDIA, "--port", str(self.port), "--seed", "7",
                     "--record", "dance.txt", "--status", "status", cwd=self.folder) as self.program:
            subprocess.run(["xdotool", "windowsize", self.program.window, str(SIDE), str(SIDE)],
                           check=True)
            self.other.close()  # the port is free from now on
            self.figures_go_where_they_are_sent()
            self.a_flood_and_bad_packets_change_nothing()
            self.figures_whose_messages_stop_go_back()
            self.the_view_follows_messages()
            self.the_scene_begins_anew()
            output, errors = self.program.quit()
        self.assertEqual(output, "")
        self.assertEqual(errors, "kelpix-live: another program listens at 127.0.0.1, port "
                         f"{self.port}: messages are heard once it is gone\n"
                         + "".join(f"kelpix-live: the dance is in {self.folder}/{name}.txt\n"
                                   for name in ("dance", "dance-2")))
        self.the_status_file_has_the_latest_line()
        for name in "dance", "dance-2":
            self.the_recording_is_accepted(f"{name}.txt")

    def figures_go_where_they_are_sent(self):
        self.await_status(lambda line: True, "an answer")
        places = {1: (0.125, 0.25), 2: (0.875, 0.25), 3: (0.5, 0.75)}
        for number, (x, y) in places.items():
            self.oscsend(f"/figure/{number}", "ff", str(x), str(y))
        keep = [message(f"/figure/{number}", *place) for number, place in places.items()]
        for number, place in places.items():
            self.await_figure(number, "led", *place, keep)

        def look(picture):
            self.assertEqual((picture.width, picture.height), (SIDE, SIDE))
            for packet in keep:
                self.sender.send(packet)
            for x, y in places.values():
                self.assertTrue(is_figure(*picture.at(int(x * SIDE), int((1 - y) * SIDE))), (x, y))
        self.program.await_look(look)
        if folder := os.environ.get("KELPIX_PICTURES"):
            subprocess.run(["import", "-silent", "-window", self.program.window,
                            f"{folder}/led.png"], check=True)

    def a_flood_and_bad_packets_change_nothing(self):
        before = self.memory()
        line = self.sender.status()
        messages = self.sender.number(line, "messages")
        step = self.sender.number(line, "step")
        packets = [message("/figure/3", i / 100, 0.5) for i in range(100)]
        bad = [b"", b"/figure/1", message("/figure/3", float("nan"), 0.5),
               message("/figure/3", 2, 0.5), message("/figure/4", 0.5, 0.5), b"#bundle\0" + b"\xff" * 40]
        for _ in range(200):
            for packet in packets:
                self.sender.send(packet)
            self.sender.send(bad[_ % len(bad)])
        # It goes on, with the voice, and hears what comes afterwards.
        line = self.await_status(lambda line: self.sender.number(line, "step") > step
                                 and self.sender.number(line, "messages") > messages, "more steps")
        self.await_figure(3, "led", 0.25, 0.5, [message("/figure/3", 0.25, 0.5)])
        self.assertLess(self.memory() - before, 16384)

    def figures_whose_messages_stop_go_back(self):
        self.oscsend("/figure/3/release", "")
        self.await_status(lambda line: all(self.sender.figure(line, number)[0] == "recorded"
                                           for number in (1, 2, 3)), "figures that dance")

    def the_view_follows_messages(self):
        self.oscsend("/view/zoom", "i", "1")
        self.await_status(lambda line: self.sender.number(line, "zoom") == 1.25, "a zoom")

    def the_scene_begins_anew(self):
        step = self.sender.number(self.sender.status(), "step")
        self.oscsend("/seed", "i", "8")
        line = self.await_status(lambda line: self.sender.number(line, "seed") == 8, "another seed")
        self.assertLess(self.sender.number(line, "step"), step)
        self.assertEqual(self.sender.number(line, "zoom"), 1)
        self.await_figure(2, "led", 0.5, 0.5, [message("/figure/2", 0.5, 0.5)])

    def the_status_file_has_the_latest_line(self):
        self.assertRegex((self.folder / "status").read_text(),
                         r"^time=\S+Z frame=\d+ rate=[0-9.]+ seed=8 step=\d+ steps=\d+ figure1=\S+ "
                         r"figure2=\S+ figure3=\S+ zoom=1.00 messages=\d+ dropped=\d+ "
                         r"latency_ms=[0-9.]+\n$")

    def the_recording_is_accepted(self, name):
        media = self.folder / "media"
        shutil.copytree(MEDIA, media, dirs_exist_ok=True)
        shutil.copy(self.folder / name, media / "data" / "danced.txt")
        (media / "data" / "mocap.txt").write_text(
            "MOCAP\n2 3\ndata/danced.txt\ndata/rehearsal.txt\n")
        result = subprocess.run([MEDIA_PROGRAM, "--check", str(media)], capture_output=True,
                                text=True, timeout=PATIENCE)
        self.assertEqual(result.returncode, 0, result.stdout + result.stderr)

    def test_a_scene_that_begins_anew_after_its_voice_is_recorded_and_hears_its_first_message(self):
        media = self.folder / "media"
        shutil.copytree(MEDIA, media)
        voice = media / "sound" / "magpie_vocal.ogg"
        sound = voice.read_bytes()
        voice.write_bytes(sound[:sound.index(b"OggS", 20000)])  # about a second
        self.other.close()
        with Program(LIVE, "--media", str(media), "--port", str(self.port), "--seed", "7",
                     "--record", "dance.txt", cwd=self.folder) as self.program:
            subprocess.run(["xdotool", "windowsize", self.program.window, "100", "100"], check=True)

            def dance(name, *packets):
                for packet in packets:
                    self.sender.send(packet)
                return (self.folder / name).exists()
            self.program.await_value(lambda: dance("dance.txt", message("/figure/1", 0.5, 0.5)),
                                     "a recording of the first voice")
            # A pointer in the window moves for FLTK when the scene before is deleted.
            subprocess.run(["xdotool", "mousemove", "--window", self.program.window, "50", "50"],
                           check=True)
            self.sender.send(bundle(message("/restart"), message("/figure/2", 0.25, 0.5)))
            self.program.await_value(lambda: dance("dance-2.txt"),
                                     "a recording of the second voice")
            self.program.quit()

    def test_what_cannot_be_is_told_in_a_line(self):
        def refusal(*options):
            result = subprocess.run([LIVE, "--media", MEDIA, *options], cwd=self.folder,
                                    capture_output=True, text=True, timeout=PATIENCE)
            self.assertEqual(result.stdout, "")
            self.assertEqual(result.returncode, 1)
            return result.stderr

        self.assertIn("no address of this machine", refusal("--bind", "203.0.113.1"))
        (self.folder / "mine.txt").write_text("mine")
        self.assertEqual(refusal("--record", "mine.txt"),
                         f"kelpix-live: {self.folder}/mine.txt is there already; "
                         "--force replaces it\n")
        os.mkfifo(self.folder / "pipe.txt")
        self.assertEqual(refusal("--record", "pipe.txt", "--force"),
                         f"kelpix-live: cannot write {self.folder}/pipe.txt: not a file\n")
        self.assertEqual(refusal("--media", "nowhere"),
                         "kelpix-live: no media in nowhere: No such file or directory; "
                         '"kelpix-media --out DIR" makes some, --media DIR plays them\n')
        self.assertEqual((self.folder / "mine.txt").read_text(), "mine")


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *sys.argv[4:]])

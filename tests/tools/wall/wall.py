"""Plays walls in windows of one X server: the state of their ranks, their pictures, input, and how
they end.

Usage: wall.py KELPIX-WALL KELPIX-RECORD MEDIA FOREIGN-RAND [TEST ...]
FOREIGN-RAND: what foreign_rand.cpp makes.
Needs an X server without a window manager, Open MPI's mpirun, xdotool and ImageMagick's convert.
"""
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

WALL, RECORD, MEDIA, FOREIGN_RAND = (str(pathlib.Path(name).resolve()) for name in sys.argv[1:5])
HOST = socket.gethostname()[:31]
HAS_OSC = os.environ.get("KELPIX_OSC") == "1"
SEED = "7"
SIDE = 204  # pixels of the whole wall, of each of the walls below
PATIENCE = 240  # seconds


def description(columns, rows, width, height, mullions=(0, 0), host=HOST):
    """A wall of equal tiles, all on one host."""
    text = (f"Cluster TileMap {columns} {rows} Mullions {mullions[0]} {mullions[1]} Nodes 1\n"
            f"Node Hostname {host} Windows {columns * rows}\n")
    for row in range(rows):
        for column in range(columns):
            text += (f"Map {column} {row} Location {column * width} {row * height} {width} {height} "
                     "Cameras 0\n")
    return text


ONE = description(1, 1, SIDE, SIDE)
TWO = description(2, 1, SIDE // 2, SIDE)
# A pitch of 108 pixels, so gaps of 12.
FOUR = description(2, 2, 96, 96, (0.125, 0.125))


def pixels(name):
    """The width and the bytes of a picture, three for each pixel, from the top left."""
    ppm = subprocess.run(["convert", name, "-depth", "8", "ppm:-"], capture_output=True, check=True)
    kind, size, depth, data = ppm.stdout.split(b"\n", 3)
    assert kind == b"P6" and depth == b"255"
    return int(size.split()[0]), data


class Walls(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)

    def path(self, name):
        return str(pathlib.Path(self.folder.name, name))

    def start(self, wall, *options, media=MEDIA, **environment):
        pathlib.Path(self.path("wall.cfg")).write_text(wall)
        return subprocess.Popen(
            [WALL, "--simulate", "--media", media, *options, "wall.cfg"], cwd=self.folder.name,
            env=os.environ | environment, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)

    def finish(self, process):
        """The exit status, and what was printed to standard error."""
        try:
            output, errors = process.communicate(timeout=PATIENCE)
        except subprocess.TimeoutExpired:
            process.terminate()
            output, errors = process.communicate()
            raise AssertionError("the wall did not end:\n" + output + errors) from None
        self.assertEqual(output, "")
        # On a busy machine ranks may wait for each other: Loss looks at these lines.
        return process.returncode, re.sub(r"^kelpix-wall: no answer for .*\n", "", errors,
                                          flags=re.MULTILINE)

    def play(self, wall, *options, **environment):
        status, errors = self.finish(self.start(wall, *options, **environment))
        self.assertEqual((status, errors), (0, ""))

    def lines(self, name):
        return pathlib.Path(self.path(name)).read_text().splitlines()

    def record(self, *options):
        result = subprocess.run([RECORD, "--media", MEDIA, *options], cwd=self.folder.name,
                                capture_output=True, text=True)
        self.assertEqual(result.returncode, 0, result.stderr)
        return result.stdout

    def recorded_state(self, frame, seed=SEED):
        text = self.record("--hash", "--seed", seed, "--size", f"{SIDE}x{SIDE}",
                           "--at", str((frame - 1) / 40))
        self.assertIn(f"frame {frame}\n", text)
        return re.search("^whole +([0-9a-f]{16})$", text, re.MULTILINE).group(1)

    def expect_alike(self, whole, tile, left, top):
        """At most one in a thousand pixels of a tile differs from those of the whole picture, and by
        no more than 1: GL rounds around another origin."""
        whole_width, expected = pixels(self.path(whole))
        width, actual = pixels(self.path(tile))
        count, most = 0, 0
        for row in range(len(actual) // (3 * width)):
            start = 3 * ((top + row) * whole_width + left)
            for column in range(width):
                here = 3 * (row * width + column)
                there = start + 3 * column
                difference = max(abs(actual[here + c] - expected[there + c]) for c in range(3))
                count += difference > 0
                most = max(most, difference)
        self.assertLessEqual(count, len(actual) / 3 / 1000)
        self.assertLessEqual(most, 1)


class Show(Walls):
    FRAMES = 90

    def test_one_two_and_four_ranks_and_the_recorder_show_the_same(self):
        options = ["--virtual", "--seed", SEED, "--frames", str(self.FRAMES)]
        states = []
        for wall in ONE, TWO:
            self.play(wall, *options, "--hash", "states")
            states.append(self.lines("states"))
        self.play(FOUR, *options, "--hash", "states", "--log", "show.log",
                  "--shots", ".", "--shot-at", str(self.FRAMES))
        states.append(self.lines("states"))
        self.assertEqual([int(line.split()[0]) for line in states[0]],
                         list(range(1, self.FRAMES + 1)))
        self.assertEqual(states[0], states[1])
        self.assertEqual(states[0], states[2])
        for frame in 1, 41, self.FRAMES:
            self.assertEqual(states[0][frame - 1].split()[1], self.recorded_state(frame))

        self.record("--png", "whole.png", "--seed", SEED, "--size", f"{SIDE}x{SIDE}",
                    "--at", str((self.FRAMES - 1) / 40))
        for column in 0, 1:
            for row in 0, 1:
                self.expect_alike("whole.png", f"{column}-{row}-{self.FRAMES}.png",
                                  108 * column, 108 * row)
        # The log plays again in the recorder, which compares every state.
        self.record("--replay", "show.log", "--tile", "1", "0", "--png", "tile.png",
                    "--at", str((self.FRAMES - 1) / 40))
        self.expect_alike("tile.png", f"1-0-{self.FRAMES}.png", 0, 0)
        log = pathlib.Path(self.path("show.log"))
        log.write_text(re.sub("^6 [0-9]+ ", "6 2147483647 ", log.read_text(), flags=re.MULTILINE))
        refused = subprocess.run([RECORD, "--media", MEDIA, "--replay", "show.log", "--png", "no.png",
                                  "--at", "1"], cwd=self.folder.name, capture_output=True, text=True)
        self.assertEqual(refused.returncode, 1)
        self.assertIn("frame 6 is of a step that the recording does not have", refused.stderr)


class Input(Walls):
    """A wall with a silent voice, in step with the clock. Its second tile is at (102, 0)."""

    def await_lines(self, process, name, condition, what):
        """The log's lines, once they meet a condition."""
        end = time.monotonic() + PATIENCE
        path = pathlib.Path(self.path(name))
        while time.monotonic() < end and process.poll() is None:
            lines = path.read_text().splitlines() if path.exists() else []
            if condition(lines):
                return lines
            time.sleep(0.05)
        raise AssertionError(f"there was never {what}")

    @staticmethod
    def xdotool(*words):
        subprocess.run(["xdotool", *map(str, words)], check=True)

    def lead(self, process, port):
        """Leads a figure by messages, and lets the scene begin anew. The log has where it is in the
        water, of which 0.9622504 is in the picture."""
        def is_there(line):
            found = re.search(r" steered figure 1 (\S+) (\S+)$", line)
            return found and (abs(float(found.group(1)) - (0.5 - 0.2 * 0.9622504)) < 1e-6
                              and abs(float(found.group(2)) - (0.5 + 0.1 * 0.9622504)) < 1e-6)

        def message(address, *numbers):
            texts = (text.encode() + bytes(4 - len(text) % 4)
                     for text in (address, "," + "f" * len(numbers)))
            return b"".join(texts) + struct.pack(f">{len(numbers)}f", *numbers)

        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sender:
            def send_and_look(lines):
                sender.sendto(message("/figure/1", 0.3, 0.6), ("127.0.0.1", port))
                return any(map(is_there, lines))
            self.await_lines(process, "show.log", send_and_look, "a figure in its place")
            # What comes with the beginning acts on the new scene.
            packet = b"#bundle\0" + struct.pack(">Q", 1) + b"".join(
                struct.pack(">I", len(part)) + part
                for part in (message("/restart"), message("/figure/2", 0.5, 0.5)))
            sender.sendto(packet, ("127.0.0.1", port))

            def begins_with_a_figure(lines):
                anew = [i for i, line in enumerate(lines) if line.endswith(f" anew {SEED} steered")]
                return anew and any(" figure 2 " in line for line in lines[anew[0]:])
            self.await_lines(process, "show.log", begins_with_a_figure, "a beginning with a figure")

    def test_messages_mouse_and_keys_at_the_second_tile_act_on_the_whole_scene(self):
        # As when kelpix-show starts it beside a wall that hangs, and which has the port.
        with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as other:
            other.bind(("127.0.0.1", 0))
            port = other.getsockname()[1]
            osc = ["--osc", str(port)] if HAS_OSC else []
            process = self.start(TWO, "--seed", SEED, "--log", "show.log", *osc)
            self.await_lines(process, "show.log", lambda lines: len(lines) > 20, "a frame")
        if osc:
            self.lead(process, port)
        self.xdotool("mousemove", 150, 30, "click", 4)
        self.await_lines(process, "show.log", lambda lines: any(
            re.search(r" event 19 150 30 \d+ -1", line) for line in lines), "a turn of the wheel")
        # From the second tile to the first one.
        self.xdotool("mousemove", 110, 50, "mousedown", 1, "keydown", "v")
        self.xdotool("mousemove", 60, 80)
        self.await_lines(process, "show.log", lambda lines: any(
            re.search(rf" event 5 60 80 {ord('v')} 0", line) for line in lines), "a drag")
        self.xdotool("keyup", "v", "mouseup", 1)
        # Both windows tell their rate in their titles.
        window = subprocess.run(["xdotool", "search", "--name", r"^kelpix \([0-9.]+ fps\)$"],
                                check=True, capture_output=True, text=True).stdout.split()[1]
        self.xdotool("windowfocus", "--sync", window, "key", "q")
        self.assertEqual(self.finish(process), (
            0, f"kelpix-wall: {HOST}: another program listens at 127.0.0.1, port {port}: messages are "
               "heard once it is gone\n" if osc else ""))
        # All frames are as they were, with this input.
        frames = int(self.lines("show.log")[-1].split()[0])
        self.record("--replay", "show.log", "--png", "last.png", "--at", str((frames - 1) / 40))


class Disagreement(Walls):
    """One rank draws a random number that the others do not, or ends."""

    def play_with_foreign_numbers(self, first, last):
        return self.finish(self.start(
            TWO, "--virtual", "--seed", SEED, "--frames", "40", "--hash", "states", "--log", "show.log",
            LD_PRELOAD=FOREIGN_RAND, FOREIGN_FROM=str(first), FOREIGN_TO=str(last)))

    def test_a_reader_that_ends_a_rank_is_quoted_and_a_full_file_ends_nothing(self):
        process = self.start(TWO, "--virtual", "--frames", "40", "--hash", "/dev/full",
                             LD_PRELOAD=FOREIGN_RAND, FOREIGN_EXIT="20")
        self.assertEqual(self.finish(process), (
            1, "kelpix-wall: cannot write /dev/full: No space left on device; the show goes on "
               f"without it\nkelpix-wall: {HOST}: the media cannot be played: data/nothing.bmp "
               "cannot be read\n"))

    def line(self, frame, end):
        return f"kelpix-wall: frame {frame}: {HOST} (rank 1) differs in random; the wall {end}\n"

    def test_it_is_named_and_the_wall_begins_anew(self):
        self.assertEqual(self.play_with_foreign_numbers(20, 20), (0, self.line(20, "begins anew")))
        self.assertEqual(len(self.lines("states")), 40)
        # The frame after it begins with the next seed, and shows what comes first of it.
        anew = [line for line in self.lines("show.log") if " anew " in line]
        self.assertEqual([line.split()[0] for line in anew], ["21"])
        self.assertTrue(anew[0].endswith(f" anew {int(SEED) + 1}"))
        self.assertEqual(self.lines("states")[20].split()[1],
                         self.recorded_state(1, str(int(SEED) + 1)))
        # From there on all frames are as in a show of their own; before, as in this one's.
        self.record("--replay", "show.log", "--png", "last.png", "--at", str(39 / 40))

    def test_ranks_that_go_on_to_disagree_end_the_wall(self):
        lines = [self.line(frame, "begins anew") for frame in (20, 21, 22)]
        self.assertEqual(self.play_with_foreign_numbers(20, 1000),
                         (3, "".join(lines) + self.line(23, "ends")))


class Loss(Walls):
    """A rank that is killed or stopped."""

    @staticmethod
    def ranks():
        """The process of each rank that this test has started."""
        found = {}
        for folder in pathlib.Path("/proc").iterdir():
            try:
                words = (folder / "environ").read_bytes().split(b"\0")
                if (folder / "cmdline").read_bytes().split(b"\0")[0] != WALL.encode():
                    continue
            except OSError:
                continue
            mine = f"DISPLAY={os.environ['DISPLAY']}".encode() in words
            rank = [word for word in words if word.startswith(b"OMPI_COMM_WORLD_RANK=")]
            if folder.name.isdigit() and mine and rank:
                found[int(rank[0].split(b"=")[1])] = int(folder.name)
        return found

    def play_some_frames(self):
        process = self.start(TWO, "--virtual", "--status", "status")
        path = pathlib.Path(self.path("status"))
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end and not (path.exists() and path.read_text()):
            time.sleep(0.1)
        return process

    def test_a_killed_rank_ends_all(self):
        for rank in 0, 1:
            process = self.play_some_frames()
            os.kill(self.ranks()[rank], signal.SIGKILL)
            self.assertEqual(self.finish(process)[0], 128 + signal.SIGKILL)
            self.assertEqual(self.ranks(), {})
            os.remove(self.path("status"))

    def test_a_stopped_rank_is_named_and_may_go_on(self):
        process = self.play_some_frames()
        ranks = self.ranks()
        os.kill(ranks[1], signal.SIGSTOP)
        # At the start, on a busy machine, ranks wait too.
        said = iter(process.stderr.readline, "")
        self.assertIn(f"kelpix-wall: no answer for 3 s from {HOST} (rank 1)\n", said)
        before = self.lines("status")
        os.kill(ranks[1], signal.SIGCONT)
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end and self.lines("status") == before:
            time.sleep(0.1)
        self.assertNotEqual(self.lines("status"), before)
        process.terminate()
        self.finish(process)


class Start(Walls):
    """What is missing is said in one line that names the host, and the wall ends."""

    def expect_line(self, process, line):
        status, errors = self.finish(process)
        self.assertNotEqual(status, 0)
        self.assertEqual(errors, f"kelpix-wall: {line}\n")

    def test_a_folder_without_media(self):
        self.expect_line(self.start(TWO, "--virtual", media="/nowhere"),
                         f"{HOST}: no media in /nowhere: No such file or directory")

    def test_a_folder_for_pictures_that_is_not_there(self):
        self.expect_line(self.start(TWO, "--virtual", "--shots", "/nowhere", "--shot-at", "1"),
                         f"{HOST}: no folder /nowhere for the pictures")

    def test_a_hash_file_that_cannot_be_written(self):
        self.expect_line(self.start(TWO, "--virtual", "--hash", "/dev/full/hash"),
                         f"{HOST}: cannot write /dev/full/hash: Not a directory")

    def test_a_medium_that_cannot_be_played(self):
        media = pathlib.Path(self.path("media"))
        shutil.copytree(MEDIA, media, copy_function=os.symlink)
        # The name of a recording and what is wrong with it are in two lines, the one of the voice is on
        # standard error.
        (media / "data" / "dance.txt").unlink()
        self.expect_line(self.start(TWO, "--virtual", media=str(media)),
                         f"{HOST}: the media cannot be played: Loading mocap file 0, data/dance.txt: "
                         "Couldn't read file.")
        voice = media / "sound" / "magpie_vocal.ogg"
        voice.unlink()
        voice.write_bytes(b"no voice")
        self.expect_line(self.start(TWO, "--virtual", media=str(media)),
                         f"{HOST}: the media cannot be played: Error opening "
                         "sound/magpie_vocal.ogg for decoding...")

    def test_a_display_that_is_not_there(self):
        self.expect_line(self.start(TWO, "--virtual", DISPLAY=":9999"),
                         f"{HOST}: no display: Can't open display: :9999")


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[5:])

"""Checks kelpix-record --live: what it writes while it plays, how it ends, and the guide's command.

Usage: live.py PROGRAM MEDIA GUIDE
"""
import os
import pathlib
import pty
import re
import subprocess
import sys
import tempfile
import time
import unittest

PROGRAM, MEDIA, GUIDE = (pathlib.Path(argument) for argument in sys.argv[1:])
SIZE = 64
FRAME = 4 * SIZE * SIZE  # bytes
OPTIONS = ["--media", MEDIA, "--size", f"{SIZE}x{SIZE}", "--at", "3"]


def live(*options, **streams):
    return subprocess.Popen([PROGRAM, *OPTIONS, "--live", *options], stderr=subprocess.PIPE,
                            **streams)


def converted(data, *options):
    """What ffmpeg makes of a film's bytes."""
    return subprocess.run(["ffmpeg", "-v", "error", *options, "-f", "rawvideo", "-"], input=data,
                          check=True, capture_output=True).stdout


class Live(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def film(self, seconds):
        """The frames of a film of that length, without alpha."""
        path = self.folder / "film.nut"
        subprocess.run([PROGRAM, *OPTIONS, "--out", path, "--seconds", seconds, "--", "-c:v",
                        "rawvideo", "-pix_fmt", "rgb24"], check=True, capture_output=True)
        return converted(b"", "-i", path, "-pix_fmt", "rgb24")

    def test_a_slow_reader_slows_the_scene_and_loses_no_frame(self):
        with live("raw", "--seconds", "1", stdout=subprocess.PIPE) as process:
            frames = process.stdout.read(FRAME)
            time.sleep(2.5)  # more than the second that is made up for
            frames += process.stdout.read()
            messages = process.stderr.read().decode()
        self.assertEqual(process.returncode, 0, messages)
        self.assertEqual(len(frames), 40 * FRAME)
        pixels = bytes(byte for at, byte in enumerate(frames) if at % 4 < 3)
        self.assertTrue(pixels == self.film("1"), "the frames are not those of the film")
        self.assertRegex(messages, r"^kelpix-record: the stream is slower than real time: [^\n]*\n"
                                   r"40 frames of 64 x 64, [\d.]+ s late\n$")

    def test_y4m_shows_the_same_frames(self):
        stream = self.folder / "stream.y4m"
        with open(stream, "wb") as file, live("y4m", "--seconds", "0.2", stdout=file) as process:
            messages = process.stderr.read().decode()
        self.assertEqual(process.returncode, 0, messages)
        luma = converted(stream.read_bytes(), "-f", "yuv4mpegpipe", "-i", "-", "-pix_fmt", "gray")
        raw = self.film("0.2")
        expected = converted(raw, "-f", "rawvideo", "-pix_fmt", "rgb24", "-s", f"{SIZE}x{SIZE}",
                             "-framerate", "40", "-i", "-", "-pix_fmt", "gray")
        self.assertEqual(len(luma), 8 * SIZE * SIZE)
        self.assertLessEqual(max(abs(a - b) for a, b in zip(luma, expected)), 2)

    def test_it_ends_when_nobody_reads_any_more(self):
        with live("raw", stdout=subprocess.PIPE) as process:
            self.assertEqual(len(process.stdout.read(FRAME)), FRAME)
            process.stdout.close()
            # A busy machine may be late.
            self.assertRegex(process.stderr.read().decode(), r"^(|[^\n]* slower than real time[^\n]*\n)$")
        self.assertEqual(process.returncode, 141)

    def test_a_signal_ends_it_while_its_reader_rests(self):
        with live("raw", stdout=subprocess.PIPE) as process:
            process.stdout.read(FRAME)
            process.terminate()
            self.assertEqual(process.wait(), -15)

    def test_it_does_not_write_to_a_terminal(self):
        ours, theirs = pty.openpty()
        with live("y4m", stdout=theirs) as process:
            messages = process.stderr.read().decode()
        os.close(theirs)
        os.close(ours)
        self.assertEqual(process.returncode, 2)
        self.assertEqual(messages, "kelpix-record: --live writes to standard output: lead that to a "
                                   "program or a file\nkelpix-record --help lists the options.\n")

    def test_after_the_voice_there_is_none_unless_it_has_a_length(self):
        late = ["--at", "121", "--fps", "20"]
        with live("raw", *late, stdout=subprocess.PIPE) as process:
            self.assertEqual(process.stdout.read(), b"")
            self.assertEqual(process.stderr.read().decode(), "kelpix-record: the voice has ended by "
                             "then; --seconds says how long to go on\n")
        self.assertEqual(process.returncode, 1)

    def test_the_guides_command_streams(self):
        """The command as it stands, but short, small and to a file."""
        command = re.search(r"```sh\n(kelpix-record --live .*?)```", GUIDE.read_text(), re.S)[1]
        film = self.folder / "film.flv"
        short = command.replace("--live y4m", f"--media {MEDIA} --live y4m --seconds 2")
        short = short.replace("--size 1280x720", "--size 64x64").replace("rtmp://HOST/APP/KEY", str(film))
        self.assertIn(str(film), short)
        path = f"{PROGRAM.parent}:{os.environ['PATH']}"
        subprocess.run(["sh", "-eu", "-c", short], check=True, capture_output=True,
                       env=dict(os.environ, PATH=path))
        probe = subprocess.run(["ffprobe", "-v", "error", "-count_frames", "-show_entries",
                                "stream=codec_name,width,height,pix_fmt,r_frame_rate,nb_read_frames",
                                "-of", "compact=p=0:nk=1", film], check=True, capture_output=True)
        self.assertEqual(probe.stdout.decode().split("\n")[0], "h264|64|64|yuv420p|40/1|80")


unittest.main(argv=sys.argv[:1])

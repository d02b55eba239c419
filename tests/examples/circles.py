"""Checks the example circles.py, and the Python of docs/live.md: what they send is read here.

Usage: circles.py EXAMPLES GUIDE
"""
import math
import pathlib
import re
import signal
import socket
import struct
import subprocess
import sys
import unittest

EXAMPLES, GUIDE = (pathlib.Path(argument) for argument in sys.argv[1:])
PATIENCE = 60  # seconds

# For the programs that are started, wherever this one is.
signal.signal(signal.SIGINT, signal.default_int_handler)


class Circles(unittest.TestCase):
    def setUp(self):
        self.socket = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.addCleanup(self.socket.close)
        self.socket.bind(("127.0.0.1", 0))
        self.socket.settimeout(PATIENCE)
        self.port = self.socket.getsockname()[1]

    def start(self, *command):
        process = subprocess.Popen([sys.executable, "-B", *command], stdout=subprocess.PIPE,
                                   stderr=subprocess.PIPE, text=True)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return process

    def receive(self):
        """The next message as (address, numbers)."""
        packet, self.sender = self.socket.recvfrom(1000)
        address = packet[:packet.index(0)]
        tags = packet[len(pad(address)):]
        tags = tags[:tags.index(0)]
        numbers = packet[len(pad(address) + pad(tags)):]
        self.assertEqual(packet, pad(address) + pad(tags) + numbers)
        self.assertEqual(tags, b"," + b"f" * (len(numbers) // 4))
        return address.decode(), struct.unpack(f">{len(numbers) // 4}f", numbers)

    def test_the_figures_swim_in_circles(self):
        process = self.start(EXAMPLES / "circles.py", "127.0.0.1", str(self.port))
        for _ in range(20):
            for figure in (1, 2, 3):
                address, (x, y) = self.receive()
                self.assertEqual(address, f"/figure/{figure}")
                self.assertAlmostEqual(math.hypot(x - 0.5, y - 0.5), 0.15 + 0.05 * figure, 5)
                self.assertTrue(0 < x < 1 and 0 < y < 1)
        process.send_signal(signal.SIGINT)
        released = set()
        while len(released) < 3:
            address, numbers = self.receive()
            if not numbers:
                released.add(address)
        self.assertEqual(released, {f"/figure/{figure}/release" for figure in (1, 2, 3)})
        self.assertEqual(process.wait(PATIENCE), 0)
        self.assertEqual(process.stderr.read(), "")

    def test_the_python_of_the_guide_sends_and_asks(self):
        blocks = re.findall(r"```python\n(.*?)```", GUIDE.read_text(), re.DOTALL)
        self.assertEqual(len(blocks), 1)
        self.assertIn(", 9000)", blocks[0])
        process = self.start("-c", blocks[0].replace(", 9000)", f", {self.port})"))
        self.assertEqual(self.receive(), ("/figure/1", (0.25, 0.75)))
        self.assertEqual(self.receive(), ("/status", ()))
        self.socket.sendto(b"/status\0,s\0\0up\0\0", self.sender)
        self.assertEqual(process.wait(PATIENCE), 0)


def pad(text):
    return text + bytes(4 - len(text) % 4)


unittest.main(argv=sys.argv[:1])

"""Tests the relay between a command and the service manager.

Usage: notify_relay.py RELAY
"""
import os
import pathlib
import signal
import socket
import struct
import subprocess
import sys
import tempfile
import time
import unittest

RELAY = sys.argv.pop()
PATIENCE = 240  # seconds, on a machine that does much else
NOBODY = 65534

# Sends its arguments to the service manager.
TELL = """
import os, socket, sys
address = os.environ["NOTIFY_SOCKET"].replace("@", "\\0", 1)
for text in sys.argv[1:]:
    socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM).sendto(text.encode(), address)
"""


class Relay(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.address = f"{folder.name}/manager"
        self.manager = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        self.addCleanup(self.manager.close)
        self.manager.bind(self.address)
        self.manager.setsockopt(socket.SOL_SOCKET, socket.SO_PASSCRED, 1)
        self.manager.settimeout(PATIENCE)

    def start(self, *command):
        process = subprocess.Popen([RELAY, *command], stdout=subprocess.PIPE, text=True,
                                   env=dict(os.environ, NOTIFY_SOCKET=self.address))
        self.addCleanup(process.stdout.close)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        return process

    def heard(self):
        """The next message, and the process that has sent it."""
        text, control, _, _ = self.manager.recvmsg(4096, 1024)
        return text.decode(), [struct.unpack("3i", data)[0] for _, _, data in control]

    def test_it_tells_in_its_own_name_and_ends_as_the_command(self):
        for end, status in (("exit 7", 7), ("kill -9 $$", 137)):
            process = self.start("sh", "-c", f'"$0" -c "$1" READY=1 WATCHDOG=1; {end}',
                                 sys.executable, TELL)
            self.assertEqual(self.heard(), ("READY=1", [process.pid]))
            self.assertEqual(self.heard(), ("WATCHDOG=1", [process.pid]))
            self.assertEqual(process.wait(PATIENCE), status)

    @unittest.skipUnless(os.geteuid() == 0, "needs another user")
    def test_it_does_not_speak_for_another_user(self):
        process = self.start(
            "sh", "-c", f'setpriv --reuid={NOBODY} --regid={NOBODY} --clear-groups "$0" -c "$1" '
                        'STOPPING=1 && "$0" -c "$1" READY=1', sys.executable, TELL)
        self.assertEqual(self.heard(), ("READY=1", [process.pid]))
        self.assertEqual(process.wait(PATIENCE), 0)

    def test_it_hands_signals_on(self):
        process = self.start("sh", "-c", "trap 'exit 5' TERM; echo; while :; do sleep 0.1; done")
        process.stdout.readline()
        process.terminate()
        self.assertEqual(process.wait(PATIENCE), 5)

    def test_the_command_does_not_outlive_it(self):
        process = self.start("sh", "-c", "trap '' TERM; echo $$; exec sleep 600")
        command = pathlib.Path("/proc", process.stdout.readline().strip())
        process.send_signal(signal.SIGKILL)
        process.wait()
        end = time.monotonic() + PATIENCE
        # Whoever adopts it may not fetch it.
        while command.exists() and ") Z " not in (command / "stat").read_text():
            self.assertLess(time.monotonic(), end, "it still runs")
            time.sleep(0.05)


unittest.main()

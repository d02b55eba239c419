#!/usr/bin/env python3
"""Lets the figures of kelpix-live swim in circles, until Ctrl-C.

usage: circles.py [ADDRESS [PORT]]
"""
import argparse
import math
import socket
import struct
import time

RATE = 40  # places a second, as many as the scene has updates
SECONDS_A_CIRCLE = 8


def message(address, *numbers):
    """The bytes of an OSC message: texts end in one to four zeros, numbers have four bytes."""
    types = "," + "f" * len(numbers)
    texts = (text.encode() + bytes(4 - len(text) % 4) for text in (address, types))
    return b"".join(texts) + struct.pack(f">{len(numbers)}f", *numbers)


def place(figure, seconds):
    """A circle around the middle of the picture for each figure; they swim a third apart."""
    angle = math.tau * (seconds / SECONDS_A_CIRCLE + figure / 3)
    radius = 0.15 + 0.05 * figure
    return 0.5 + radius * math.cos(angle), 0.5 + radius * math.sin(angle)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("address", nargs="?", default="127.0.0.1")
    parser.add_argument("port", nargs="?", type=int, default=9000)
    options = parser.parse_args()
    scene = options.address, options.port
    sender = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    try:
        while True:
            for figure in (1, 2, 3):
                sender.sendto(message(f"/figure/{figure}", *place(figure, time.monotonic())), scene)
            time.sleep(1 / RATE)
    except KeyboardInterrupt:
        for figure in (1, 2, 3):
            sender.sendto(message(f"/figure/{figure}/release"), scene)


main()

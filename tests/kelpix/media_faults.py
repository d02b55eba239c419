"""media_faults.py FAULTS.md MEDIA PROGRAM [--few]: goes through the table of faults.

Makes each fault of the table in a copy of the media, starts the program there, and compares how it
ends and what it prints with the row. Faults that the program survives share a start, a fault to each
file. Sounds that are not at fault are shortened: decoding them is what a start takes longest for.
--few leaves most of the places out at which a file can be cut.

Needs an X server without a window manager, xdotool, and setpriv when it is run as root.
"""
import collections
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import threading
import time
from concurrent.futures import ThreadPoolExecutor

PATIENCE = 300  # seconds until the program has done what is awaited
PLACES = 16  # cut n keeps the first n seventeenths of a file
SOUNDS = ("sound/magpie_vocal.ogg", "sound/bubbles_sound.ogg")
PICTURES = ("data/underwater.jpg", "data/fish0.png", "data/bubble.png")
RECORDINGS = ("data/dance.txt", "data/rehearsal.txt")
FONT = "fonts/ChalkboardBold.ttf"
SIZE = "size of sensorDataList = N"
FILES = SOUNDS + PICTURES + RECORDINGS + ("data/mocap.txt", FONT)
KINDS = ["missing", "empty", "directory", "unreadable"] + [f"cut {n}" for n in
                                                           range(1, PLACES + 1)]
# Without the two capabilities the permissions of a file bind root too.
AS_ANYBODY = ["setpriv", "--bounding-set", "-dac_override,-dac_read_search", "--inh-caps",
              "-dac_override,-dac_read_search"] if os.geteuid() == 0 else []

Row = collections.namedtuple("Row", "status messages")
keyboard = threading.Lock()  # one window at a time has the focus


def kinds_of(text):
    """"cut 2-4" is three faults."""
    match = re.fullmatch(r"cut (\d+)-(\d+)", text)
    if not match:
        return [text]
    return [f"cut {n}" for n in range(int(match[1]), int(match[2]) + 1)]


def read_table(path):
    """The rows by (file, fault). Their status is None where the program runs on, or ends late: after
    Q was pressed here, but ProgramTest waits for such an end."""
    rows = {}
    for line in pathlib.Path(path).read_text(encoding="utf-8").splitlines():
        cells = [cell.strip() for cell in line.strip().strip("|").split("|")]
        if len(cells) != 5 or not cells[0].startswith("`"):
            continue
        goes_on = cells[2] in ("runs on", "ends late, 1", "ends late, 1, or runs on")
        status = None if goes_on else int(cells[2].removeprefix("ends, "))
        row = Row(status, re.findall("`([^`]*)`", cells[3]))
        for kind in kinds_of(cells[1]):
            for file in re.findall("`([^`]*)`", cells[0]):
                assert (file, kind) not in rows, f"{file}, {kind} stands twice in the table"
                rows[file, kind] = row
    wanted = {(file, kind) for file in FILES for kind in KINDS}
    assert set(rows) == wanted, f"the table lacks or invents {set(rows) ^ wanted}"
    return rows


def break_file(path, kind):
    whole = path.read_bytes()
    path.unlink()
    if kind == "missing":
        return
    if kind == "directory":
        path.mkdir()
        return
    words = kind.split()
    if kind == "empty":
        whole = b""
    elif words[0] == "cut":
        whole = whole[:len(whole) * int(words[1]) // (PLACES + 1)]
    path.write_bytes(whole)
    if kind == "unreadable":
        path.chmod(0)


class Start:
    """One start of the program in a folder with these faults (by file)."""

    def __init__(self, media, program, faults):
        self.faults = faults
        with tempfile.TemporaryDirectory() as folder:
            self.folder = pathlib.Path(folder)
            for part in ("data", "fonts", "sound"):
                shutil.copytree(media / part, self.folder / part)
            # What a bad recording does depends on whether the voice still plays.
            if not set(faults) & set(RECORDINGS):
                for sound in set(SOUNDS) - set(faults):
                    break_file(self.folder / sound, "cut 1")
            for file, kind in faults.items():
                break_file(self.folder / file, kind)
            self.run(program)

    def run(self, program):
        environment = dict(os.environ, MESA_SHADER_CACHE_DISABLE="true",
                           ASAN_OPTIONS=os.environ.get("ASAN_OPTIONS", "") + ":detect_leaks=0")
        out_path, err_path = self.folder / "out", self.folder / "err"
        with open(out_path, "wb") as out, open(err_path, "wb") as err:
            process = subprocess.Popen(AS_ANYBODY + [program], cwd=self.folder, stdout=out,
                                       stderr=err, env=environment)
        end = time.monotonic() + PATIENCE
        while process.poll() is None and time.monotonic() < end:
            # After the bodies of the three figures, the bubbles' picture is what is loaded last.
            if "loaded texture data." in out_path.read_text().split("-- Generate ")[-1] and \
                    out_path.read_text().count("-- Generate ") == 3:
                break
            time.sleep(0.02)
        self.runs_on = process.poll() is None
        if self.runs_on:
            self.press_q(process)
        try:
            self.status = process.wait(PATIENCE)
        except subprocess.TimeoutExpired:
            process.kill()
            self.status = f"{process.wait()}, killed after {PATIENCE} s"
        self.lines = (out_path.read_text() + err_path.read_text()).splitlines()

    def press_q(self, process):
        """Presses q once there is a window, and waits for the end."""
        search = ["xdotool", "search", "--onlyvisible", "--all", "--pid", str(process.pid), "--name",
                  "^kelpix \\("]
        end = time.monotonic() + PATIENCE
        while process.poll() is None and time.monotonic() < end:
            windows = subprocess.run(search, capture_output=True, text=True).stdout.split()
            if windows:
                with keyboard:
                    # Not --sync: a window that is gone never gets the focus.
                    subprocess.run(["xdotool", "windowfocus", windows[0], "key", "q"],
                                   capture_output=True)
            time.sleep(0.2)

    def messages(self, normal):
        """The lines that a start without faults does not print, but for the list of what is
        missing."""
        lines = list(self.lines)
        if lines.count("kelpix: missing in this folder:") == 1:
            first = lines.index("kelpix: missing in this folder:")
            last = next(i for i in range(first, len(lines)) if lines[i].startswith("Start kelpix"))
            self.missing = sorted(line.strip() for line in lines[first + 1:last])
            del lines[first:last + 1]
        else:
            self.missing = []
        return sorted((collections.Counter(lines) - collections.Counter(normal.lines)).elements())


def expected_missing(faults):
    return sorted(file for file, kind in faults.items()
                  if kind in ("missing", "directory") and file not in RECORDINGS)


def equal(line, message):
    """N in a message stands for a number, NAME for a part of a file name."""
    pattern = re.sub(r"\bN\b", "[0-9]+", re.escape(message)).replace("NAME", "[a-z/.]*")
    return re.fullmatch(pattern, line)


def expected_messages(rows):
    messages = [message for row in rows for message in row.messages]
    # All recordings together have one size.
    while messages.count(SIZE) > 1:
        messages.remove(SIZE)
    return sorted(messages)


def difference(start, normal, rows):
    """What a start did otherwise than its rows say; empty when it did as they say."""
    ends = [row.status for row in rows if row.status is not None]
    status = None if start.runs_on and start.status == 0 else start.status
    messages = start.messages(normal)
    wanted = expected_messages(rows)
    found = []
    if status != (ends[0] if ends else None):
        found.append(f"it {'runs on' if start.runs_on else 'ends'} (status {start.status})")
    if len(messages) != len(wanted) or not all(map(equal, messages, wanted)):
        found.append(f"prints {messages} in place of {wanted}")
    if start.missing != expected_missing(start.faults):
        found.append(f"lists as missing {start.missing}")
    return "; ".join(found)


def expect_unreadable_is_possible():
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder) / "file"
        path.write_bytes(b"x")
        path.chmod(0)
        cat = subprocess.run(AS_ANYBODY + ["cat", path], capture_output=True)
    assert cat.returncode == 1, \
        f"permissions do not keep anybody from reading a file here: {cat}"


def main():
    table, media, program = sys.argv[1], pathlib.Path(sys.argv[2]), sys.argv[3]
    rows = read_table(table)
    kinds = list(KINDS)
    if "--few" in sys.argv:
        kinds = [kind for kind in KINDS if not kind.startswith("cut") or int(kind[4:]) % 5 == 1]
    expect_unreadable_is_possible()

    starts = []
    for kind in kinds:
        survived = {file: kind for file in FILES if rows[file, kind].status is None}
        sounds = {file: kind for file in SOUNDS if file in survived}
        others = {file: kind for file in survived if file not in sounds}
        starts += [others] if others else []
        for file in FILES:
            if file not in survived:
                # A start without a font gets as far as the first frame.
                starts.append({file: kind} | (sounds if file == FONT else {}))

    normal = Start(media, program, {})
    assert normal.runs_on and normal.status == 0, normal.lines
    failures = 0
    with ThreadPoolExecutor(2) as pool:
        for start in pool.map(lambda faults: Start(media, program, faults), starts):
            problem = difference(start, normal, [rows[fault] for fault in start.faults.items()])
            if problem:
                failures += 1
                print(f"{start.faults}: {problem}", flush=True)
    print(f"{len(starts)} starts, {failures} otherwise than {table} says")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())

"""What tests of programs share: a program with a window, its keys, and its picture.

They need an X server without a window manager, xdotool and ImageMagick's import.
"""
import subprocess
import tempfile
import time

PATIENCE = 240  # seconds that a program under the sanitizers may take to do what is awaited
BACKGROUND = (5, 26, 38)  # the window's clear color


class Picture:
    """A window's pixels, the first row at the top."""

    def __init__(self, ppm):
        kind, size, depth, self.bytes = ppm.split(b"\n", 3)
        assert kind == b"P6" and depth == b"255", ppm[:32]
        self.width, self.height = map(int, size.split())

    def at(self, x, y):
        start = 3 * (self.width * y + x)
        return tuple(self.bytes[start:start + 3])

    def places(self, condition, step=4):
        """The places (x, y) of a grid of pixels whose color (r, g, b) meets a condition."""
        return [(x, y) for y in range(0, self.height, step) for x in range(0, self.width, step)
                if condition(*self.at(x, y))]


class Program:
    """A running program with one window. Use it in a with statement, which ends it at the latest."""

    def __init__(self, *command, cwd=None, env=None, title="^kelpix \\("):
        self.title = title
        self.output = tempfile.NamedTemporaryFile()
        self.errors = tempfile.NamedTemporaryFile()
        self.process = subprocess.Popen(command, cwd=cwd, env=env, stdout=self.output,
                                        stderr=self.errors)
        try:
            self.window = self.await_value(self.find_window, "a window")
        except BaseException:
            self.__exit__()
            raise

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        self.output.close()
        self.errors.close()

    def find_window(self):
        search = ["xdotool", "search", "--onlyvisible", "--name", self.title]
        return subprocess.run(search, capture_output=True, text=True).stdout.split("\n")[0]

    def await_value(self, ask, what):
        """Asks until there is an answer."""
        end = time.monotonic() + PATIENCE
        while time.monotonic() < end:
            if self.process.poll() is not None:
                raise AssertionError(f"the program ended while {what} was awaited:\n"
                                     + self.printed(self.output) + self.printed(self.errors))
            answer = ask()
            if answer:
                return answer
            time.sleep(0.05)
        raise AssertionError(f"there was never {what}:\n"
                             + self.printed(self.output) + self.printed(self.errors))

    @staticmethod
    def printed(file):
        with open(file.name, encoding="utf-8") as contents:
            return contents.read()

    def picture(self):
        grab = ["import", "-silent", "-window", self.window, "-depth", "8", "ppm:-"]
        return Picture(subprocess.run(grab, capture_output=True, check=True).stdout)

    def await_picture(self, condition, what):
        """The first picture that meets a condition."""
        def ask():
            picture = self.picture()
            return picture if condition(picture) else None
        return self.await_value(ask, what)

    def await_look(self, check):
        """The first picture on which check(picture) does not fail. A picture that is taken while a
        frame is on its way to the screen holds only part of it, so one failure proves nothing."""
        end = time.monotonic() + PATIENCE
        while True:
            picture = self.picture()
            try:
                check(picture)
                return picture
            except AssertionError:
                if time.monotonic() > end or self.process.poll() is not None:
                    raise
            time.sleep(0.05)

    def press(self, *keys):
        subprocess.run(["xdotool", "windowfocus", "--sync", self.window, "key", *keys], check=True)

    def click(self, x, y, button=3):
        """Presses and releases a button, the right one if no other is named; 5 turns the wheel down."""
        subprocess.run(["xdotool", "mousemove", "--window", self.window, str(x), str(y),
                        "click", str(button)], check=True)

    def quit(self):
        """Presses q. Returns what the program has printed, and its error messages."""
        self.press("q")
        status = self.process.wait(PATIENCE)
        output, errors = self.printed(self.output), self.printed(self.errors)
        if status != 0:
            raise AssertionError(f"the exit status is {status}:\n{output}{errors}")
        return output, errors

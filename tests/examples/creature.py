"""Usage: creature.py VOICE PROGRAM, with an Ogg file of two minutes"""
import pathlib
import subprocess
import sys
import tempfile
import unittest

from program import Program

PROGRAM = sys.argv.pop()
VOICE = pathlib.Path(sys.argv.pop()).resolve()

# Where the three sensors shall be, in world units, and how the recording has to have them.
PLACES = [(0.25, 0.75), (0.75, 0.75), (0.5, 0.3)]
SHIFTS = [(0.6, -0.1), (0.55, -0.1), (0.5, -0.1)]
RECORDED = [((x - dx) / 0.45, (y - dy) / 0.45) for (x, y), (dx, dy) in zip(PLACES, SHIFTS)]
CENTRE = (0.5, 0.6)


def pixel(x, y):
    """A place of the world: scaled by 1.2, in the middle, 740 / 1.1547 pixels to a unit."""
    scale = 1.2 * 740 / 1.1547
    return 370 + scale * (x - 0.5), 370 - scale * (y - 0.5)


def is_body(r, g, b):
    return r > 80 and g < 30 and b < 30


def is_figure(r, g, b):
    return b > r + 30 and b > g + 30


def middle(places):
    return tuple(sum(values) / len(places) for values in zip(*places))


class Creature(unittest.TestCase):
    def make_media(self, folder):
        (folder / "data").mkdir()
        (folder / "sound").mkdir()
        (folder / "sound/magpie_vocal.ogg").symlink_to(VOICE)
        numbers = ["0"]
        for x, y in RECORDED:
            numbers += [f"{x:.6f}", f"{y:.6f}", "0", "0", "0", "0"]
        record = " ".join(numbers + 6 * ["0"]) + "\n"
        # 90 records a second, since a record that is shown twice shrinks.
        (folder / "data/still.txt").write_text(10801 * record)
        (folder / "data/mocap.txt").write_text("MOCAP\n1 3\ndata/still.txt\n")
        for colour, name in (("rgba(255,0,0,1)", "png32:data/squid.png"),
                             ("black", "data/underwater.jpg")):
            subprocess.run(["convert", "-size", "8x8", f"xc:{colour}", name], cwd=folder,
                           check=True)

    def is_settled(self, picture):
        body = picture.places(is_body)
        if not body:
            return False
        x, y = middle(body)
        expected_x, expected_y = pixel(*CENTRE)
        # The lines, white over it, move the middle of what is red by a few pixels.
        return abs(x - expected_x) < 12 and abs(y - expected_y) < 12

    def test_eases_towards_the_centre_of_three_figures(self):
        with tempfile.TemporaryDirectory() as folder:
            self.make_media(pathlib.Path(folder))
            with Program(PROGRAM, folder) as program:
                picture = program.await_picture(self.is_settled, "a creature at the centre")
                width = 0.4 * 1.2 * 740 / 1.1547
                body = picture.places(is_body)
                self.assertGreater(16 * len(body), 0.7 * width * width)
                self.assertLess(16 * len(body), 1.1 * width * width)
                for place in PLACES:
                    x, y = pixel(*place)
                    self.assertTrue([at for at in picture.places(is_figure, step=2)
                                     if abs(at[0] - x) < 30 and abs(at[1] - y) < 30], place)
                output, errors = program.quit()
        self.assertTrue(output.startswith("creature: "))
        self.assertIn("\n  q      ends\n", output)
        self.assertEqual(errors, "")

    def test_reports_a_missing_folder(self):
        result = subprocess.run([PROGRAM, "/nonexistent"], capture_output=True, text=True)
        self.assertEqual(result.stderr, "creature: /nonexistent: No such file or directory\n")
        self.assertEqual(result.returncode, 1)


unittest.main()

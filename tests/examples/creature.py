"""Usage: creature.py VOICE PROGRAM, with an Ogg file of two minutes"""
import pathlib
import subprocess
import sys
import tempfile
import unittest

from program import Program

PROGRAM = sys.argv.pop()
VOICE = pathlib.Path(sys.argv.pop()).resolve()

# A sensor shrinks a record each time that an update meets it, towards the world's origin, so what a
# machine shows that is too slow for 40 updates a second is not foreseen: only a record at the origin is
# the same however often it is met. The three sensors then rest here, in world units, below the picture.
PLACES = [(0.6, -0.1), (0.55, -0.1), (0.5, -0.1)]
CENTER = (0.55, -0.1)
ZOOM = 0.8 ** 4  # four steps out


def pixel(x, y):
    """A place of the world: scaled by 1.2, in the middle, 740 / 1.1547 pixels to a unit."""
    scale = ZOOM * 1.2 * 740 / 1.1547
    return 370 + scale * (x - 0.5), 370 - scale * (y - 0.5)


def is_body(r, g, b):
    return r > 80 and g < 30 and b < 30


def is_figure(r, g, b):
    """Seen through the body: pink."""
    return b > 80 and b > g + 30


def middle(places):
    return tuple(sum(values) / len(places) for values in zip(*places))


class Creature(unittest.TestCase):
    def make_media(self, folder, records):
        (folder / "data").mkdir()
        (folder / "sound").mkdir()
        (folder / "sound/magpie_vocal.ogg").symlink_to(VOICE)
        (folder / "data/still.txt").write_text(records * (" ".join(25 * ["0"]) + "\n"))
        (folder / "data/mocap.txt").write_text("MOCAP\n1 3\ndata/still.txt\n")
        for color, name in (("rgba(255,0,0,1)", "png32:data/squid.png"),
                             ("black", "data/underwater.jpg")):
            subprocess.run(["convert", "-size", "8x8", f"xc:{color}", name], cwd=folder,
                           check=True)

    def is_settled(self, picture):
        body = picture.places(is_body)
        if not body:
            return False
        x, y = middle(body)
        expected_x, expected_y = pixel(*CENTER)
        # The lines, white over it, move the middle of what is red by a few pixels.
        return abs(x - expected_x) < 12 and abs(y - expected_y) < 12

    def test_eases_towards_the_center_of_three_figures(self):
        with tempfile.TemporaryDirectory() as folder:
            self.make_media(pathlib.Path(folder), records=10801)
            with Program(PROGRAM, folder) as program:
                for _ in range(4):
                    program.click(370, 370, button=5)
                picture = program.await_picture(self.is_settled, "a creature at the center")
                width = ZOOM * 0.4 * 1.2 * 740 / 1.1547
                body = picture.places(is_body)
                self.assertGreater(16 * len(body), 0.7 * width * width)
                self.assertLess(16 * len(body), 1.1 * width * width)
                for place in PLACES:
                    x, y = pixel(*place)  # of the head, with the tentacles below it
                    self.assertTrue([at for at in picture.places(is_figure, step=2)
                                     if abs(at[0] - x) < 5 and 15 < at[1] - y < 30], place)
                output, errors = program.quit()
        self.assertTrue(output.startswith("creature: "))
        self.assertIn("\n  q      ends\n", output)
        self.assertEqual(errors, "")

    def test_follows_the_voice(self):
        """With a single record there is none left as soon as the voice plays, which ends the program."""
        with tempfile.TemporaryDirectory() as folder:
            self.make_media(pathlib.Path(folder), records=1)
            result = subprocess.run([PROGRAM, folder], capture_output=True, text=True)
        self.assertEqual(result.returncode, 1)

    def test_reports_a_missing_folder(self):
        result = subprocess.run([PROGRAM, "/nonexistent"], capture_output=True, text=True)
        self.assertEqual(result.stderr, "creature: /nonexistent: No such file or directory\n")
        self.assertEqual(result.returncode, 1)


unittest.main()

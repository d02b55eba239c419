"""Usage: obj_viewer.py PROGRAM"""
import pathlib
import sys
import tempfile
import unittest

from program import BACKGROUND, Program

PROGRAM = sys.argv.pop()

# A box of 2 x 2 x 2 around (5, 6, 7): corners, and faces with their normals.
CORNERS = [(x, y, z) for x in (4, 6) for y in (5, 7) for z in (6, 8)]
FACES = [((0, 0, 1), (2, 6, 8, 4)), ((0, 0, -1), (1, 3, 7, 5)), ((1, 0, 0), (5, 7, 8, 6)),
         ((-1, 0, 0), (1, 2, 4, 3)), ((0, 1, 0), (3, 4, 8, 7)), ((0, -1, 0), (1, 5, 6, 2))]
MATERIAL = "newmtl paint\nKd 1 0.125 0.125\nKa 0.5 0 0\nKs 0.25 0 0\nNs 32\nd 1\n"


def box(with_normals):
    lines = ["mtllib paint.mtl"]
    lines += [f"v {x} {y} {z}" for x, y, z in CORNERS]
    lines += [f"vn {x} {y} {z}" for (x, y, z), _ in FACES] if with_normals else []
    lines += ["usemtl paint"]
    for normal, (_, corners) in enumerate(FACES, 1):
        lines.append("f " + " ".join(f"{c}//{normal}" if with_normals else f"{c}" for c in corners))
    return "\n".join(lines) + "\n"


def records(path):
    """The words of a file's lines, by the first word of each line."""
    found = {}
    for line in path.read_text().splitlines():
        word, *values = line.split()
        found.setdefault(word, []).append(values)
    return found


def numbers(lines):
    return [tuple(map(float, line)) for line in lines]


def is_red(r, g, b):
    return r > 60 and g < r / 3 and b < r / 3


def is_text(r, g, b):
    return r > 150 and g > 130 and 100 < b < r


def is_blue(r, g, b):
    return (r, g, b) == (0, 0, 255)


class ObjViewer(unittest.TestCase):
    def setUp(self):
        self.temporary = tempfile.TemporaryDirectory()
        self.addCleanup(self.temporary.cleanup)
        self.folder = pathlib.Path(self.temporary.name)
        (self.folder / "paint.mtl").write_text(MATERIAL)

    def model(self, name, text):
        path = self.folder / name
        path.write_text(text)
        return path

    def check_red_box(self, picture):
        self.assertTrue(picture.places(is_text))
        self.assertTrue(is_red(*picture.at(370, 370)))
        # A box of radius 0.4 at a distance of 1 reaches over less than 300 pixels, however turned.
        reach = [abs(value - 370) for place in picture.places(is_red) for value in place]
        self.assertGreater(max(reach), 120)
        self.assertLess(max(reach), 330)
        self.assertGreater(len(picture.places(is_red)), 2000)
        for x, y in ((5, 5), (735, 5), (735, 735)):
            self.assertEqual(picture.at(x, y), BACKGROUND)
        for x, y in picture.places(is_text):
            self.assertTrue(x < 300 and y > 640, (x, y))

    def test_shows_turns_and_writes_a_model(self):
        with Program(PROGRAM, self.model("box.obj", box(True))) as program:
            first = program.await_look(self.check_red_box)
            program.await_picture(lambda p: p.places(is_red) != first.places(is_red), "a turn")
            self.assertFalse(program.picture().places(is_blue, step=1))
            program.press("a")
            program.await_picture(lambda p: len(p.places(is_blue, step=1)) > 50, "normals")
            program.press("a")
            program.await_picture(lambda p: not p.places(is_blue, step=1), "no normals")
            program.press("w")
            output, errors = program.quit()
        self.assertTrue(output.startswith("obj-viewer: "))
        self.assertIn("\n  q      ends\n", output)
        self.assertTrue(output.endswith("\nwrote box-copy.obj and box-copy.mtl\n"))
        self.assertEqual(errors, "")

        copy = records(self.folder / "box-copy.obj")
        self.assertEqual(copy["mtllib"], [["box-copy.mtl"]])
        self.assertEqual(copy["usemtl"], [["paint"]])
        self.assertEqual(len(copy["f"]), 12)
        corners = [(CORNERS[c - 1], normal) for normal, face in FACES for c in face]
        written = list(zip(numbers(copy["v"]), numbers(copy["vn"])))
        self.assertEqual(sorted(written), sorted(corners))
        for face in copy["f"]:
            normals = {written[int(corner.split("/")[0]) - 1][1] for corner in face}
            self.assertEqual(len(normals), 1, "a triangle across an edge")
        self.assertEqual({word: values for word, [values] in
                          records(self.folder / "box-copy.mtl").items()},
                         {"newmtl": ["paint"],
                          "Kd": ["1.00000000", "0.12500000", "0.12500000"],
                          "Ka": ["0.50000000", "0.00000000", "0.00000000"],
                          "Ke": ["0.00000000", "0.00000000", "0.00000000"],
                          "Ks": ["0.25000000", "0.00000000", "0.00000000"],
                          "Ns": ["32.00000000"], "d": ["1.00000000"]})

        with Program(PROGRAM, self.folder / "box-copy.obj") as program:
            program.await_look(self.check_red_box)
            program.quit()

    def test_lights_a_model_without_normals(self):
        with Program(PROGRAM, self.model("bare.obj", box(False))) as program:
            picture = program.await_look(self.check_red_box)
            self.assertTrue(picture.places(lambda r, g, b: is_red(r, g, b) and r > 150))
            program.quit()

    def test_shows_an_empty_model(self):
        with Program(PROGRAM, self.model("empty.obj", "")) as program:
            program.await_picture(lambda p: p.places(is_text), "text")
            program.press("a", "w")
            program.quit()


unittest.main()

"""Usage: shader.py FOLDER PROGRAM, with the folder of the example's shaders"""
import pathlib
import sys
import tempfile
import unittest

from program import BACKGROUND, Program

PROGRAM = sys.argv.pop()
SHADERS = pathlib.Path(sys.argv.pop())

GREEN = "void main() { gl_FragColor = vec4(0.0, 1.0, 0.0, 1.0); }\n"
BROKEN = "void main() { gl_FragColor = nothing; }\n"


def is_green(r, g, b):
    return (r, g, b) == (0, 255, 0)


def is_plain(r, g, b):
    return (r, g, b) == (102, 102, 102)


def is_crest(r, g, b):
    return r > 150 and r > g + 60 and r > b + 60


def is_trough(r, g, b):
    return b > r + 20 and r > g


class Shader(unittest.TestCase):
    def assert_is_sphere(self, picture, condition):
        """Of radius 0.36 at a distance of 1: 247 pixels around the middle."""
        for x, y in ((370, 370), (150, 370), (590, 370), (370, 150), (370, 590)):
            self.assertTrue(condition(*picture.at(x, y)), (x, y))
        for x, y in ((10, 10), (729, 10), (10, 729), (729, 729)):
            self.assertEqual(picture.at(x, y), BACKGROUND)

    def check_waves(self, picture):
        self.assertTrue(picture.places(is_crest))
        self.assertTrue(picture.places(is_trough))
        self.assert_is_sphere(picture, lambda *color: color != BACKGROUND)

    def test_draws_with_its_own_shaders(self):
        with Program(PROGRAM) as program:
            picture = program.await_look(self.check_waves)
            crests = picture.places(is_crest)
            program.await_picture(lambda p: p.places(is_crest) != crests, "a wave that moves")
            output, errors = program.quit()
            self.assertTrue(output.startswith("shader: "))
            self.assertIn("\n  q            ends\n", output)
            self.assertIn("\nshader: in use\n", output)
            self.assertEqual(errors, "")

    def test_reads_the_files_again_and_reports_mistakes(self):
        with tempfile.TemporaryDirectory() as folder:
            fragment = pathlib.Path(folder, "changing.frag")
            fragment.write_text(BROKEN)
            with Program(PROGRAM, SHADERS / "anemone.vert", fragment) as program:
                program.await_look(lambda picture: self.assert_is_sphere(picture, is_plain))
                errors = program.printed(program.errors)
                self.assertTrue(errors.startswith(f"{fragment}:\n"), errors)
                self.assertIn("nothing", errors)

                fragment.write_text(GREEN)
                program.press("space")
                program.await_look(lambda picture: self.assert_is_sphere(picture, is_green))

                fragment.write_text(BROKEN)
                program.click(370, 370)
                program.await_value(lambda: program.printed(program.errors) == 2 * errors,
                                    "a second report")
                program.await_look(lambda picture: self.assert_is_sphere(picture, is_green))

                fragment.unlink()
                program.press("space")
                missing = f"shader: cannot read {fragment}, or this GL has no shaders\n"
                program.await_value(lambda: program.printed(program.errors) == 2 * errors + missing,
                                    "a report of the missing file")
                program.quit()


unittest.main()

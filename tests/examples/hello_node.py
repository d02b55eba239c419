"""Usage: hello_node.py PROGRAM"""
import sys
import unittest

from program import BACKGROUND, Program

PROGRAM = sys.argv.pop()


def is_kelp(r, g, b):
    return r > 50 and g > 70 and b < 40


def is_bubble(r, g, b):
    return r > 90 and b > 90


class HelloNode(unittest.TestCase):
    def check_kelp(self, picture):
        places = picture.places(is_kelp)
        self.assertGreater(len(places), 3000)
        self.assertGreater(min(y for _, y in places), 100)
        self.assertEqual(picture.at(370, 20), BACKGROUND)
        for plant in range(5):
            foot = 370 + round(0.22 * (plant - 2) * 640.86)  # pixels per unit: 740 / 1.1547
            self.assertTrue(any(abs(x - foot) < 20 and y > 660 for x, y in places), plant)
        self.assertEqual(picture.places(is_bubble), [])

    def test_kelp_sways_and_bubbles_rise_where_one_clicks(self):
        with Program(PROGRAM) as program:
            first = program.await_look(self.check_kelp)
            places = first.places(is_kelp)
            program.await_picture(lambda p: p.places(is_kelp) != places, "a movement")

            program.click(560, 400)
            bubble = program.await_picture(lambda p: p.places(is_bubble), "a bubble")
            for x, y in bubble.places(is_bubble):
                self.assertLess(abs(x - 560), 25)
                self.assertLess(y, 425)
            program.await_picture(lambda p: not p.places(is_bubble), "the bubble's end")
            program.press("space")
            program.await_picture(lambda p: p.places(is_bubble), "a bubble")

            output, errors = program.quit()
            self.assertTrue(output.startswith("hello-node: "))
            self.assertIn("\n  q            ends\n", output)
            self.assertEqual(errors, "")


unittest.main()

"""Usage: starfish.py PROGRAM"""
import math
import sys
import unittest

from program import BACKGROUND, Program

PROGRAM = sys.argv.pop()
PIXELS = 740 / 1.1547  # of the window, per unit
# Between two arms the outline comes no closer to the middle than this, and no tip is farther away.
NARROW, WIDE = 0.15 * math.cos(math.radians(36)), 0.4


def is_starfish(r, g, b):
    return r > 230 and 110 < g < 145 and 50 < b < 80


def bearings(picture):
    """In which of 360 directions from the middle something stands beyond half an arm."""
    return {round(math.degrees(math.atan2(y - 370, x - 370))) % 360
            for x, y in picture.places(is_starfish, step=2)
            if math.hypot(x - 370, y - 370) > 0.3 * PIXELS}


class Starfish(unittest.TestCase):
    def check_star(self, picture):
        self.assertEqual(picture.at(20, 20), BACKGROUND)
        distances = [math.hypot(x - 370, y - 370) for x, y in picture.places(is_starfish)]
        self.assertLess(max(distances), WIDE * PIXELS + 2)
        self.assertGreater(max(distances), 0.95 * WIDE * PIXELS)
        self.assertTrue(is_starfish(*picture.at(370, 370)))
        self.assertTrue(is_starfish(*picture.at(370, 370 + int(NARROW * PIXELS) - 9)))
        # Five arms, a fifth of a turn apart, each a few degrees wide out there.
        arms = bearings(picture)
        fifth = {bearing % 72 for bearing in arms}
        self.assertGreater(len(arms), 5)
        self.assertLess(len(fifth), 30)

    def test_five_arms_turn(self):
        with Program(PROGRAM) as program:
            first = program.await_look(self.check_star)
            before = bearings(first)
            program.await_picture(lambda p: bearings(p) and not bearings(p) & before,
                                  "arms where there were none")
            _, errors = program.quit()
            self.assertEqual(errors, "")


unittest.main()

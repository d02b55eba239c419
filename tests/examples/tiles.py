"""Usage: tiles.py SAMPLE PROGRAM, with the example's sample configuration"""
import pathlib
import socket
import subprocess
import sys
import tempfile
import unittest

PROGRAM = sys.argv.pop()
SAMPLE = pathlib.Path(sys.argv.pop())
HOST = socket.gethostname()[:31]

WALL = """
A wall of 3 x 2 tiles, mullions 0.02 and 0.03, hosts: 3

+------------------+------------------+------------------+
| reef-left        | {cell} | reef-right       |
| 1920 x 1080      | 1920 x 1080      | 1920 x 1080      |
+------------------+------------------+------------------+
| reef-left        | {cell} | reef-right       |
| 1920 x 1080      | 1920 x 1080      | 1920 x 1080      |
+------------------+------------------+------------------+

reef-left
  window on tile 0 0, location 0 0 1920 1080
    camera: rectangle 0 0 1 1, offset 0 0
  window on tile 0 1, location 0 1080 1920 1080
    camera: rectangle 0 0 1 1, offset 0 0
{name}
  window on tile 1 0, location 0 0 1920 1080
    camera: rectangle 0 0 1 1, offset 0 0
  window on tile 1 1, location 0 1080 1920 1080
    camera: rectangle 0 0 0.5 1, offset 0 0
    camera: rectangle 0.5 0 0.5 1, offset 0 0
reef-right
  window on tile 2 0, location 0 0 1920 1080
    camera: rectangle 0 0 1 1, offset 0 0
  window on tile 2 1, location 0 1080 1920 1080
    camera: rectangle 0 0 1 1, offset 0 0
"""


def run(*arguments):
    return subprocess.run([PROGRAM, *arguments], capture_output=True, text=True)


class Tiles(unittest.TestCase):
    def run_on(self, text):
        with tempfile.NamedTemporaryFile("w", suffix=".cfg") as file:
            file.write(text)
            file.flush()
            return run(file.name)

    def test_draws_the_wall_with_this_host_in_it(self):
        result = self.run_on(SAMPLE.read_text().replace("reef-middle", HOST))
        self.assertEqual(result.stdout,
                         f"This node's hostname: {HOST}\ncfg for {HOST} identified!\n"
                         + WALL.format(cell=f"* {HOST}"[:16].ljust(16), name=f"{HOST} (this host)"))
        self.assertEqual((result.stderr, result.returncode), ("", 0))

    def test_draws_the_wall_that_this_host_is_no_part_of(self):
        result = run(SAMPLE)
        self.assertEqual(result.stdout,
                         f"This node's hostname: {HOST}\nNo information for this node!\n"
                         + WALL.format(cell="reef-middle     ", name="reef-middle"))
        self.assertEqual((result.stderr, result.returncode), ("", 0))

    def test_shows_a_file_that_breaks_off_as_far_as_it_goes(self):
        text = SAMPLE.read_text()
        result = self.run_on(text[:text.index("reef-right")])
        self.assertIn("hosts: 2\n", result.stdout)
        self.assertIn("| reef-left        | reef-middle      |                  |", result.stdout)
        self.assertIn("is no tile configuration, or breaks off\n", result.stderr)
        self.assertEqual(result.returncode, 1)

    def test_does_not_draw_a_wall_without_end(self):
        result = self.run_on("Cluster TileMap 2000000000 1 Mullions 0 0 Nodes 0")
        self.assertIn("(a wall of this size is not drawn)", result.stdout)
        self.assertEqual(result.returncode, 0)

    def test_tells_how_it_is_used(self):
        result = run()
        self.assertTrue(result.stderr.startswith("usage: tiles FILE\n"))
        self.assertEqual((result.stdout, result.returncode), ("", 2))

    def test_reports_a_missing_file(self):
        result = run("/nonexistent.cfg")
        self.assertEqual(result.stdout, "")
        self.assertEqual(result.returncode, 1)


unittest.main()

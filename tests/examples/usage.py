"""Checks that the examples which take arguments tell how they are used.

Usage: usage.py PROGRAM...
"""
import pathlib
import subprocess
import sys
import unittest

PROGRAMS = sys.argv[1:]


class Usage(unittest.TestCase):
    def test_tells_how_it_is_used(self):
        for program in PROGRAMS:
            name = pathlib.Path(program).name
            for arguments, status in ((["-h"], 0), (["--help"], 0), (["--nonsense"], 2),
                                      (["a", "b", "c"], 2)):
                with self.subTest(program=name, arguments=arguments):
                    result = subprocess.run([program, *arguments], capture_output=True, text=True)
                    texts = result.stdout, result.stderr
                    text, other = texts if status == 0 else reversed(texts)
                    self.assertTrue(text.startswith(f"usage: {name} "), text)
                    self.assertEqual((other, result.returncode), ("", status))


unittest.main(argv=sys.argv[:1])

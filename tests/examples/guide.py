"""Checks that the code in docs/framework.md stands in the examples, or in the framework's
SceneWindow.cpp, as it is quoted.

Usage: guide.py ROOT
"""
import pathlib
import re
import sys
import textwrap
import unittest

ROOT = pathlib.Path(sys.argv.pop())
PAGE = (ROOT / "docs/framework.md").read_text()


def stands_in(quote, lines):
    """Whether the lines of a quote follow each other there, with any indentation."""
    count = len(quote.splitlines())
    return any(textwrap.dedent("\n".join(lines[i:i + count])) + "\n" == quote
               for i in range(len(lines)))


class Guide(unittest.TestCase):
    def test_quotes_the_examples(self):
        files = [*(ROOT / "examples").iterdir(), ROOT / "src-core/SceneWindow.cpp"]
        # The lines that mark snippets for the reference are not quoted.
        sources = [[line for line in path.read_text().splitlines() if "//! [" not in line]
                   for path in files]
        quotes = re.findall(r"```(?:cpp|cmake)\n(.*?)```", PAGE, re.DOTALL)
        self.assertGreater(len(quotes), 20)
        for quote in quotes:
            self.assertTrue(any(stands_in(quote, source) for source in sources), quote)


unittest.main()

"""Checks that the code in README.md and docs/framework.md stands in the examples, or in the framework's
SceneWindow.cpp, as it is quoted.

Usage: guide.py ROOT
"""
import pathlib
import re
import sys
import textwrap
import unittest

ROOT = pathlib.Path(sys.argv.pop())
PAGES = {"README.md": 1, "docs/framework.md": 20} # with at least so many quotes


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
        for page, least in PAGES.items():
            quotes = re.findall(r"```(?:cpp|cmake)\n(.*?)```", (ROOT / page).read_text(), re.DOTALL)
            self.assertGreaterEqual(len(quotes), least, page)
            for quote in quotes:
                self.assertTrue(any(stands_in(quote, source) for source in sources), quote)


unittest.main()

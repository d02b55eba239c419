"""Checks that the tests that documents name, as `Suite.Test`, exist.

Usage: named_tests.py ROOT DOCUMENT...
Prints each that does not; the exit status is 1 when there is one.
"""
import pathlib
import re
import sys

NAMED = re.compile(r"`(\w+Test)\.(\w+)`")
TEST = re.compile(r"^(?:TYPED_)?TEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\)", re.MULTILINE)


def main(root, *documents):
    root = pathlib.Path(root)
    tests = {test for path in (root / "tests").rglob("*.cpp")
             for test in TEST.findall(path.read_text())}
    wrong = [f"{document}: there is no test {suite}.{test}" for document in documents
             for suite, test in NAMED.findall((root / document).read_text())
             if (suite, test) not in tests]
    print("\n".join(wrong))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

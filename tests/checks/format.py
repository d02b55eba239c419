"""Checks that every C++ file is formatted as the repository's .clang-format has it.

Usage: format.py ROOT CLANG_FORMAT
"""
import pathlib
import subprocess
import sys

FOLDERS = ["kelpix", "src-*", "media", "tools", "packaging", "examples", "tests", "bench", "fuzz"]


def main(root, clang_format):
    files = sorted(
        str(path)
        for pattern in FOLDERS
        for folder in pathlib.Path(root).glob(pattern)
        for path in folder.rglob("*")
        if path.suffix in (".h", ".cpp")
    )
    assert files, "no source files found"
    return subprocess.run([clang_format, "--dry-run", "--Werror", *files]).returncode


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

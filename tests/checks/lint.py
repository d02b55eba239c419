"""Runs clang-tidy over the sources and prints what it complains about, and nothing else.

Usage: lint.py RUN_CLANG_TIDY BUILD_FOLDER JOBS REGEX
"""
import re
import subprocess
import sys

COLOUR = re.compile(r"\x1b\[[0-9;]*m")


def main(run_clang_tidy, build, jobs, files):
    result = subprocess.run(
        [run_clang_tidy, "-quiet", "-p", build, "-j", jobs, files],
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        text=True,
    )
    lines = COLOUR.sub("", result.stdout).splitlines()
    complaints = sorted({line for line in lines if " error: " in line or line.startswith("error: ")})
    print("\n".join(complaints))
    if result.returncode != 0 and not complaints:
        print(result.stdout)
    return 1 if complaints or result.returncode != 0 else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

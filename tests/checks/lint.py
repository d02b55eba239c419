"""Runs clang-tidy over the sources and prints what it complains about, and nothing else.

Usage: lint.py RUN_CLANG_TIDY BUILD_FOLDER JOBS REGEX
"""
import json
import pathlib
import re
import subprocess
import sys
import tempfile

COLOUR = re.compile(r"\x1b\[[0-9;]*m")


def once(build):
    """The compile commands of a build, those of a source that several targets share only once."""
    commands = json.loads((pathlib.Path(build) / "compile_commands.json").read_text())
    return list({command["file"]: command for command in commands}.values())


def main(run_clang_tidy, build, jobs, files):
    with tempfile.TemporaryDirectory() as folder:
        (pathlib.Path(folder) / "compile_commands.json").write_text(json.dumps(once(build)))
        result = subprocess.run(
            [run_clang_tidy, "-quiet", "-p", folder, "-j", jobs, files],
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

"""Checks the man pages: mandoc finds nothing, what they refer to is there, and every option that a
program lists is on its page, with the default that it lists.

Usage: man_pages.py FOLDER PROGRAM...
FOLDER: of the man pages; PROGRAM: each takes --help.
Prints what is wrong; the exit status is 1 when something is.
"""
import pathlib
import re
import subprocess
import sys


def defaults(text, option, default):
    """{option: default}; in the text each option goes up to the next one."""
    found = {}
    for name, rest in re.findall(rf"{option}([a-z-]+)(.*?)(?={option}|\Z)", text, re.M | re.S):
        match = re.search(default, rest)
        if match:
            found[name] = match[1]
    return found


def complaints(folder, programs):
    pages = sorted(folder.glob("*.1"))
    assert pages, "no man pages found"
    lint = subprocess.run(["mandoc", "-T", "lint", *pages], stdout=subprocess.PIPE,
                          stderr=subprocess.DEVNULL, text=True)
    # Which other manuals are installed on this machine is not the page's fault.
    yield from (line for line in lint.stdout.splitlines() if "referenced manual not found" not in line)
    for page in pages:
        for name in re.findall(r"^\.Xr (kelpix\S*) 1", page.read_text(), re.M):
            if not (folder / f"{name}.1").is_file():
                yield f"{page.name} refers to {name}(1), which is not there"

    count = 0
    for program in programs:
        name = pathlib.Path(program).name
        usage = subprocess.run([program, "--help"], check=True, stdout=subprocess.PIPE, text=True)
        options = set(re.findall(r"--([a-z][a-z-]*)", usage.stdout))
        assert options, f"{name} lists no options"
        page = (folder / f"{name}.1").read_text()
        described = set(re.findall(r"^\.It Fl -([a-z-]+)", page, re.M))
        for option in sorted(options - described):
            yield f"{name}.1 does not describe --{option}"
        for option in sorted(described - options):
            yield f"{name}.1 describes --{option}, which {name} does not list"
        of_page = defaults(page, r"^\.It Fl -", r"default\s+is\s+([0-9][\w.]*)\b")
        of_program = defaults(usage.stdout, "^  --", r"default:?\s+([0-9][\w.]*)\b")
        count += len(of_program)
        for option in sorted(of_page.keys() | of_program.keys()):
            if of_page.get(option) != of_program.get(option):
                yield f"--{option} of {name}: its default is {of_program.get(option)} in its usage, " \
                      f"{of_page.get(option)} in {name}.1"
    assert count, "no defaults found"


def main(folder, *programs):
    lines = list(complaints(pathlib.Path(folder), programs))
    print("\n".join(lines))
    return 1 if lines else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

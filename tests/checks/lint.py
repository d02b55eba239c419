"""Runs clang-tidy over the sources and prints what it complains about.

Usage: lint.py CLANG_TIDY BUILD_FOLDER JOBS REGEX [CHECKS]

REGEX chooses among the sources that the build compiles, CHECKS among the checks of .clang-tidy, as
clang-tidy's option does. Much of clang-tidy's time goes into the system's headers, so sources that
are compiled alike are joined, a few at a time, into one that it reads as a whole. What it complains
about there counts if it still does with each source by itself. Sources without a complaint are left
out until they, a header of the project or the rules change: BUILD_FOLDER/lint holds a stamp for them.
"""
import collections
import concurrent.futures
import hashlib
import json
import pathlib
import re
import shlex
import subprocess
import sys
import tempfile

SOURCES_AT_ONCE = 12
ROOT = pathlib.Path(__file__).resolve().parents[2]
COLOR = re.compile(r"\x1b\[[0-9;]*m")
# What clang-tidy 14 writes for "no limit" and for names without a prefix, and refuses to read.
UNREADABLE = re.compile(r"^ *- key: (.*\n *value: *'-1'|.*HungarianPrefix\n *value: .*)\n",
                        re.MULTILINE)


def compiled_alike(build, wanted):
    """The sources as lists by their folder and the flags that they are compiled with, each source
    once, even where several targets share it."""
    commands = json.loads((build / "compile_commands.json").read_text())
    once = {command["file"]: command["command"] for command in commands}
    alike = collections.defaultdict(list)
    for file, command in once.items():
        if re.search(wanted, file):
            arguments = shlex.split(command)
            first = next(i for i, argument in enumerate(arguments) if argument.startswith("-"))
            # Which of the compiler's warnings count is for .clang-tidy to say.
            flags = tuple(flag for flag in arguments[first : arguments.index("-o")]
                          if flag != "-Werror")
            alike[pathlib.Path(file).parent, flags].append(pathlib.Path(file))
    return alike


def joined(sources):
    # Two sources may include the same header: the check for repeated includes starts anew after a
    # macro.
    return "".join(f"#define JOINED_SOURCE_{number}\n{source.read_text()}\n"
                   for number, source in enumerate(sources))


def joined_complaints(command, folder, flags, sources):
    with tempfile.TemporaryDirectory() as place:
        file = sources[0]
        if len(sources) > 1:
            rules = subprocess.run([*command, "--dump-config", file, "--"], check=True,
                                   stdout=subprocess.PIPE, text=True).stdout
            (pathlib.Path(place) / ".clang-tidy").write_text(UNREADABLE.sub("", rules))
            file = pathlib.Path(place) / "joined.cpp"
            file.write_text(joined(sources))
        result = subprocess.run(
            [*command, "--quiet", file, "--", *flags, "-iquote", folder],
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
        )
    lines = COLOR.sub("", result.stdout).splitlines()
    found = {line for line in lines if " error: " in line or line.startswith("error: ")}
    if len(sources) > 1 and (found or result.returncode != 0):
        halves = (sources[::2], sources[1::2])
        return set().union(*(joined_complaints(command, folder, flags, half) for half in halves))
    if result.returncode != 0 and not found:
        found.add(result.stdout)
    return found


class Stamps:
    """The stamps of one kind of checks."""

    def __init__(self, build, command, checks):
        self.folder = build / "lint" / re.sub(r"\W+", "_", f"checks {checks}")
        self.folder.mkdir(parents=True, exist_ok=True)
        self.used = set()
        version = subprocess.run([*command, "--version"], check=True, stdout=subprocess.PIPE).stdout
        self.common = hashlib.sha256(version + " ".join(command).encode())
        for path in [pathlib.Path(__file__), ROOT / ".clang-tidy",
                     *sorted(ROOT.glob("[!b]*/**/.clang-tidy")),
                     *sorted(ROOT.glob("[!b]*/**/*.h"))]:
            self.common.update(path.read_bytes())

    def of(self, folder, flags, sources):
        name = self.common.copy()
        name.update(repr((str(folder), flags, [str(source) for source in sources])).encode())
        for source in sources:
            name.update(source.read_bytes())
        stamp = self.folder / name.hexdigest()
        self.used.add(stamp)
        return stamp

    def forget_others(self):
        for stamp in set(self.folder.iterdir()) - self.used:
            stamp.unlink()


def complaints(stamps, command, folder, flags, sources):
    stamp = stamps.of(folder, flags, sources)
    if stamp.exists():
        return set()
    found = joined_complaints(command, folder, flags, sources)
    if not found:
        stamp.touch()
    return found


def main(clang_tidy, build, jobs, wanted, checks=""):
    build = pathlib.Path(build)
    command = [clang_tidy, f"--checks={checks}"]
    stamps = Stamps(build, command, checks)
    found = set()
    with concurrent.futures.ThreadPoolExecutor(int(jobs)) as workers:
        running = []
        for (folder, flags), sources in compiled_alike(build, wanted).items():
            count = -(-len(sources) // SOURCES_AT_ONCE)
            running += [
                workers.submit(complaints, stamps, command, folder, flags, sources[first::count])
                for first in range(count)
            ]
        for batch in running:
            found |= batch.result()
    stamps.forget_others()
    print("\n".join(sorted(found)))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

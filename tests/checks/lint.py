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
import functools
import hashlib
import itertools
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


def flags_of(command):
    """The flags that matter to what a source means, those of two words as one."""
    arguments = shlex.split(command)
    words = iter(arguments[1 : arguments.index("-o")])
    flags = []
    for word in words:
        if word == "-isystem":
            flags.append((word, next(words)))
        # Which of the compiler's warnings count is for .clang-tidy to say.
        elif word.startswith(("-I", "-D", "-std=", "-f", "-W")) and word != "-Werror":
            flags.append((word,))
    return flags


def macros(flags):
    return {word.partition("=")[0]: word for (word, *_) in flags if word.startswith("-D")}


# A definition at the beginning of a line: its name stands before the first of these.
DEFINITION = re.compile(r"^(?!namespace|extern)\w(?:[^\n(={;]*[ *&])?([\w:~]+)(?:\[\w*\])? ?[(={;]", re.MULTILINE)


class Batch:
    """Sources of one folder whose flags, and names of their own, do not contradict each other."""

    def __init__(self):
        self.sources = []
        self.macros = {}
        self.names = set()

    def take(self, source, flags):
        """Takes a source, unless it does not go with the others."""
        defined = macros(flags)
        names = set(DEFINITION.findall(source.read_text()))
        if (len(self.sources) == SOURCES_AT_ONCE or names & self.names
                or any(self.macros.get(name, macro) != macro for name, macro in defined.items())):
            return False
        self.sources.append((source, flags))
        self.macros |= defined
        self.names |= names
        return True


def batches(build, wanted):
    """The sources, each once, with its flags, as lists of what goes together."""
    commands = json.loads((build / "compile_commands.json").read_text())
    once = {pathlib.Path(command["file"]): command["command"] for command in commands
            if re.search(wanted, command["file"])}
    folders = collections.defaultdict(list)
    for source, command in once.items():
        flags = flags_of(command)
        batches = folders[source.parent]
        if not any(batch.take(source, flags) for batch in batches):
            batches.append(Batch())
            batches[-1].take(source, flags)
    return [batch.sources for batches in folders.values() for batch in batches]


def joined(sources):
    # Two sources may include the same header: the check for repeated includes starts anew after a
    # macro.
    return "".join(f"#define JOINED_SOURCE_{number}\n{source.read_text()}\n"
                   for number, source in enumerate(sources))


@functools.cache
def rules_of(command, folder):
    rules = subprocess.run([*command, "--dump-config", folder / "any.cpp", "--"], check=True,
                           stdout=subprocess.PIPE, text=True).stdout
    return UNREADABLE.sub("", rules)


def joined_complaints(command, sources):
    """What clang-tidy complains about in sources, each with its flags."""
    files = [source for source, _ in sources]
    # In the order in which they come, each once.
    flags = list(dict.fromkeys(flag for _, given in sources for flag in given))
    with tempfile.TemporaryDirectory() as place:
        file = files[0]
        if len(files) > 1:
            (pathlib.Path(place) / ".clang-tidy").write_text(rules_of(tuple(command), file.parent))
            file = pathlib.Path(place) / "joined.cpp"
            file.write_text(joined(files))
        result = subprocess.run(
            [*command, "--quiet", file, "--", *itertools.chain(*flags), "-iquote", files[0].parent],
            stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT,
            text=True,
        )
    lines = COLOR.sub("", result.stdout).splitlines()
    found = {line for line in lines if " error: " in line or line.startswith("error: ")}
    if len(sources) > 1 and (found or result.returncode != 0):
        halves = (sources[::2], sources[1::2])
        return set().union(*(joined_complaints(command, half) for half in halves))
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

    def of(self, sources):
        name = self.common.copy()
        for source, flags in sources:
            name.update(repr((str(source), flags)).encode())
            name.update(source.read_bytes())
        stamp = self.folder / name.hexdigest()
        self.used.add(stamp)
        return stamp

    def forget_others(self):
        for stamp in set(self.folder.iterdir()) - self.used:
            stamp.unlink()


def complaints(stamps, command, sources):
    stamp = stamps.of(sources)
    if stamp.exists():
        return set()
    found = joined_complaints(command, sources)
    if not found:
        stamp.touch()
    return found


def main(clang_tidy, build, jobs, wanted, checks=""):
    build = pathlib.Path(build)
    command = [clang_tidy, f"--checks={checks}"]
    stamps = Stamps(build, command, checks)
    found = set()
    with concurrent.futures.ThreadPoolExecutor(int(jobs)) as workers:
        running = [workers.submit(complaints, stamps, command, sources)
                   for sources in batches(build, wanted)]
        for one in running:
            found |= one.result()
    stamps.forget_others()
    print("\n".join(sorted(found)))
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

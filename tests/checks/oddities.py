"""Writes docs/oddities.md from the comments that describe fixed behavior, or checks it.

Usage: oddities.py ROOT [--write]

Such a comment stands at the code, in // or /// lines, and says

    Fixed behavior: <what it is>. Pinned by Suite.Test, Suite.Test; do not correct.

Without --write it prints what is wrong: a comment of another form, a test that does not exist, a page
that --write would change. The exit status is 1 when something is.
"""
import pathlib
import re
import sys

FOLDERS = ["kelpix", "src-*", "media", "tools", "packaging", "examples"]
PAGE = "docs/oddities.md"
HEAD = """# Oddities that are kept

Behavior that may look like a mistake, and is fixed. Each line stands in a comment at the code, with
the test that fails when somebody corrects it. `python3 tests/checks/oddities.py . --write` makes this
page from those comments.
"""
COMMENT = re.compile(r"///?<?(?P<text>.*)")
FIXED = re.compile(r"Fixed behavior: (?P<what>(?:(?!Fixed behavior:).)+?) "
                   r"Pinned by (?P<tests>[\w./, ]+?); do not correct\.")
TEST = re.compile(r"^(?:TYPED_)?TEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\)", re.MULTILINE)


def sources(root):
    for pattern in FOLDERS:
        for folder in sorted(root.glob(pattern)):
            yield from sorted(path for path in folder.rglob("*") if path.suffix in (".h", ".cpp"))


def comment_of(line):
    """The text of a line's comment, None without one. A string may hold two slashes too."""
    outside = re.sub(r'"(?:\\.|[^"\\])*"', lambda match: "_" * len(match[0]), line)
    at = outside.find("//")
    return None if at < 0 else COMMENT.match(line[at:])["text"].strip()


def comments(text):
    """The comments of a source as (line, text); those of lines in a row are one."""
    first, parts = 0, []
    for number, line in enumerate(text.splitlines() + [""], 1):
        part = comment_of(line)
        alone = line.lstrip().startswith("//")
        if parts and (part is None or not alone):
            yield first, " ".join(parts)
            parts = []
        if part is not None:
            first = first if parts else number
            parts.append(part)


def plain(text):
    """Without the marks that Doxygen reads."""
    text = re.sub(r"\\[pc] (\w+)", r"`\1`", " ".join(text.split()))
    isName = re.match(r"\w*(?:_|\w[A-Z]|::)", text)
    return text if isName else text[0].upper() + text[1:]


def oddities(root):
    """(file, what, tests) for each comment, and the complaints."""
    found, wrong = [], []
    for path in sources(root):
        name = path.relative_to(root).as_posix()
        for line, text in comments(path.read_text()):
            matches = list(FIXED.finditer(text))
            if len(matches) != len(re.findall("fixed behavior:|do not correct", text, re.I)) / 2:
                wrong.append(f"{name}:{line}: not of the form \"Fixed behavior: <what>. Pinned by "
                             "Suite.Test; do not correct.\"")
            for match in matches:
                found.append((name, plain(match["what"]), re.split(r",\s*", match["tests"])))
    return found, wrong


def page(found):
    lines = [HEAD]
    for name in sorted({name for name, _, _ in found}):
        lines.append(f"## {name}\n")
        lines += [f"- {what} ({', '.join(f'`{test}`' for test in tests)})"
                  for file, what, tests in found if file == name]
        lines.append("")
    return "\n".join(lines)


def main(root, *options):
    root = pathlib.Path(root)
    found, wrong = oddities(root)
    tests = {f"{suite}.{test}" for path in (root / "tests").rglob("*.cpp")
             for suite, test in TEST.findall(path.read_text())}
    wrong += [f"{name}: there is no test {test}" for name, _, pins in found
              for test in pins if test not in tests]
    if "--write" in options:
        (root / PAGE).write_text(page(found))
    elif not (root / PAGE).exists() or (root / PAGE).read_text() != page(found):
        wrong.append(f"{PAGE} is stale: python3 tests/checks/oddities.py . --write")
    print("\n".join(wrong))
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

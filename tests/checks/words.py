"""Checks the words of comments and documents: American spelling, as the interfaces around have it, and
no "deliberate": what is kept on purpose has the form that oddities.py reads.

Usage: words.py ROOT
Prints each word that is wrong with its line; the exit status is 1 when there is one. Names, texts of
the program, and what stands in `code` in a document are left alone.
"""
import pathlib
import re
import sys

import oddities

OTHERS = ["tests", "bench", "fuzz"]
DOCUMENTS = ["*.md", "docs/*.md", "fuzz/*.md"]
IZE = ("normal|initial|real|recogn|organ|optim|serial|synchron|minim|maxim|general|visual|emphas|summar"
       "|special|util|random|final|capital|standard|stabil|equal|local|parallel")
BRITISH = re.compile(
    "iour|olour|avour|onour|eighbour|arbour|centre|metre|litre|fibre|catalogue|licence|artefact|whilst"
    "|amongst|judgement|^grey|programmes?$|analys(?:e|ed|ing)$"
    "|(?:label|cancel|travel|model|signal|level|channel)l(?:ed|ing)$"
    f"|(?:{IZE})is(?:e|ed|es|ing|ations?|ers?)$", re.IGNORECASE)


def comments(root):
    for pattern in oddities.FOLDERS + OTHERS:
        for folder in sorted(root.glob(pattern)):
            for path in sorted(folder.rglob("*")):
                if path.suffix in (".h", ".cpp"):
                    for number, line in enumerate(path.read_text().splitlines(), 1):
                        text = oddities.comment_of(line)
                        if text is not None:
                            yield path, number, re.sub(r'"[^"]*"|`[^`]*`', " ", text)


def prose(root):
    for pattern in DOCUMENTS:
        for path in sorted(root.glob(pattern)):
            text = re.sub(r"^ *```.*?^ *```$|`[^`]*`|\]\([^)]*\)|<!--.*?-->",
                          lambda match: re.sub(r"[^\n]", " ", match[0]), path.read_text(),
                          flags=re.M | re.S)
            yield from ((path, number, line) for number, line in enumerate(text.splitlines(), 1))


def wrong_words(root):
    product = tuple(str(folder) + "/" for pattern in oddities.FOLDERS for folder in root.glob(pattern))
    for path, number, text in [*comments(root), *prose(root)]:
        words = re.findall(r"(?<![\w.:/-])[A-Za-z]+(?![\w(]|::|\.\w)", text)
        for word in words:
            if BRITISH.search(word) or ("deliberate" in word.lower() and str(path).startswith(product)):
                yield f"{path}:{number}: {word}"


def main(root):
    lines = list(wrong_words(pathlib.Path(root)))
    print("\n".join(lines))
    return 1 if lines else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

"""Checks that the links of documents lead to files that are there.

Usage: links.py PAGE...
Prints each link that does not; the exit status is 1 when there is one, or no link at all.
"""
import pathlib
import re
import sys


def links(page):
    """What a page links to on this machine, as it stands there."""
    prose = re.sub(r"^```.*?^```$", "", page.read_text(), flags=re.M | re.S)
    return [link for link in re.findall(r"\]\(([^)]+)", prose)
            if not link.startswith(("http:", "https:"))]


def leads_nowhere(page, link):
    """A section of the page itself is named with the page: Doxygen finds it so alone."""
    path = link.partition("#")[0]
    return not path or not (page.parent / path).exists()


def broken(page):
    return [f"{page}: {link}" for link in links(page) if leads_nowhere(page, link)]


def main(*pages):
    pages = [pathlib.Path(page) for page in pages]
    found = [line for page in pages for line in broken(page)]
    print("\n".join(found))
    return 1 if found or not any(links(page) for page in pages) else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

"""Checks the commands in the documents: each ```sh block is run here, in a sandbox, or the line above
it names the tests that run it, or says why none does:

    <!-- tested by package/install -->
    <!-- not tested: changes the machine -->

Usage: commands.py ROOT BUILD CTEST
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

CTEST = sys.argv.pop()
BUILD = pathlib.Path(sys.argv.pop())
ROOT = pathlib.Path(sys.argv.pop())

# What stands in the line above a block that is not run here.
TESTED = re.compile(r"<!-- tested by ([\w/-]+(?:, [\w/-]+)*) -->")
NOT_TESTED = re.compile(r"<!-- not tested: (.+) -->")
ALL_TESTED = re.compile(r"<!-- every command tested by ([\w/-]+) -->")

# What stands in for a program that opens a window: says where and how it was started.
WINDOW = """#!/bin/sh
echo "$(basename "$0") in $(basename "$PWD") with $*"
"""


def pages():
    return [ROOT / "README.md", ROOT / "CONTRIBUTING.md", ROOT / "fuzz/README.md",
            *sorted((ROOT / "docs").glob("*.md"))]


def marked_blocks(page):
    """The blocks as (line above, commands)."""
    return re.findall(r"^([^\n]*)\n```sh\n(.*?)^```$", page.read_text(), re.M | re.S)


def blocks(page):
    return [commands for _, commands in marked_blocks(page)]


class Commands(unittest.TestCase):
    def setUp(self):
        """A copy of the repository as somebody has it who has called ./run."""
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name) / "kelpix"
        for name in ("build/release/kelpix", "build/release/packaging", "bin", "reef/data", "srv"):
            (self.root / name).mkdir(parents=True)
        for name in ("examples", "cmake", "packaging"):
            (self.root / name).symlink_to(ROOT / name)
        for name in ("media", "scene"):
            (self.root / "build/release" / name).symlink_to(BUILD / name)
        for name in ("build/release/kelpix/kelpix", "build/release/packaging/kelpix", "bin/kelpix"):
            (self.root / name).write_text(WINDOW)
            (self.root / name).chmod(0o755)

    def sh(self, commands, folder):
        path = f"{self.root}/bin:{BUILD}/media:{os.environ['PATH']}"
        result = subprocess.run(["sh", "-eu", "-c", commands], cwd=folder, stdout=subprocess.PIPE,
                                stderr=subprocess.STDOUT, text=True, env=dict(os.environ, PATH=path))
        self.assertEqual(result.returncode, 0, commands + result.stdout)
        return result.stdout

    def block(self, page, start):
        found = [text for text in blocks(ROOT / page) if text.startswith(start)]
        self.assertEqual(len(found), 1, f"{page} has no block that starts with {start}")
        self.ran.append((page, found[0]))
        return found[0]

    def test_every_block_is_run_or_known(self):
        self.ran = []
        out = self.sh(self.block("docs/installing.md", "build/release/packaging/kelpix DIR"), self.root)
        self.assertEqual(out, "kelpix in kelpix with DIR\n")

        out = self.sh(self.block("docs/media.md", "build/release/media/kelpix-media"), self.root)
        self.assertIn("9 files: 9 ok", out)
        self.assertEqual(out.splitlines()[-1], "kelpix in kelpix with --media reef")
        self.run_pictures()

        out = self.sh(self.block("docs/running.md", "kelpix  "), self.root)
        self.assertEqual(out.replace("kelpix in kelpix with", "").split("\n"),
                         [" ", " /srv/reef", " --fullscreen", " --fullscreen --zoom 3", ""])

        tests = subprocess.run([CTEST, "-N"], cwd=BUILD, check=True, stdout=subprocess.PIPE, text=True)
        tests = set(re.findall(r"Test +#\d+: (\S+)", tests.stdout))
        for page in pages():
            name = str(page.relative_to(ROOT))
            whole = ALL_TESTED.findall(page.read_text())
            named = list(whole)
            for above, commands in marked_blocks(page):
                tested, untested = TESTED.fullmatch(above), NOT_TESTED.fullmatch(above)
                if tested:
                    named += tested[1].split(", ")
                elif untested:
                    named += re.findall(r"\b(?:package|examples|kelpix|tools|fuzz)/[\w/-]+", untested[1])
                elif not whole:
                    self.assertIn((name, commands), self.ran,
                                  f"a block in {name} that is neither run here nor marked")
            for test in named:
                self.assertIn(test, tests, name)

    def run_pictures(self):
        """The commands that make pictures, with pictures to make them from."""
        reef = self.root / "reef"
        self.sh("convert -size 300x200 plasma:red-blue photo.tif", reef)
        self.sh(self.block("docs/media.md", "convert photo.tif"), reef)
        self.sh("convert -size 90x90 xc:none -fill gold -draw 'ellipse 45,45 20,30 0,360' fish.png",
                reef)
        self.sh(self.block("docs/media.md", "# Any picture of a fish"), reef)
        check = subprocess.run([BUILD / "media/kelpix-media", "--check", reef], text=True,
                               stdout=subprocess.PIPE).stdout
        self.assertRegex(check, r"(?m)^(ok|hint) +data/underwater\.jpg")
        self.assertRegex(check, r"(?m)^ok +data/fish0\.png")
        self.assertNotRegex(check, r"(?m)^(wrong|stops)")

    def test_messages_are_quoted_as_they_are(self):
        sources = [*(ROOT / "kelpix").glob("*.cpp"), *ROOT.glob("src-*/*.cpp"),
                   ROOT / "packaging/launcher.sh.in",
                   ROOT / "packaging/kiosk/kelpix-kiosk.service"]
        code = "".join(path.read_text() for path in sources)
        code = re.sub(r'"\s*\n\s*"', "", code)  # texts over several lines
        for page in (ROOT / "docs/faults.md", ROOT / "docs/running.md"):
            # media_faults.py holds the table of faults to what the program prints.
            text = page.read_text().split("\n| File | Fault |")[0]
            quoted = re.findall(r"`(kelpix: [^`]+|[A-Z][A-Za-z_']+ [^`]*?(?:\.\.\.|!|\.))`", text)
            self.assertGreater(len(quoted), 5, page)
            for message in quoted:
                # What the launcher says gets its name in front; names and details vary.
                message = message.removeprefix("kelpix: ").removeprefix("llvmpipe: ")
                start = re.split(r"\.\.\.| [A-Z]{3,}| sound/| N$", message)[0]
                start = start.split("Can't open display")[0].split("X I/O")[0].strip()
                self.assertTrue(start and start in code, f"{page.name}: {message}")


unittest.main()

"""Checks the commands in the documents: each ```sh block is run here, in a sandbox, or stands on the
list of those that another test runs or that no test can run. A block that is changed has to be looked
at again: the list holds its whole text.

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

# Names of CTest tests that run a block, or what somebody does who reads it.
COVERED = {
    "README.md": {
        "./run\n": "installs packages; it starts what package/start and kelpix/ProgramTest start",
        "./test\n": "runs this test",
        "cmake/install-packages.sh build package\n"
        "cmake --preset release && cmake --build --preset release\n"
        "(cd build/release && cpack)\n"
        "sudo apt-get install ./build/release/packages/kelpix_*.deb\n": "package/install",
        "cmake --build --preset release\n"
        "cd build/release/scene\n"
        "../tools/record/kelpix-record --out film.mp4 --seconds 30 --size 1080x1080\n"
        "../tools/record/kelpix-record --png frame.png --at 48\n":
            "minutes; tools/record/RecordProgramTest makes smaller ones",
    },
    "CONTRIBUTING.md": {
        "cmake --preset dev && cmake --build --preset dev && ctest --preset dev\n":
            "minutes; ./test does it with other presets",
        "cmake --build --preset dev --target NodeTest && ctest --preset dev -R NodeTest\n":
            "minutes; ./test does it with other presets",
    },
    "docs/framework.md": {
        "cmake --preset release && cmake --build --preset release\n"
        "build/release/examples/hello-node\n"
        "build/release/examples/creature\n"
        "build/release/examples/obj-viewer build/release/scene/data/cube.obj\n"
        "build/release/examples/shader\n"
        "build/release/examples/tiles examples/wall.cfg\n":
            "examples/hello-node examples/creature examples/obj-viewer examples/shader examples/tiles",
    },
    "docs/media.md": {
        "oggenc --quality 5 --output sound/magpie_vocal.ogg voice.wav\n":
            "needs a program that kelpix does not",
    },
    "docs/first-hour.md": "package/first_hour",
    "docs/recording.md": {
        "cmake --build --preset release\n"
        "cd build/release/scene\n"
        "../tools/record/kelpix-record --out film.mp4 --seconds 30 --size 1080x1080 --seed 7\n"
        "../tools/record/kelpix-record --png frame.png --at 48 --seed 7\n":
            "minutes; tools/record/RecordProgramTest makes smaller ones",
        "kelpix-record --script look-around.txt --seed 7 --out look-around.mp4\n":
            "minutes; tools/record/RecordScriptTest reads the script",
    },
    "docs/running.md": {
        "apt-get install ./kelpix_*.deb cage xwayland alsa-utils xdotool\n"
        "adduser --system --group --home /var/lib/kelpix kelpix\n"
        "usermod --append --groups audio,video,render,input kelpix\n"
        "cd /usr/share/doc/kelpix/kiosk\n"
        "install -m 644 kelpix-kiosk.service /etc/systemd/system/\n"
        "install -m 644 journald@kelpix.conf /etc/systemd/\n"
        "systemctl daemon-reload\n"
        "systemctl enable --now kelpix-kiosk.service\n":
            "changes the machine; package/kiosk checks the unit and runs its command",
        "runuser -u kelpix -- env DISPLAY=:0 xdotool search --name '^kelpix \\(' getwindowname\n":
            "needs a running kiosk; package/kiosk finds the window in this way",
        "install -d /srv/kelpix\n"
        "cp -r reef/. /srv/kelpix\n"
        "chmod -R a+rX /srv/kelpix\n"
        "runuser -u kelpix -- kelpix-media --check /srv/kelpix\n"
        "systemctl restart kelpix-kiosk.service\n": "changes the machine",
        "systemctl stop kelpix-kiosk.service\n"
        "apt-get install ./kelpix_*.deb\n"
        "systemctl start kelpix-kiosk.service\n": "changes the machine",
        "mkdir -p /etc/systemd/system/kelpix-kiosk.service.d\n"
        "install -m 644 /usr/share/doc/kelpix/kiosk/showing.conf /etc/systemd/system/kelpix-kiosk.service.d/\n"
        "systemctl daemon-reload\n"
        "systemctl restart kelpix-kiosk.service\n":
            "changes the machine; package/kiosk checks the unit with this file",
        "journalctl --namespace=kelpix --follow\n": "needs a running kiosk",
        "xinit /usr/share/doc/kelpix/kiosk/fill-screen -- :0 vt1 -nocursor -s 0 -dpms\n":
            "needs a screen; package/kiosk runs fill-screen",
        "DISPLAY=:0.0 /usr/share/doc/kelpix/kiosk/fill-screen &\n"
        "sleep 1\n"
        "DISPLAY=:0.1 ALSOFT_DRIVERS=null /usr/share/doc/kelpix/kiosk/fill-screen &\n"
        "wait\n": "needs screens; package/kiosk runs fill-screen",
        "cmake --build --preset release\n"
        "build/release/tools/soak/kelpix-soak --media build/release/scene\n":
            "tools/soak, for minutes instead of days",
    },
    "docs/performance.md": {
        "bench/run                 # measures everything and says which goals are met: about ten minutes\n"
        "bench/run flock matrix    # only these programs\n"
        "bench/run --count         # instructions instead of time, where a machine is too noisy to time\n"
        "bench/run --document      # writes the tables below\n":
            "minutes, and needs a quiet machine",
    },
    "fuzz/README.md": {
        "fuzz/run MINUTES [TARGET...]\n": "minutes, and needs clang; fuzz/png replays its inputs",
        "build/fuzz/fuzz/fuzz-TARGET build/fuzz/findings/TARGET/crash-...\n": "needs a finding",
    },
}

# What stands in for a program that opens a window: says where and how it was started.
WINDOW = """#!/bin/sh
echo "$(basename "$0") in $(basename "$PWD") with $*"
"""


def pages():
    return [ROOT / "README.md", ROOT / "CONTRIBUTING.md", ROOT / "fuzz/README.md",
            *sorted((ROOT / "docs").glob("*.md"))]


def blocks(page):
    return re.findall(r"^```sh\n(.*?)^```$", page.read_text(), re.M | re.S)


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
        out = self.sh(self.block("README.md", "build/release/packaging/kelpix --media"), self.root)
        self.assertEqual(out, "kelpix in kelpix with --media DIR\n")

        out = self.sh(self.block("docs/media.md", "build/release/media/kelpix-media"), self.root)
        self.assertIn("9 files: 9 ok", out)
        self.assertEqual(out.splitlines()[-1], "kelpix in kelpix with --media reef")
        self.run_pictures()

        out = self.sh(self.block("docs/running.md", "kelpix  "), self.root)
        self.assertEqual(out, "kelpix in kelpix with \nkelpix in kelpix with --media /srv/reef\n")

        tests = subprocess.run([CTEST, "-N"], cwd=BUILD, check=True, stdout=subprocess.PIPE, text=True)
        tests = set(re.findall(r"Test +#\d+: (\S+)", tests.stdout))
        listed = {(name, text) for name, texts in COVERED.items() if isinstance(texts, dict)
                  for text in texts}
        for page in pages():
            name = str(page.relative_to(ROOT))
            for text in blocks(page):
                if isinstance(COVERED.get(name), str) or (name, text) in self.ran:
                    continue
                self.assertIn((name, text), listed, f"a new block in {name}: run it here, or list it")
                listed.discard((name, text))
        self.assertFalse(listed, "these blocks are gone")
        for texts in COVERED.values():
            for why in [texts] if isinstance(texts, str) else texts.values():
                for test in re.findall(r"\b(?:package|examples|kelpix|tools|fuzz)/[\w/-]+", why):
                    self.assertIn(test, tests)

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
        sources = [*(ROOT / "kelpix").glob("*.cpp"), *(ROOT / "src-core").glob("*.cpp"),
                   *(ROOT / "src-sound").glob("*.cpp"), ROOT / "packaging/launcher.sh.in",
                   ROOT / "packaging/kiosk/kelpix-kiosk.service"]
        code = "".join(path.read_text() for path in sources)
        code = re.sub(r'"\s*\n\s*"', "", code)  # texts over several lines
        for page in (ROOT / "README.md", ROOT / "docs/running.md"):
            quoted = re.findall(r"`(kelpix: [^`]+|[A-Z][A-Za-z_']+ [^`]*?(?:\.\.\.|!|\.))`",
                                page.read_text())
            self.assertGreater(len(quoted), 6, page)
            for message in quoted:
                # What the launcher says gets its name in front; names and details vary.
                start = re.split(r"\.\.\.| [A-Z]{3,}| sound/| N$", message.removeprefix("kelpix: "))[0]
                start = start.split("Can't open display")[0].split("X I/O")[0].strip()
                self.assertTrue(start and start in code, f"{page.name}: {message}")

    def test_links_lead_to_files_that_are_there(self):
        for page in pages():
            prose = re.sub(r"^```.*?^```$", "", page.read_text(), flags=re.M | re.S)
            for link in re.findall(r"\]\(([^)#]+)", prose):
                if not link.startswith(("http:", "https:")):
                    self.assertTrue((page.parent / link).exists(), f"{page.name}: {link}")


unittest.main()

"""Tests the Debian packages: what they hold and need, what Debian's checkers say of them, and that
they go without leaving anything behind.

Usage: debian.py ROOT FOLDER
ROOT: the repository; FOLDER: where install.py has put them.
"""
import gzip
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

FOLDER = pathlib.Path(sys.argv.pop())
ROOT = pathlib.Path(sys.argv.pop())
PACKAGES = sorted((FOLDER / "packages").glob("*.deb"))
*FURTHER, KELPIX, DEV = PACKAGES
# Built where there are Open MPI and liblo.
WALL = [package for package in FURTHER if package.name.startswith("kelpix-wall")]
LIVE = [package for package in FURTHER if package.name.startswith("kelpix-live")]
USR = FOLDER / "root/usr"
BUILD = FOLDER.parents[2]
sys.path.insert(0, str(ROOT / "tests/checks"))
import links  # noqa: E402, from ROOT


def output(*command, **options):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True, **options).stdout


def depends(package):
    return re.split(r",\s*", output("dpkg-deb", "--field", package, "Depends").strip())


class Packages(unittest.TestCase):
    def test_lintian_finds_no_error(self):
        # Who makes packages for others names themselves with -DKELPIX_MAINTAINER.
        nameless = "bogus-mail-host,bogus-mail-host-in-debian-changelog"
        # lintian does not tidy up.
        with tempfile.TemporaryDirectory() as folder:
            result = subprocess.run(
                ["lintian", "--no-cfg", "--allow-root", "--fail-on", "error,warning",
                 "--suppress-tags", nameless, *PACKAGES],
                stdout=subprocess.PIPE, text=True, env=dict(os.environ, TMPDIR=folder))
        self.assertEqual((result.returncode, result.stdout), (0, ""))

    def test_the_desktop_entry_is_valid(self):
        self.assertEqual(output("desktop-file-validate", USR / "share/applications/kelpix.desktop"), "")

    def test_the_icon_is_there_in_the_usual_sizes(self):
        icons = USR / "share/icons/hicolor"
        drawing = icons / "scalable/apps/kelpix.svg"
        sizes = {path.parent.parent.name for path in icons.rglob("kelpix.png")}
        self.assertEqual(sizes, {f"{n}x{n}" for n in (16, 22, 24, 32, 48, 64, 128, 256, 512)})
        with tempfile.TemporaryDirectory() as folder:
            drawn = pathlib.Path(folder, "drawn.png")
            for size in sizes:
                width, height = size.split("x")
                subprocess.run(["rsvg-convert", "-w", width, "-h", height, drawing, "-o", drawn],
                               check=True)
                # Another version of the library may round otherwise.
                result = subprocess.run(
                    ["compare", "-metric", "AE", "-fuzz", "2%", drawn,
                     icons / size / "apps/kelpix.png", "null:"],
                    stderr=subprocess.PIPE, text=True)
                self.assertEqual(result.stderr, "0", f"{size}: not kelpix.svg, drawn by rsvg-convert")

    def test_the_appstream_data_are_valid(self):
        published = BUILD / "packaging/published/kelpix.metainfo.xml"
        for path in USR / "share/metainfo/kelpix.metainfo.xml", published:
            output("appstreamcli", "validate", "--no-net", path)
        # Where the pictures are on the web, those of the documents are the screenshots.
        screenshots = re.findall(r'width="(\d+)" height="(\d+)">https://kelpix.invalid/pictures/(.*)</',
                                 published.read_text())
        self.assertEqual(len(screenshots), 2)
        for width, height, name in screenshots:
            self.assertEqual(output("identify", "-format", "%w %h", ROOT / "docs/pictures" / name),
                             f"{width} {height}")

    def test_the_program_needs_the_libraries_that_it_is_linked_with(self):
        names = {entry.split(" ")[0] for entry in depends(KELPIX)}
        self.assertLessEqual({"libc6", "libfltk-gl1.3", "libglew2.2", "libopenal1", "libvorbisfile3"},
                             names)
        self.assertFalse([name for name in names if name.endswith("-dev")])

    def test_the_wall_needs_the_scene_and_open_mpi(self):
        for package in WALL:
            entries = depends(package)
            version = output("dpkg-deb", "--field", KELPIX, "Version").strip()
            self.assertIn(f"kelpix (= {version})", entries)
            names = {entry.split(" ")[0] for entry in entries}
            self.assertLessEqual({"libc6", "libfltk-gl1.3", "libopenmpi3", "openmpi-bin"}, names)
            self.assertFalse([name for name in names if name.endswith("-dev")])

    def test_the_live_scene_needs_the_scene_and_liblo(self):
        version = output("dpkg-deb", "--field", KELPIX, "Version").strip()
        for package in LIVE:
            entries = depends(package)
            self.assertIn(f"kelpix (= {version})", entries)
            self.assertIn("liblo7", {entry.split(" ")[0] for entry in entries})
        for package in set(PACKAGES) - set(LIVE) - set(WALL):
            self.assertNotIn("liblo", " ".join(depends(package)))

    def test_the_framework_needs_what_its_build_needs(self):
        lines = (ROOT / "cmake/packages.txt").read_text().splitlines()
        wanted = [line.split()[1] for line in lines if line.startswith("build ")]
        wanted = [name for name in wanted if name.endswith("-dev") or name == "pkg-config"]
        self.assertGreater(len(wanted), 8)
        self.assertEqual(depends(DEV), wanted)

    def test_they_have_no_file_in_common(self):
        files = [set(re.findall(r" (\./\S*[^/])$", output("dpkg-deb", "--contents", package), re.M))
                 for package in PACKAGES]
        self.assertGreater(len(files[-2]), 20)
        self.assertGreater(len(files[-1]), 40)
        self.assertEqual(len(set.union(*files)), sum(map(len, files)))

    def test_every_header_of_the_framework_is_in(self):
        folders = ["src-math", "src-rates", "src-image", "src-sound", "src-font", "src-cluster",
                   "src-core", "kelpix"]
        private = {"Column.h", "ImageDecoder.h", "ImageFile.h", "JPEGErrors.h", "MediaFolder.h",
                   "Neighborhood.h", "ObjLibrary.h", "ObjStore.h", "ObjText.h", "Prefetch.h",
                   "ScreenPosition.h", "StandardStreams.h", "TileReader.h", "UpdateRun.h",
                   "WindowIcon.h", "WindowIconRows.h"}
        headers = {path.name for folder in folders for path in (ROOT / folder).rglob("*.h")}
        self.assertEqual({path.name for path in (USR / "include/kelpix").iterdir()}, headers - private)

    def test_every_program_has_a_man_page(self):
        programs = {path.name for path in (USR / "bin").iterdir()}
        self.assertEqual(programs, {"kelpix", "kelpix-media", "kelpix-record", "kelpix-show",
                                    "kelpix-soak", *["kelpix-live" for _ in LIVE],
                                    *["kelpix-wall" for _ in WALL]})
        self.assertEqual({path.name for path in (USR / "share/man/man1").iterdir()},
                         {f"{name}.1.gz" for name in programs})

    def test_the_documents_are_in_and_what_they_show_and_link_to(self):
        for package, names in [("kelpix", "faults media recording running scene"),
                               *[("kelpix-live", "live") for _ in LIVE],
                               *[("kelpix-wall", "wall") for _ in WALL],
                               ("libkelpix-dev", "architecture first-hour framework limits")]:
            count = 0
            folder = USR / "share/doc" / package
            self.assertEqual(sorted(path.stem for path in folder.glob("*.md")), names.split())
            for path in folder.glob("*.md"):
                prose = re.sub(r"^```.*?^```$", "", path.read_text(), flags=re.M | re.S)
                count += len(links.links(path))
                self.assertEqual(links.broken(path), [])
                self.assertEqual(prose.count("\n"), re.sub(
                    r"^```.*?^```$", "", (ROOT / "docs" / path.name).read_text(),
                    flags=re.M | re.S).count("\n"), "nothing of it is lost")
            self.assertGreater(count, 6 if package in ("kelpix", "libkelpix-dev") else 0)

    def test_the_licenses_are_in(self):
        for package in [path.name.split("_")[0] for path in PACKAGES]:
            text = (USR / "share/doc" / package / "copyright").read_text()
            for paragraph in (ROOT / "LICENSE").read_text().split("\n\n")[2:]:
                self.assertIn(" ".join(paragraph.split()), " ".join(text.split()))
            self.assertIn("License: SIL-OFL-1.1", text)
            self.assertIn("SIL OPEN FONT LICENSE Version 1.1", text)
        news = gzip.open(USR / "share/doc/kelpix/NEWS.gz", "rt").read()
        self.assertEqual(news, (ROOT / "CHANGELOG.md").read_text())

    def test_nothing_in_them_points_to_the_folder_that_they_were_built_in(self):
        for path in USR.rglob("*"):
            if path.is_file():
                self.assertNotIn(str(ROOT).encode(), path.read_bytes(), path)

    def test_nothing_is_left_when_they_are_removed(self):
        with tempfile.TemporaryDirectory() as name:
            root = pathlib.Path(name)
            (root / "var/lib/dpkg").mkdir(parents=True)
            (root / "var/lib/dpkg/status").touch()
            # dpkg has to be root: who is not is so in a namespace of the kernel.
            as_root = [] if os.geteuid() == 0 else ["unshare", "--map-root-user"]
            dpkg = [*as_root, "dpkg", f"--root={root}", "--force-depends", "--no-triggers",
                    f"--log={root}/var/lib/dpkg/log"]
            subprocess.run([*dpkg, "--install", *PACKAGES], check=True,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            self.assertTrue((root / "usr/bin/kelpix").exists())
            subprocess.run([*dpkg, "--purge", *[path.name.split("_")[0] for path in PACKAGES]],
                           check=True,
                           stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            left = [path for path in root.iterdir() if path.name != "var"]
            self.assertEqual(left, [])


unittest.main()

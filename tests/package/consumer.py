"""Tests what somebody else builds against the installed framework: a program with find_package and one
with pkg-config, and the examples.

Usage: consumer.py SOURCES FOLDER CMAKE COMPILER
SOURCES: the folder consumer; FOLDER: where install.py has unpacked the packages.
"""
import os
import pathlib
import shlex
import subprocess
import sys
import tempfile
import unittest

COMPILER = sys.argv.pop()
CMAKE = sys.argv.pop()
FOLDER = pathlib.Path(sys.argv.pop())
SOURCES = pathlib.Path(sys.argv.pop())
USR = FOLDER / "root/usr"
EXAMPLES = USR / "share/doc/libkelpix-dev/examples"


class Consumer(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.build = pathlib.Path(folder.name)

    def run_command(self, *command, **options):
        result = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                                **options)
        self.assertEqual(result.returncode, 0, result.stdout)
        return result.stdout

    def configure(self, sources, *definitions, **options):
        return self.run_command(CMAKE, "-G", "Ninja", "-S", sources, "-B", self.build,
                                f"-DCMAKE_PREFIX_PATH={USR}", f"-DCMAKE_CXX_COMPILER={COMPILER}",
                                *definitions, **options)

    def assert_works(self, program):
        """It prints the window's line, its own, and what the node and the store say."""
        self.assertEqual(self.run_command(program, cwd=self.build).splitlines()[0], "Loading...")
        self.assertEqual(self.run_command(program, cwd=self.build).splitlines()[-1], "3 0")

    def test_builds_with_find_package(self):
        self.configure(SOURCES)
        self.run_command(CMAKE, "--build", self.build)
        self.assert_works(self.build / "consumer")

    def test_builds_with_pkg_config(self):
        path = next(USR.glob("lib/**/pkgconfig"))
        environment = dict(os.environ, PKG_CONFIG_PATH=str(path))
        flags = self.run_command("pkg-config", "--cflags", "--libs", "kelpix", env=environment)
        self.run_command(COMPILER, "-std=c++20", SOURCES / "main.cpp", "-o", self.build / "consumer",
                         *shlex.split(flags))
        self.assert_works(self.build / "consumer")

    def test_pkg_config_finds_every_library(self):
        path = next(USR.glob("lib/**/pkgconfig"))
        environment = dict(os.environ, PKG_CONFIG_PATH=str(path))
        flags = self.run_command("pkg-config", "--libs-only-l", "kelpix", env=environment).split()
        ours = [flag for flag in flags if flag.startswith("-lkelpix_")]
        self.assertEqual({f"lib{flag[2:]}.a" for flag in ours},
                         {path.name for path in USR.glob("lib/**/*.a")})

    def test_builds_the_examples(self):
        self.configure(EXAMPLES)
        self.run_command(CMAKE, "--build", self.build)
        wall = self.run_command(self.build / "tiles", EXAMPLES / "wall.cfg")
        self.assertIn("A wall of 3 x 2 tiles", wall)

    def test_a_library_that_is_missing_is_named(self):
        (self.build / "CMakeLists.txt").write_text(
            "cmake_minimum_required(VERSION 3.25)\n"
            "project(optional LANGUAGES CXX)\n"
            "find_package(kelpix)\n"
            'message("found: ${kelpix_FOUND} ${kelpix_NOT_FOUND_MESSAGE}")\n')
        out = self.configure(self.build, "-DCMAKE_DISABLE_FIND_PACKAGE_JPEG=ON")
        self.assertRegex(out, "found: (0|FALSE) ")
        self.assertIn("missing: JPEG::JPEG\n", out)


unittest.main()

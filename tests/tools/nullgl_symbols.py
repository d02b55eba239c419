"""Checks that a program with nullgl has every function of OpenGL that kelpix calls, and that the
libraries of the system that call OpenGL take the program's functions.

Usage: nullgl_symbols.py PROGRAM LIBRARY...
PROGRAM links nullgl, the archives LIBRARY... are kelpix's.
"""
import os
import re
import subprocess
import sys
import unittest

PROGRAM, *LIBRARIES = sys.argv[1:]
FUNCTION = re.compile(r"^(gl[A-Z]\w*|glewInit)$")
# binding file /lib/libGLU.so.1 [0] to ./program [0]: normal symbol `glPushMatrix'
BINDING = re.compile(r"binding file (\S+) \[0\] to (\S+) \[0\]: normal symbol `(\w+)'")


def symbols(path, *options):
    """The functions of OpenGL among the symbols that nm lists with these options."""
    lines = subprocess.run(["nm", "--format=posix", *options, path], check=True,
                           capture_output=True, text=True).stdout.split("\n")
    return {line.split()[0] for line in lines if line and FUNCTION.match(line.split()[0])}


class NullGLSymbols(unittest.TestCase):
    def setUp(self):
        self.defined = symbols(PROGRAM, "--defined-only")
        self.assertIn("glPushMatrix", self.defined)

    def test_every_function_that_kelpix_calls_is_there(self):
        for library in LIBRARIES:
            called = symbols(library, "--undefined-only")
            self.assertEqual(sorted(called - self.defined), [], library)

    def test_the_systems_libraries_take_the_programs_functions(self):
        environment = dict(os.environ, LD_DEBUG="bindings", LD_BIND_NOW="1")
        run = subprocess.run([PROGRAM, "--gtest_list_tests"], env=environment, check=True,
                             capture_output=True, text=True)
        from_glu = set()
        for user, target, symbol in BINDING.findall(run.stderr):
            if symbol in self.defined and os.path.basename(user).startswith("lib"):
                with self.subTest(library=user, function=symbol):
                    self.assertEqual(os.path.realpath(target), os.path.realpath(PROGRAM))
                if "libGLU" in user:
                    from_glu.add(symbol)
        self.assertLessEqual({"glMultMatrixd", "glOrtho", "glTexImage2D", "glGetString"}, from_glu)


unittest.main(argv=sys.argv[:1])

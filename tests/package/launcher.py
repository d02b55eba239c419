"""Tests the installed launcher around fake programs: what it plays, with which settings, and what it
says when it cannot.

Usage: launcher.py LAUNCHER VERSION
LAUNCHER: the one that will be installed; its tree is made here.
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

VERSION = sys.argv.pop()
LAUNCHER = sys.argv.pop()

# Says how it was started, and ends with a status of its own.
PROGRAM = """#!/bin/sh
echo "arguments $#"
echo "folder $(pwd -P)"
echo "conf ${ALSOFT_CONF-unset}"
echo "drivers ${ALSOFT_DRIVERS-unset}"
echo "tunables ${GLIBC_TUNABLES-unset}"
exit 42
"""


class Launcher(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        # A name that a careless script would take apart.
        self.root = pathlib.Path(folder.name).resolve() / "a root; $(false) *"
        self.prefix = self.root / "usr"
        self.launcher = self.prefix / "bin/kelpix"
        self.program = self.prefix / "libexec/kelpix/kelpix"
        self.sound_check = self.prefix / "libexec/kelpix/kelpix-sound-check"
        self.gl_check = self.prefix / "libexec/kelpix/kelpix-gl-check"
        self.window_setup = self.prefix / "libexec/kelpix/kelpix-window-setup"
        self.installed = self.prefix / "share/kelpix/media"
        self.conf = self.prefix / "share/kelpix/alsoft.conf"
        self.home = self.root / "home"
        self.setups = self.home / "setups"
        self.launcher.parent.mkdir(parents=True)
        shutil.copy(LAUNCHER, self.launcher)
        self.script(self.program, PROGRAM)
        self.script(self.sound_check, "#!/bin/sh\necho noise; echo noise >&2; exit 0\n")
        self.script(self.gl_check, "#!/bin/sh\necho noise >&2; exit 0\n")
        # Says how it was started, all at once.
        self.script(self.window_setup, """#!/bin/sh
echo "$PPID $*" >"$HOME/new"
mv "$HOME/new" "$HOME/setups"
""")
        self.media(self.installed)
        self.home.mkdir()

    def script(self, path, text):
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)
        path.chmod(0o755)

    def media(self, folder):
        (folder / "data").mkdir(parents=True)
        (folder / "data/mocap.txt").write_text("MOCAP")
        return folder

    def start(self, *arguments, folder=None, command=None, **changes):
        """Starts the launcher without a terminal's environment; a change of None takes a name out."""
        environment = {"PATH": os.environ["PATH"], "HOME": str(self.home), "DISPLAY": ":7"}
        for name, value in changes.items():
            environment.pop(name, None)
            if value is not None:
                environment[name] = str(value)
        return subprocess.run([command or self.launcher, *arguments], cwd=folder or self.root,
                              env=environment, capture_output=True, text=True)

    def assert_plays(self, result, folder, conf=None, drivers="unset",
                     tunables="glibc.malloc.tcache_count=1000"):
        self.assertEqual(result.returncode, 42, result.stderr)
        lines = dict(line.split(" ", 1) for line in result.stdout.splitlines())
        self.assertEqual(lines["arguments"], "0")
        self.assertEqual(lines["folder"], str(folder))
        if conf is None:
            conf = self.conf
        if conf == "unset":
            self.assertEqual(lines["conf"], "unset")
        else:
            self.assertEqual(os.path.realpath(lines["conf"]), os.path.realpath(conf))
        self.assertEqual(lines["drivers"], drivers)
        self.assertEqual(lines["tunables"], tunables)

    def assert_refuses(self, result, status, *words):
        self.assertEqual(result.returncode, status)
        self.assertEqual(result.stdout, "")
        self.assertEqual(result.stderr.count("\n"), 1, result.stderr)
        self.assertTrue(result.stderr.startswith("kelpix: "), result.stderr)
        for word in words:
            self.assertIn(word, result.stderr)

    def assert_refuses_line(self, result, message):
        """Refuses a command line, as all programs do."""
        self.assertEqual((result.returncode, result.stdout), (2, ""))
        self.assertEqual(result.stderr, f"kelpix: {message}\nkelpix --help lists the options.\n")

    # What it plays.

    def test_plays_the_installed_media_and_passes_the_status_on(self):
        result = self.start()
        self.assert_plays(result, self.installed)
        self.assertEqual(result.stderr, "")

    def test_plays_the_folder_that_it_is_started_in(self):
        folder = self.media(self.root / "reef")
        self.assert_plays(self.start(folder=folder), folder)

    def test_says_that_the_media_of_this_folder_do_not_play(self):
        message = "kelpix: this folder has media but no data/mocap.txt: " \
                  "the media that came with kelpix play\n"
        for name in ("data/underwater.jpg", "data/fish0.png", "data/bubble.png",
                     "sound/magpie_vocal.ogg", "sound/bubbles_sound.ogg",
                     "fonts/ChalkboardBold.ttf"):
            file = self.root / "half" / name
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_text("")
            with self.subTest(name=name):
                result = self.start(folder=self.root / "half")
                self.assert_plays(result, self.installed)
                self.assertEqual(result.stderr, message)
            if name != "data/underwater.jpg":  # beside each of the others it is told once, too
                file.unlink()
        result = self.start("--media", self.installed, folder=self.root / "half")
        self.assert_plays(result, self.installed)
        self.assertEqual(result.stderr, "")

    def test_plays_the_folder_that_is_named(self):
        here = self.media(self.root / "here")
        there = self.media(self.root / "there")
        self.assert_plays(self.start("--media", "../there", folder=here), there)
        self.assert_plays(self.start("--media", there, folder=here), there)
        self.assert_plays(self.start(f"--media={there}", folder=here), there)
        self.assert_plays(self.start(there, folder=here), there)
        self.assert_plays(self.start("../there", folder=here), there)

    def test_plays_folders_of_odd_names(self):
        for name in ("-", "-P", "--help", "with space", "a\nb", "*", "a=b"):
            folder = self.media(self.root / name)
            for arguments in ["--media", name], [f"--media={name}"]:
                with self.subTest(arguments=arguments):
                    result = self.start(*arguments, OLDPWD="/", CDPATH="/")
                    self.assertEqual(result.returncode, 42, result.stderr)
                    self.assertIn(f"folder {folder}\n", result.stdout)

    def test_is_found_through_a_link_and_through_the_path(self):
        link = self.root / "link"
        link.symlink_to(self.launcher)
        self.assert_plays(self.start(command=link), self.installed)
        path = f"{self.launcher.parent}:{os.environ['PATH']}"
        result = subprocess.run(["kelpix"], cwd=self.root, capture_output=True, text=True,
                                env={"PATH": path, "HOME": str(self.home), "DISPLAY": ":7"})
        self.assert_plays(result, self.installed)

    def test_becomes_the_program(self):
        self.script(self.program, "#!/bin/sh\necho $$\n")
        launcher = subprocess.Popen([self.launcher], cwd=self.root, stdout=subprocess.PIPE, text=True,
                                    env={"PATH": os.environ["PATH"], "DISPLAY": ":7"})
        out, _ = launcher.communicate()
        self.assertEqual(out, f"{launcher.pid}\n")

    # The window.

    def setup(self, launcher):
        """What the helper was told about the window of the launcher's process, and who its parent was."""
        end = time.monotonic() + 60
        while not self.setups.exists():
            self.assertLess(time.monotonic(), end, "the helper was not started")
            time.sleep(0.01)
        parent, *arguments = self.setups.read_text().split()
        self.assertNotEqual(int(parent), launcher, "the program has no child")
        self.setups.unlink()
        self.assertEqual(arguments[:2], ["--pid", str(launcher)])
        return " ".join(arguments[2:])

    def test_sets_the_window_up(self):
        self.script(self.program, "#!/bin/sh\necho $$\n")
        for arguments, told in ((["--fullscreen"], "--fullscreen --zoom 0"),
                                (["--zoom", "3"], "--zoom 3"),
                                (["--zoom=-20", "--fullscreen"], "--fullscreen --zoom -20"),
                                (["--zoom", "7", "--zoom", "0", "--fullscreen"],
                                 "--fullscreen --zoom 0")):
            with self.subTest(arguments=arguments):
                result = self.start(*arguments)
                self.assertEqual((result.returncode, result.stderr), (0, ""))
                self.assertEqual(self.setup(int(result.stdout)), told)

    def test_leaves_the_window_alone(self):
        for arguments in [], ["--zoom", "0"]:
            self.assert_plays(self.start(*arguments), self.installed)
            self.assertFalse(self.setups.exists())

    def test_names_a_software_renderer(self):
        self.script(self.gl_check, "#!/bin/sh\necho llvmpipe; exit 1\n")
        result = self.start()
        self.assert_plays(result, self.installed)
        self.assertEqual(result.stderr, "kelpix: llvmpipe: below 40 updates a second the tentacles "
                                        "break into zigzags; a smaller window helps\n")
        # kelpix-show starts it again and again.
        self.assertEqual(self.start(KELPIX_SHOWING="1").stderr, result.stderr)
        self.assertEqual(self.start(KELPIX_SHOWING="2").stderr, "")

    def test_leaves_the_users_settings_of_malloc_the_last_word(self):
        mine = "glibc.malloc.tcache_count=7:glibc.malloc.perturb=1"
        self.assert_plays(self.start(GLIBC_TUNABLES=mine), self.installed,
                          tunables="glibc.malloc.tcache_count=1000:" + mine)

    # The sound.

    def test_sets_the_fine_sound_clock(self):
        self.assert_plays(self.start(HOME=None), self.installed)

    def test_leaves_the_user_their_sound_settings(self):
        self.assert_plays(self.start(ALSOFT_CONF="/mine"), self.installed, conf="/mine")
        config = self.root / "config"
        config.mkdir()
        (config / "alsoft.conf").write_text("")
        self.assert_plays(self.start(XDG_CONFIG_HOME=config), self.installed, conf="unset")
        (self.home / ".config").mkdir()
        (self.home / ".config/alsoft.conf").write_text("")
        self.assert_plays(self.start(), self.installed, conf="unset")
        self.assert_plays(self.start(XDG_CONFIG_HOME=self.root / "none"), self.installed)
        (self.home / ".alsoftrc").write_text("")
        self.assert_plays(self.start(XDG_CONFIG_HOME=self.root / "none"), self.installed, conf="unset")

    def test_chooses_the_silent_clock_without_a_sound_device(self):
        self.script(self.sound_check, "#!/bin/sh\necho noise >&2; exit 1\n")
        result = self.start()
        self.assert_plays(result, self.installed, drivers="null")
        self.assertEqual(result.stderr, "kelpix: no sound device: the voice plays silently\n")

    def test_asks_for_the_sound_device_with_the_settings_that_the_program_gets(self):
        self.script(self.sound_check, '#!/bin/sh\n[ "$ALSOFT_DRIVERS" = loud ] && [ -n "$ALSOFT_CONF" ]\n')
        self.assert_plays(self.start(ALSOFT_DRIVERS="loud"), self.installed, drivers="loud")

    # What it says.

    def test_helps(self):
        for argument, display in (("--help", ":7"), ("-h", None)):
            result = self.start(argument, DISPLAY=display)
            self.assertEqual((result.returncode, result.stderr), (0, ""))
            self.assertTrue(result.stdout.startswith("usage: kelpix [option ...] [DIR]\n"))
            for option in ("--media DIR", "--fullscreen", "--zoom N", "-h, --help", "--version"):
                self.assertIn(f"\n  {option} ", result.stdout)

    def test_tells_its_version(self):
        result = self.start("--version", DISPLAY=None)
        self.assertEqual((result.returncode, result.stdout, result.stderr),
                         (0, f"kelpix {VERSION}\n", ""))

    def test_refuses_what_makes_no_sense(self):
        for argument in ("--loud", "--loud=1", "-n", "-", "", "--", "-h=", "-\\n"):
            with self.subTest(argument=argument):
                self.assert_refuses_line(self.start(argument), f'unknown option "{argument}"')
        for arguments in ["--media"], ["--media", ""], ["--media=", "reef"]:
            with self.subTest(arguments=arguments):
                self.assert_refuses_line(self.start(*arguments), "--media needs a value")
        self.assert_refuses_line(self.start("--zoom"), "--zoom needs a value")
        self.assert_refuses_line(self.start("--zoom="), "--zoom needs a value")
        for value in ("x", "3x", "1.5", "21", "-21", "100", "+1", "-", " 1", "--fullscreen", "0x3"):
            with self.subTest(zoom=value):
                self.assert_refuses_line(
                    self.start("--zoom", value),
                    f'--zoom takes a whole number from -20 to 20, not "{value}"')
        self.assert_refuses_line(self.start("--help=all"), "--help takes no value")
        self.assert_refuses_line(self.start("--fullscreen=1"), "--fullscreen takes no value")
        for arguments in ["a", "b"], ["--media", "a", "b"], ["a", "--media=b"]:
            with self.subTest(arguments=arguments):
                self.assert_refuses_line(self.start(*arguments), 'two folders of media: "a" and "b"')

    def test_prints_names_that_a_terminal_takes_for_commands(self):
        # As the programs around the scene print them: PrintableTest has the same.
        for name, printed in (
                ("data/Grün €\U0001F41F \\x41 ~.txt".encode(), "data/Grün €\U0001F41F \\x41 ~.txt"),
                (b"a\nb\x1b[2J\t\x7f", "a\\x0ab\\x1b[2J\\x09\\x7f"),
                (b"a\n\n", "a\\x0a\\x0a"),
                ("\u009b2J\u00a0".encode(), "\\xc2\\x9b2J\u00a0"),
                (b"\x9b2J", "\\x9b2J"),
                (b"\xc3", "\\xc3"),
                (b"\xc0\x9b", "\\xc0\\x9b"),
                (b"\xe0\x82\x9b", "\\xe0\\x82\\x9b"),
                ("\u0800\ud7ff\ue000\uffff".encode(), "\u0800\ud7ff\ue000\uffff"),
                (b"\xed\xa0\x80", "\\xed\\xa0\\x80"),
                (b"\xe2\x82z", "\\xe2\\x82z"),
                (b"\xf0\x80\x80\x80", "\\xf0\\x80\\x80\\x80"),
                ("\U00010000\U0010ffff".encode(), "\U00010000\U0010ffff"),
                (b"\xf4\x90\x80\x80", "\\xf4\\x90\\x80\\x80"),
                (b"\xf0\x9f\x90z", "\\xf0\\x9f\\x90z"),
                (b"\xf5\x80\x80\x80", "\\xf5\\x80\\x80\\x80"),
                (b"\xff%s%n", "\\xff%s%n")):
            for locale in None, "C.UTF-8":
                with self.subTest(name=name, locale=locale):
                    result = self.start("--media", name, LC_ALL=locale)
                    self.assert_refuses(result, 1, f" ./{printed}: there is no data/mocap.txt\n")
                    result = self.start("--zoom", name, LC_ALL=locale)
                    self.assert_refuses_line(
                        result, f'--zoom takes a whole number from -20 to 20, not "{printed}"')

    def test_says_that_there_are_no_media(self):
        self.assert_refuses(self.start("--media", "nowhere"), 1, "nowhere", "data/mocap.txt")
        self.assert_refuses(self.start("nowhere"), 1, "nowhere", "data/mocap.txt")
        shutil.rmtree(self.installed)
        self.assert_refuses(self.start(), 1, "installed media", "--media")

    def test_says_that_there_is_no_display(self):
        for display in (None, ""):
            self.assert_refuses(self.start(DISPLAY=display), 1, "no display", "DISPLAY")

    def test_says_that_the_program_is_missing(self):
        self.program.unlink()
        self.assert_refuses(self.start(), 1, "the program is missing", "libexec/kelpix/kelpix")


unittest.main()

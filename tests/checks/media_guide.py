"""Checks that the worked example of docs/media.md makes a dance that the scene can play.

Usage: media_guide.py GUIDE SET PROGRAM
GUIDE: docs/media.md; SET: a media folder; PROGRAM: kelpix-media.
Prints what PROGRAM says of the set with that dance; the exit status is 1 when anything but "ok" is
said of a file.
"""
import pathlib
import re
import subprocess
import sys
import tempfile


def block(guide, language, name):
    return re.search(rf"^```{language} {name}\n(.*?)^```$", guide, re.M | re.S).group(1)


def main(guide, media_set, program):
    text = pathlib.Path(guide).read_text()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for path in pathlib.Path(media_set).resolve().iterdir():
            if path.name != "data":
                (folder / path.name).symlink_to(path)
        (folder / "data").mkdir()
        for path in (pathlib.Path(media_set).resolve() / "data").iterdir():
            if path.name not in ("dance.txt", "rehearsal.txt"):
                (folder / "data" / path.name).symlink_to(path)
        (folder / "table.txt").write_text(block(text, "text", "table.txt"))
        command = re.search(r"^kelpix-media (--out \. --dance .*)$", text, re.M).group(1)
        subprocess.run([program, *command.split()], cwd=folder, check=True,
                       stdout=subprocess.DEVNULL)
        check = subprocess.run([program, "--check", folder], stdout=subprocess.PIPE, text=True)
    print(check.stdout, end="")
    fine = all(line.startswith("ok ") for line in check.stdout.splitlines()[:-1])
    return 0 if check.returncode == 0 and fine else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))

"""Makes the Debian packages and unpacks them below an empty root, as the other tests of this folder
need them.

Usage: install.py CPACK BUILD FOLDER
Leaves the packages in FOLDER/packages and what is in them in FOLDER/root.
"""
import pathlib
import shutil
import subprocess
import sys


def main(cpack, build, folder):
    folder = pathlib.Path(folder)
    shutil.rmtree(folder, ignore_errors=True)
    subprocess.run([cpack, "-B", folder / "packages"], cwd=build, check=True)
    packages = sorted((folder / "packages").glob("*.deb"))
    assert [path.name.split("_")[0] for path in packages] == ["kelpix", "libkelpix-dev"], packages
    for package in packages:
        subprocess.run(["dpkg-deb", "--extract", package, folder / "root"], check=True)


if __name__ == "__main__":
    main(*sys.argv[1:])

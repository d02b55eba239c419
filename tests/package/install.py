"""Makes the Debian packages and unpacks them below an empty root, as the other tests of this folder
need them. Checks that cmake --install brings the same files.

Usage: install.py CMAKE CPACK BUILD FOLDER
Leaves the packages in FOLDER/packages, what is in them in FOLDER/root, and what was installed without
them in FOLDER/prefix.
"""
import pathlib
import shutil
import subprocess
import sys


def files(folder):
    return {path.relative_to(folder) for path in folder.rglob("*") if not path.is_dir()}


def main(cmake, cpack, build, folder):
    folder = pathlib.Path(folder)
    shutil.rmtree(folder, ignore_errors=True)
    subprocess.run([cpack, "-B", folder / "packages"], cwd=build, check=True)
    packages = sorted((folder / "packages").glob("*.deb"))
    names = [path.name.split("_")[0] for path in packages]
    assert [name for name in names if name not in ("kelpix-live", "kelpix-wall")] == [
        "kelpix", "libkelpix-dev"], packages
    for package in packages:
        subprocess.run(["dpkg-deb", "--extract", package, folder / "root"], check=True)

    subprocess.run([cmake, "--install", build, "--prefix", folder / "prefix"], check=True,
                   stdout=subprocess.DEVNULL)
    subprocess.run([folder / "prefix/bin/kelpix", "--version"], check=True)
    different = files(folder / "root/usr") ^ files(folder / "prefix")
    assert not different, different


if __name__ == "__main__":
    main(*sys.argv[1:])

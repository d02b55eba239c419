"""Checks that folders include each other in the order that the architecture allows.

Usage: include_directions.py ROOT
Prints each line that goes against it; the exit status is 1 when there is one.
"""
import pathlib
import re
import sys

# Folder -> the folders whose headers it may include. All may include those of src-files.
ALLOWED = {
    "src-files": [],
    "src-math": [],
    "src-rates": [],
    "src-image": [],
    "src-sound": [],
    "src-font": [],
    "src-cluster": [],
    "src-core": ["src-math", "src-rates", "src-image", "src-font"],
    "kelpix": ["src-math", "src-rates", "src-image", "src-core", "src-sound"],
    "media": [],
    "media/pictures": ["media"],
    "media/sounds": ["media"],
    "media/dances": ["media", "src-rates", "tools/commandline"],
    "media/check": ["media", "media/dances", "src-image", "src-sound", "src-font",
                    "src-rates"],
    "media/program": ["media", "media/pictures", "media/sounds", "media/dances", "media/check",
                      "tools/commandline"],
    "tools/stage": ["src-math", "src-rates", "src-image", "src-core", "src-sound", "kelpix"],
    "tools/nullgl": ["src-math"],
    "tools/steer": ["src-math", "src-rates", "src-core", "src-sound", "kelpix"],
    "tools/commandline": [],
    "tools/record": ["src-math", "src-rates", "src-image", "src-core", "src-sound", "kelpix",
                     "tools/stage", "tools/steer", "tools/commandline", "src-cluster",
                     "tools/wall/layout", "tools/wall/protocol", "tools/wall/scene"],
    "tools/live": ["src-math", "src-rates", "src-core", "src-sound", "kelpix", "tools/stage",
                   "tools/steer", "tools/osc", "tools/record", "tools/status", "tools/commandline"],
    "tools/desktop": [],
    "tools/osc": [],
    "tools/status": [],
    "tools/show": ["src-sound", "tools/stage", "tools/commandline", "tools/desktop", "tools/status"],
    "tools/soak": ["src-math", "src-image", "src-core", "src-sound", "kelpix", "tools/stage",
                   "tools/nullgl", "tools/commandline"],
    "tools/wall/layout": ["tools/commandline", "src-cluster"],
    "tools/wall/drawing": ["src-cluster", "src-core", "src-font", "tools/wall/layout"],
    "tools/wall/protocol": [],
    "tools/wall/scene": ["src-math", "src-rates", "src-image", "src-core", "src-sound", "kelpix",
                         "tools/stage", "tools/commandline", "src-cluster", "tools/wall/layout",
                         "tools/wall/drawing", "tools/wall/protocol", "tools/steer"],
    "tools/wall/program": ["src-core", "src-sound", "kelpix", "tools/stage", "tools/steer", "tools/osc",
                           "tools/commandline", "tools/record", "tools/status", "src-cluster", "tools/wall/layout",
                           "tools/wall/drawing", "tools/wall/protocol", "tools/wall/scene"],
}
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"')


def sources(root, folder):
    """The folder's files, without those of a folder below it that stands in ALLOWED itself."""
    below = [root / other for other in ALLOWED if other.startswith(folder + "/")]
    return sorted(path for path in (root / folder).rglob("*")
                  if path.suffix in (".h", ".cpp")
                  and not any(other in path.parents for other in below))


def headers(root, folder):
    return {path.name for path in sources(root, folder) if path.suffix == ".h"}


def wrong_includes(root):
    owners = {name: folder for folder in ALLOWED for name in headers(root, folder)}
    for folder, allowed in ALLOWED.items():
        # A folder's own header is found before another one of the same name.
        owner = owners | {name: folder for name in headers(root, folder)}
        for path in sources(root, folder):
            for number, line in enumerate(path.read_text().splitlines(), 1):
                match = INCLUDE.match(line)
                if not match:
                    continue
                source = owner.get(match.group(1))
                if source is None:
                    yield f"{path}:{number}: {match.group(1)} is no header of the project"
                elif source not in (folder, "src-files", *allowed):
                    yield f"{path}:{number}: {folder} must not include from {source}"


def main(root):
    lines = list(wrong_includes(pathlib.Path(root)))
    print("\n".join(lines))
    return 1 if lines else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1]))

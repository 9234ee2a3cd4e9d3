"""Fails if a file includes one of a room that its own room does not stand on, if files include each
other in a circle, or if the rooms below the desktop include a header of an operating system.
"""
import os
import re
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]

# What each room may include besides itself. Tests and benchmarks may include everything.
STANDS_ON = {
    "spectral": set(),
    "engine": {"spectral"},
    "palette": {"engine", "spectral"},
    "platform": {"engine"},
    "platform/linux": {"platform", "engine"},
    "platform/windows": {"platform", "engine"},
    "platform/null": {"platform", "engine"},
    "colour_space": {"platform", "spectral"},
    "shell": {"colour_space", "platform", "engine", "spectral"},
    "cli": {"palette", "engine", "spectral"},
    "library": {"engine", "spectral"},
}
OUTSIDE = {"tests", "bench"}

# The two programs' entry points start the shell.
ENTRY = "shell/main.h"
ENTRY_POINTS = {"platform/linux/main.cpp", "platform/windows/win_main.cpp"}

# Rooms that build for any machine, and what they may include beside the standard library.
PORTABLE = {"spectral", "engine", "palette"}
PORTABLE_HEADERS = {"immintrin.h", "arm_neon.h", "nlohmann/json.hpp"}

INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]', re.MULTILINE)


def room_of(path):
    folders = path.split("/")[:-1]
    if folders[0] in OUTSIDE:
        return folders[0]
    return "/".join(folders[:2]) if folders[0] == "platform" else folders[0]


def project_file(includer, name):
    """Returns the project's file that a quoted name means, or none if it is made by the build."""
    for folder in (os.path.dirname(includer), ""):
        path = os.path.normpath(os.path.join(folder, name))
        if (ROOT / path).is_file():
            return path
    return None


def read_includes():
    """Returns each file's included files of the project, and its system headers."""
    own, system = {}, {}
    for room in {room.split("/")[0] for room in STANDS_ON} | OUTSIDE:
        for path in sorted((ROOT / room).rglob("*")):
            if path.suffix not in (".cpp", ".h"):
                continue
            name = path.relative_to(ROOT).as_posix()
            found = INCLUDE.findall(path.read_text(encoding="utf-8"))
            files = [project_file(name, target) for quote, target in found if quote == '"']
            own[name] = [file for file in files if file is not None]
            system[name] = [target for quote, target in found if quote == "<"]
    return own, system


def forbidden(own, system):
    for path, included in own.items():
        room = room_of(path)
        for target in included:
            beneath = room_of(target) in STANDS_ON.get(room, set()) | {room}
            entry = target == ENTRY and path in ENTRY_POINTS
            if room not in OUTSIDE and not beneath and not entry:
                yield f"{path}: includes {target}, but {room}/ does not stand on {room_of(target)}/"
        for target in system[path]:
            standard = "." not in target and "/" not in target
            if room in PORTABLE and not standard and target not in PORTABLE_HEADERS:
                yield f"{path}: includes <{target}>, but {room}/ is built for any machine"


def circles(own):
    """Yields each circle of includes that is met, walking the files depth first."""
    done = set()

    def walk(path, trail):
        if path in trail:
            yield " -> ".join([*trail[trail.index(path):], path])
        elif path not in done:
            for target in own.get(path, []):
                yield from walk(target, [*trail, path])
            done.add(path)

    for path in own:
        yield from walk(path, [])


def main():
    own, system = read_includes()
    faults = [*forbidden(own, system), *(f"{circle}: a circle" for circle in circles(own))]
    print("\n".join([*faults, f"{len(own)} files, {len(faults)} faults"]))
    sys.exit(bool(faults))


if __name__ == "__main__":
    main()

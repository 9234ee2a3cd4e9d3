"""Checks sources with clang-tidy by the rules in .clang-tidy, and fails on a finding.

Sources that are built together are checked together, because reading the headers takes longest. What
was found right is not checked again until a source, a header of this project that it includes, the
rules or the compiler's options change. The headers of other projects are read once for all sources
that share them.
"""
import argparse
import hashlib
import json
import os
import re
import shlex
import subprocess
import sys
import tempfile
import threading
from collections import Counter
from concurrent.futures import ThreadPoolExecutor
from functools import lru_cache
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
LEFT_OUT = re.compile(r"^  (-[a-z0-9.-]+),?$", re.MULTILINE)
INCLUDE = re.compile(rb'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)
# Read in advance where CMake precompiles no headers.
STANDARD_HEADERS = ("algorithm", "array", "cmath", "filesystem", "fstream", "functional", "map",
                    "optional", "span", "sstream", "string", "string_view", "vector")
# Without the preprocessor of its own that clang-tidy runs over all headers for modules.
NO_MODULES = ("-Xclang", "-fno-cxx-modules")


@lru_cache(maxsize=None)
def own_includes(path):
    """Returns the project's files that a file includes; by their whole path, if it was made to build
    them together."""
    found = []
    for name in INCLUDE.findall(path.read_bytes()):
        for folder in (path.parent, ROOT):
            header = (folder / name.decode()).resolve()
            if header.is_file():
                found.append(header)
                break
    return found


def sources_of(path):
    """Returns the file and the project's files that it includes, however deep."""
    reached, waiting = {path}, [path]
    while waiting:
        for header in own_includes(waiting.pop()):
            if header not in reached:
                reached.add(header)
                waiting.append(header)
    return sorted(reached)


def rules_for(path):
    return [folder / ".clang-tidy" for folder in path.parents
            if folder.is_relative_to(ROOT) and (folder / ".clang-tidy").is_file()]


def precompiled_by_cmake(entry):
    """Returns the list of headers that CMake precompiles for an entry, or None."""
    words = shlex.split(entry["command"])
    for word, following in zip(words, words[1:]):
        if word == "-include" and following.endswith("cmake_pch.hxx"):
            return following
    return None


def options_of(entry):
    """Returns the compiler's options that matter to clang-tidy; GCC's precompiled headers do not."""
    words = shlex.split(entry["command"])
    kept = []
    skip = 0
    for word, following in zip(words, words[1:] + [""]):
        if skip:
            skip -= 1
        elif word.startswith(("-I", "-D", "-std=")):
            kept.append(word)
        elif word == "-isystem":
            kept += [word, following]
            skip = 1
    return kept


def checked_sources(entry, build):
    """Returns the project's sources in an entry: its file, or those that it builds together."""
    path = Path(entry["file"])
    if not path.is_relative_to(build):
        return [path]
    return own_includes(path) if path.parent.name == "Unity" else []


def checks_for(entry, arguments):
    """Returns the checks of the sources' own rules. clang-tidy would look for rules beside the file
    that was made to build them together, and take the fact that it includes sources for a fault."""
    sources = checked_sources(entry, arguments.build)
    rules = [rule for rule in rules_for(sources[0]) if rule.parent != ROOT]
    left_out = [name for rule in rules for name in LEFT_OUT.findall(rule.read_text())]
    return ",".join(["tintora-*", "-bugprone-suspicious-include", *left_out])


@lru_cache(maxsize=None)
def library_of(compiler):
    """Returns options that name a cross compiler's standard library, which clang does not find."""
    run = subprocess.run([compiler, "-E", "-v", "-x", "c++", "/dev/null"], capture_output=True,
                         text=True, check=True)
    folders = [line.strip() for line in run.stderr.splitlines() if line.startswith(" /")]
    return [f"-isystem{folder}" for folder in folders if "c++" in folder]


def language_for(entry, arguments):
    """Returns the options that say what is compiled for, and how."""
    compiler = shlex.split(entry["command"])[0]
    target = [f"--target={arguments.target}", *library_of(compiler)] if arguments.target else []
    return ["-Wno-unknown-warning-option", *NO_MODULES, *target]


def command_for(entry, arguments):
    plugin = ["-load", str(arguments.plugin)] if arguments.plugin else []
    return ["clang-tidy", "--quiet", *plugin, f"--checks={checks_for(entry, arguments)}",
            entry["file"], "--", *language_for(entry, arguments), *options_of(entry)]


class PrecompiledHeaders:
    """Headers of other projects, precompiled in a folder when they are first asked for."""

    def __init__(self, entries, arguments, folder):
        self.arguments = arguments
        uses = Counter(self.key_of(entry) for entry in entries)
        # Precompiling takes as long as it saves for two compilations.
        keys = [key for key, count in uses.items() if count > 2]
        self.made = {key: folder / f"headers_{number}.pch" for number, key in enumerate(keys)}
        self.locks = {key: threading.Lock() for key in keys}

    @staticmethod
    def key_of(entry):
        """Returns what is precompiled and its options. Those of this project change nothing in it."""
        options = [option for option in options_of(entry)
                   if not option.startswith(("-I", "-DTINTORA_")) and not option.endswith("_EXPORTS")]
        return precompiled_by_cmake(entry), *options

    def options_for(self, entry):
        """Returns the options that use the precompiled headers; none where precompiling does not pay."""
        key = self.key_of(entry)
        if key not in self.made:
            return []
        with self.locks[key]:
            if not self.made[key].exists():
                self.make(entry, key)
        return ["-include-pch", str(self.made[key])]

    def make(self, entry, key):
        source, *options = key
        made = self.made[key]
        if source is None:
            source = made.with_suffix(".hxx")
            source.write_text("".join(f"#include <{name}>\n" for name in STANDARD_HEADERS))
        subprocess.run(["clang++", "-w", "-x", "c++-header", "-fpch-instantiate-templates",
                        *language_for(entry, self.arguments), *options, source, "-o", made],
                       cwd=entry["directory"], check=True)


def stamp_of(entry, command, arguments):
    digest = hashlib.sha256("\0".join(command).encode())
    path = Path(entry["file"])
    for file in [*sources_of(path), ROOT / ".clang-tidy", Path(__file__)]:
        digest.update(file.read_bytes())
    return arguments.stamps / digest.hexdigest()


def check(entry, headers, arguments):
    """Returns what clang-tidy finds in a file; nothing if all is well."""
    command = command_for(entry, arguments)
    stamp = stamp_of(entry, command, arguments)
    if stamp.exists():
        return ""
    run = subprocess.run([*command, *headers.options_for(entry)], cwd=entry["directory"],
                         capture_output=True, text=True)
    if run.returncode == 0:
        stamp.touch()
        return ""
    return run.stdout or run.stderr


def entries_of(arguments):
    """Returns entries of the compile commands with all sources that are wanted, each once."""
    files = {Path(file).resolve() for file in arguments.files}
    seen, entries = set(), []
    for entry in sorted(json.loads((arguments.build / "compile_commands.json").read_text()),
                        key=lambda entry: entry["file"]):
        sources = {path for path in checked_sources(entry, arguments.build)
                   if path.suffix == ".cpp" and path.is_relative_to(ROOT)
                   and (not arguments.only or any(room in path.parents for room in arguments.only))
                   and (not files or path in files)}
        if sources - seen:
            entries.append(entry)
            seen |= sources
    # Entries with the same headers share a share.
    entries.sort(key=lambda entry: str(PrecompiledHeaders.key_of(entry)))
    first, last = (len(entries) * share // arguments.shares
                   for share in (arguments.share - 1, arguments.share))
    return entries[first:last]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", type=lambda path: Path(path).resolve(), required=True,
                        help="a folder with compile_commands.json")
    parser.add_argument("--plugin", type=lambda path: Path(path).resolve(),
                        help="the plugin that keeps clang-tidy to the project's code")
    parser.add_argument("--target", help="what the compile commands build for, if not this machine")
    parser.add_argument("--only", type=lambda path: Path(path).resolve(), action="append",
                        help="a folder of sources")
    parser.add_argument("--jobs", type=int, default=1)
    parser.add_argument("--shares", type=int, default=1)
    parser.add_argument("--share", type=int, default=1)
    parser.add_argument("files", nargs="*")
    arguments = parser.parse_args()
    arguments.stamps = arguments.build / "lint"
    arguments.stamps.mkdir(exist_ok=True)
    entries = entries_of(arguments)
    if not entries:
        sys.exit("There is nothing to check.")
    faulty = 0
    with tempfile.TemporaryDirectory() as folder, ThreadPoolExecutor(arguments.jobs) as pool:
        headers = PrecompiledHeaders(entries, arguments, Path(folder))
        for finding in pool.map(lambda entry: check(entry, headers, arguments), entries):
            faulty += finding != ""
            print(finding, end="", flush=True)
    used = sum(os.times()[2:4])
    print(f"{len(entries)} compilations in {used:.0f} seconds of the processor, "
          f"{faulty} of them with findings")
    sys.exit(faulty > 0)


if __name__ == "__main__":
    main()

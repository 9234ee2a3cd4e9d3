#!/usr/bin/env python3
"""Install, start, upgrade and remove the Windows package under Wine.

    installer.py INSTALLER CONTENTS WORK

CONTENTS is the folder that the installer was made from; the script makes a
later version from it. Everything is written into the folder WORK. It takes a
minute and is not part of the test run.
"""

import re
import shutil
import subprocess
import sys
import time
from pathlib import Path

import run

LIMIT_SECONDS = 180
SETTINGS = "HKCU\\Software\\Tintora"
UNINSTALL = "Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall"
PRODUCT = "A8D5C9F4-7B1E-4D0C-8E5A-3B6F2C91D704"
DEFINITION = (Path(__file__).resolve().parents[2] / "packaging" / "windows"
              / "tintora.wxs")
CHOSEN_PERCENT = 60


def expect(holds, what):
    print(("ok      " if holds else "FAILED  ") + what, flush=True)
    if not holds:
        sys.exit(1)


def wait_for(condition, what):
    end = time.monotonic() + LIMIT_SECONDS
    while not condition():
        if time.monotonic() > end:
            expect(False, what)
        time.sleep(0.2)
    expect(True, what)


class Machine:
    def __init__(self, wine, prefix, environment):
        self.wine = wine
        self.prefix = prefix
        self.environment = environment
        users = prefix / "drive_c" / "users"
        self.home = next(path for path in users.iterdir()
                         if path.name != "Public")
        self.folder = (self.home / "AppData" / "Local" / "Programs"
                       / "Tintora")
        self.start_menu = (self.home / "AppData" / "Roaming" / "Microsoft"
                           / "Windows" / "Start Menu" / "Programs"
                           / "Tintora")

    def run(self, *words, check=True):
        return subprocess.run(
            [self.wine, *map(str, words)], env=self.environment, check=check,
            timeout=LIMIT_SECONDS, stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout.decode(
                "utf-8", "replace")

    def value(self, key, name):
        """Returns the text of a registry value; empty if there is none."""
        found = re.search(rf"^\s+{name}\s+REG_\S+\s+(.*?)\s*$",
                          self.run("reg", "query", key, "/v", name,
                                   check=False), re.MULTILINE)
        return found.group(1) if found else ""

    def products(self):
        """Returns name, version and publisher of each installed Tintora."""
        found = set()
        for root in ("HKCU", "HKLM"):
            listed = self.run("reg", "query", f"{root}\\{UNINSTALL}",
                              check=False)
            for key in re.findall(r"\S*\\\{[0-9A-Fa-f-]+\}", listed):
                names = ("DisplayName", "DisplayVersion", "Publisher")
                entry = tuple(self.value(key, name) for name in names)
                if entry[0] == "Tintora":
                    found.add(entry)
        return found

    def titles(self):
        # xwininfo fails if a window closes while it lists them.
        tree = subprocess.run(
            ["xwininfo", "-root", "-tree"], env=self.environment, check=False,
            stdout=subprocess.PIPE,
            stderr=subprocess.DEVNULL).stdout.decode("utf-8", "replace")
        return [title for title in re.findall(r'"([^"]*)"', tree)
                if "severity" in title]

    def start_and_close(self, percent):
        program = subprocess.Popen(
            [self.wine, str(self.folder / "Tintora.exe")],
            env=self.environment, stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        try:
            wait_for(lambda: any(f" {percent}% severity" in title
                                 for title in self.titles()),
                     f"the program starts at {percent}%")
            self.run("taskkill", "/im", "Tintora.exe")
            wait_for(lambda: program.poll() is not None,
                     "the program ends when its window is closed")
        finally:
            program.kill()
            program.wait()

    def files(self):
        """Returns the files that an installation could leave in the user's
        folder, except the installer service's own folder, which stays."""
        service = self.home / "AppData" / "Roaming" / "Microsoft" / "Installer"
        return {path for path in self.home.rglob("*")
                if "Temp" not in path.parts and path != service}


def version_of(installer):
    return re.search(r"-(\d+\.\d+\.\d+)-", installer.name).group(1)


def make_later(contents, version, folder):
    later = folder / f"tintora-{version}-windows.msi"
    subprocess.run(["wixl", "-a", "x64", "-D", f"Version={version}", "-D",
                    f"ProductCode={PRODUCT}", "-o", later, DEFINITION],
                   cwd=contents, check=True)
    return later


def add_magnification(prefix):
    source = Path(__file__).with_name("bare_magnification.c")
    library = prefix / "drive_c" / "windows" / "system32" / "magnification.dll"
    subprocess.run(["x86_64-w64-mingw32-gcc-posix", "-shared", source, "-o",
                    library], check=True)


def check(machine, installer, later):
    version, later_version = version_of(installer), version_of(later)
    publisher = "Tintora contributors"
    before = machine.files()

    machine.run("msiexec", "/i", f"Z:{installer}", "/qn")
    for name in ("Tintora.exe", "guide.html", "Readme.txt", "Licence.txt",
                 "samples/Tintora_custom.txt"):
        expect((machine.folder / name).is_file(), f"{name} is installed")
    for name in ("Tintora.lnk", "Tintora User Guide.lnk"):
        expect((machine.start_menu / name).is_file(),
               f"the Start menu contains {name}")
    expect(machine.products() == {("Tintora", version, publisher)},
           f"version {version} by {publisher} is listed")

    machine.run("reg", "add", SETTINGS, "/v", "ScrollPc", "/t", "REG_DWORD",
                "/d", CHOSEN_PERCENT, "/f")
    machine.start_and_close(CHOSEN_PERCENT)

    machine.run("msiexec", "/i", f"Z:{later}", "/qn")
    expect(machine.products() == {("Tintora", later_version, publisher)},
           f"version {later_version} replaces version {version}")
    expect((machine.folder / "Tintora.exe").is_file(),
           "the program is still installed after the upgrade")
    machine.start_and_close(CHOSEN_PERCENT)

    machine.run("msiexec", "/x", f"Z:{later}", "/qn")
    left = machine.files() - before
    expect(not left, f"no file is left after removal: {sorted(left)}")
    expect(machine.products() == set(), "no product is listed after removal")
    expect("HKEY" not in machine.run(
        "reg", "query", f"{SETTINGS}\\Installation", check=False),
           "the registry has no trace of the installation")
    expect(int(machine.value(SETTINGS, "ScrollPc") or "0", 16)
           == CHOSEN_PERCENT, "the settings are kept")


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__)
    installer, contents, work = (Path(word).resolve()
                                 for word in sys.argv[1:])
    wine = run.find_wine()
    shutil.rmtree(work, ignore_errors=True)
    work.mkdir(parents=True)
    major, minor, patch = version_of(installer).split(".")
    later = make_later(contents, f"{major}.{minor}.{int(patch) + 1}", work)
    prefix = work / "prefix"
    with run.display() as name:
        environment = run.wine_environment(prefix, name)
        environment["HOME"] = str(work)
        run.make_prefix(wine, prefix, name)
        add_magnification(prefix)
        try:
            check(Machine(wine, prefix, environment), installer, later)
        finally:
            run.end_wine(environment)


if __name__ == "__main__":
    main()

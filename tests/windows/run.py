#!/usr/bin/env python3
"""Run the tests of the Windows program under Wine on displays of their own.

Tests spend half of their time waiting, so give each processor two shares of
them or more. Each share has a display and a prefix of its own.

The script ends everything that it starts. It writes into one work folder only.
"""

import argparse
import ctypes
import fcntl
import os
import shutil
import signal
import subprocess
import sys
from contextlib import contextmanager
from pathlib import Path

SCREEN = "1280x800x24"
TWO_SCREENS = "2560x1600x24"
PREFIX_SECONDS = 600
UNIT_TESTS = "tintora_unit_tests.exe"
STRIP = "x86_64-w64-mingw32-strip"

REGISTRY = [
    # Wine draws the window frames itself, because there is no window manager.
    ("HKCU\\Software\\Wine\\X11 Driver", "Managed", "REG_SZ", "N"),
    # Wine draws Direct3D on a separate thread by default. libX11 can then hang
    # when another thread reads the screen.
    ("HKCU\\Software\\Wine\\Direct3D", "csmt", "REG_DWORD", "0"),
    # As on Windows, a window moves while it is dragged, not afterwards.
    ("HKCU\\Control Panel\\Desktop", "DragFullWindows", "REG_SZ", "1"),
    # Xvfb's RandR has one output, too few for two monitors; its Xinerama can
    # have both.
    ("HKCU\\Software\\Wine\\X11 Driver", "UseXRandR", "REG_SZ", "N"),
]

# Has Wine keep a desktop in a window, whose resolution programs can change.
# That of the test screen is fixed.
VIRTUAL_DESKTOP = [
    ("HKCU\\Software\\Wine\\Explorer", "Desktop", "REG_SZ", "Virtual"),
    ("HKCU\\Software\\Wine\\Explorer\\Desktops", "Virtual", "REG_SZ",
     "1280x800"),
]

# The tests that need a screen of another kind.
SPECIAL_TESTS = {"second-monitor": "SecondMonitor.*",
                 "resized-screen": "ResizedScreen.*"}

LOCALES = ["ru_RU", "ja_JP"]

LIBC = ctypes.CDLL("libc.so.6")


def end_with_parent():
    """Ends the calling process when its parent ends, however that happens."""
    set_parent_death_signal = 1
    LIBC.prctl(set_parent_death_signal, signal.SIGTERM)


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--program", type=Path, required=True,
                        help="Tintora.exe")
    parser.add_argument("--tests", type=Path, required=True,
                        help="the folder of the test program and its libraries")
    parser.add_argument("--work", type=Path, required=True,
                        help="the folder for everything that is written")
    parser.add_argument("--pictures", type=Path,
                        help="save pictures of the program in this folder "
                             "instead of testing it")
    parser.add_argument("--shares", type=int, default=1,
                        help="the number of shares to divide the tests into, "
                             "which run at the same time")
    parser.add_argument("--share", type=int, nargs="+",
                        help="the only shares to run, counted from 0")
    parser.add_argument("--special", choices=SPECIAL_TESTS,
                        help="run only the tests of this kind of screen")
    parser.add_argument("--seconds", type=int, default=1500,
                        help="the time limit for the tests")
    parser.add_argument("rest", nargs="*", metavar="TEST_OPTION",
                        help="options for the test program, after --")
    return parser.parse_args()


@contextmanager
def display(monitors=1):
    """Starts an X server on a free display and ends it afterwards. Each window
    has a pixmap of its own, so that its hidden parts can be read. A second
    monitor is to the left of and above the first one."""
    read_end, write_end = os.pipe()
    screen = SCREEN if monitors == 1 else TWO_SCREENS
    server = subprocess.Popen(
        ["Xvfb", "-displayfd", str(write_end), "-screen", "0", screen,
         "-nolisten", "tcp", "+extension", "Composite"],
        pass_fds=[write_end], stdout=subprocess.DEVNULL,
        stderr=subprocess.DEVNULL, start_new_session=True,
        preexec_fn=end_with_parent)
    os.close(write_end)
    try:
        with os.fdopen(read_end) as pipe:
            number = pipe.readline().strip()
        if not number:
            raise RuntimeError("Xvfb did not start")
        redirect_windows(f":{number}")
        if monitors == 2:
            divide_screen(f":{number}")
        yield f":{number}"
    finally:
        server.terminate()
        server.wait()


def divide_screen(name):
    for monitor, place, output in (("primary", "1280+800", "screen"),
                                   ("other", "0+0", "none")):
        subprocess.run(["xrandr", "--setmonitor", monitor,
                        f"1280/338x800/212+{place}", output], check=True,
                       env=dict(os.environ, DISPLAY=name),
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def redirect_windows(name):
    """Draws each window into a pixmap of its own. The connection stays open,
    because closing it would undo this."""
    x11 = ctypes.CDLL("libX11.so.6")
    composite = ctypes.CDLL("libXcomposite.so.1")
    x11.XOpenDisplay.restype = ctypes.c_void_p
    x11.XDefaultRootWindow.argtypes = [ctypes.c_void_p]
    x11.XDefaultRootWindow.restype = ctypes.c_ulong
    x11.XSync.argtypes = [ctypes.c_void_p, ctypes.c_int]
    composite.XCompositeRedirectSubwindows.argtypes = [
        ctypes.c_void_p, ctypes.c_ulong, ctypes.c_int]
    automatic = 0
    connection = x11.XOpenDisplay(name.encode())
    composite.XCompositeRedirectSubwindows(
        connection, x11.XDefaultRootWindow(connection), automatic)
    x11.XSync(connection, 0)


def wine_environment(prefix, display_name):
    return dict(os.environ, DISPLAY=display_name, WINEPREFIX=str(prefix),
                WINEARCH="win64", WINEDEBUG="-all",
                WINEDLLOVERRIDES="mscoree,mshtml=d;winemenubuilder.exe=d;"
                                 "dwmapi=n,b")


def find_wine():
    wine = shutil.which("wine64", path=os.environ["PATH"] + ":/usr/lib/wine")
    if wine is None:
        raise RuntimeError("Wine is not installed")
    return wine


def is_finished(prefix):
    """Returns true if the prefix is complete and has the current settings."""
    finished = prefix / "finished"
    return finished.exists() and finished.read_text() == repr(REGISTRY)


def run_in_wine(wine, environment, *command):
    subprocess.run([wine, *command], env=environment, check=True,
                   timeout=PREFIX_SECONDS, stdin=subprocess.DEVNULL,
                   stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def write_registry(wine, environment, entries):
    for key, name, kind, value in entries:
        run_in_wine(wine, environment, "reg", "add", key, "/v", name,
                    "/t", kind, "/d", value, "/f")


def make_prefix(wine, prefix, display_name):
    """Makes the prefix that all others are copied from."""
    environment = wine_environment(prefix, display_name)
    shutil.rmtree(prefix, ignore_errors=True)
    prefix.mkdir(parents=True)
    try:
        run_in_wine(wine, environment, "wineboot", "--init")
        write_registry(wine, environment, REGISTRY)
    finally:
        end_wine(environment)
    (prefix / "finished").write_text(repr(REGISTRY))


def copy_prefix(original, prefix):
    """Copies a prefix. Wine's libraries are many and never written to, so they
    are linked; files that Wine writes to are copied."""
    shutil.rmtree(prefix, ignore_errors=True)
    shutil.copytree(original / "drive_c", prefix / "drive_c", symlinks=True,
                    copy_function=os.link)
    shutil.copytree(original / "dosdevices", prefix / "dosdevices",
                    symlinks=True)
    for file in original.iterdir():
        if file.is_file():
            shutil.copy2(file, prefix)


def provide_prefix(wine, original, prefix, display_name):
    original.parent.mkdir(parents=True, exist_ok=True)
    with open(original.with_suffix(".lock"), "w") as lock:
        # Shares that start together wait here until the first has made it.
        fcntl.flock(lock, fcntl.LOCK_EX)
        if not is_finished(original):
            make_prefix(wine, original, display_name)
    if not is_finished(prefix):
        copy_prefix(original, prefix)


def make_locale(folder, locale):
    """Makes a locale in the folder, unless it is there."""
    target = folder / f"{locale}.UTF-8"
    if not target.exists():
        folder.mkdir(parents=True, exist_ok=True)
        subprocess.run(["localedef", "-i", locale, "-f", "UTF-8", target],
                       check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL)


def windows_path(path):
    return "Z:" + str(path.resolve()).replace("/", "\\")


def install(options, prefix):
    """Installs the program in a folder with nothing but its guide, as users
    get it. Returns the program's path."""
    system = prefix / "drive_c/windows/system32"
    for library in ("magnification.dll", "dwmapi.dll"):
        # Remove the link first: a copy would overwrite the file shared with
        # the other prefixes.
        (system / library).unlink(missing_ok=True)
        shutil.copy(options.tests / library, system)
    folder = options.work / "program"
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir()
    # Wine looks here for the network share server\share.
    (prefix / "dosdevices/unc/server/share").mkdir(parents=True, exist_ok=True)
    program = folder / "Tintora.exe"
    subprocess.run([STRIP, "-o", program, options.program], check=True)
    shutil.copy(options.program.parent / "guide.html", folder)
    return program


def run_program(options, wine, environment, name, rest):
    try:
        return subprocess.run(
            [wine, options.tests / name, "--gtest_brief=1", *rest],
            env=environment, stdin=subprocess.DEVNULL,
            preexec_fn=end_with_parent, timeout=options.seconds).returncode
    except subprocess.TimeoutExpired:
        print(f"{name} took more than {options.seconds} seconds.")
        return 1


def end_wine(environment):
    for action in ("--kill", "--wait"):
        subprocess.run(["wineserver", action], env=environment,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)


def run_tests(options, wine, environment, program):
    share = options.share[0] if options.share else 0
    environment = dict(
        environment, TINTORA_PROGRAM=windows_path(program),
        GTEST_TOTAL_SHARDS=str(options.shares), GTEST_SHARD_INDEX=str(share),
        TINTORA_PLANTED_LIBRARY=windows_path(options.tests / "planted.dll"))
    if options.pictures:
        options.pictures.mkdir(parents=True, exist_ok=True)
        environment["TINTORA_PICTURES"] = windows_path(options.pictures)
        return run_program(options, wine, environment,
                           "tintora_windows_pictures.exe", options.rest)
    name = "tintora_windows_tests.exe"
    if options.special == "resized-screen":
        write_registry(wine, environment, VIRTUAL_DESKTOP)
        end_wine(environment)
    if options.special:
        tests = SPECIAL_TESTS[options.special]
        return run_program(options, wine, environment, name,
                           [f"--gtest_filter={tests}", *options.rest])
    if options.rest:
        return run_program(options, wine, environment, name, options.rest)
    result = run_program(options, wine, environment, name,
                         ["--gtest_filter=-" + ":".join(SPECIAL_TESTS.values())])
    result |= run_program(options, wine, environment, UNIT_TESTS, [])
    for locale in LOCALES[share::options.shares]:
        result |= run_in_locale(options, wine, environment, locale)
    return result


def run_in_locale(options, wine, environment, locale):
    """Runs all tests that hold in every language, in one share: Wine takes the
    language from its first process, so it must start anew, which takes longer
    than these tests."""
    folder = options.work / "locales"
    make_locale(folder, locale)
    end_wine(environment)
    return run_program(
        options, wine,
        dict(environment, LOCPATH=str(folder), LC_ALL=f"{locale}.UTF-8",
             GTEST_TOTAL_SHARDS="1", GTEST_SHARD_INDEX="0"),
        "tintora_windows_tests.exe", ["--gtest_filter=*AnyLanguage*"])


def run_shares(shares, arguments):
    """Runs each share in a process of its own, which ends with this one."""
    running = [subprocess.Popen(
        [sys.executable, "-B", __file__, *arguments[:rest_begins(arguments)],
         "--share", str(share), *arguments[rest_begins(arguments):]],
        preexec_fn=end_with_parent) for share in shares]
    return max([share.wait() for share in running])


def rest_begins(arguments):
    return arguments.index("--") if "--" in arguments else len(arguments)


def main():
    options = parse_arguments()
    # Exit on SIGTERM, so that everything that was started is ended too.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit(1))
    shares = options.share or range(options.shares)
    if len(shares) > 1:
        return run_shares(shares, sys.argv[1:])
    options.work = options.work.resolve()
    original = options.work / "prefix"
    if options.pictures:
        options.work /= "pictures"
    elif options.special:
        options.work /= options.special
    else:
        options.work /= f"share{shares[0]}"
    options.work.mkdir(parents=True, exist_ok=True)
    prefix = options.work / "prefix"
    wine = find_wine()
    with display(2 if options.special == "second-monitor" else 1) as name:
        environment = wine_environment(prefix, name)
        try:
            provide_prefix(wine, original, prefix, name)
            return run_tests(options, wine, environment,
                             install(options, prefix))
        finally:
            end_wine(environment)


if __name__ == "__main__":
    sys.exit(main())

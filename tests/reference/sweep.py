"""The settings at which the command-line program is held to the reference."""

from dataclasses import dataclass
from pathlib import Path

from custom_file import read_entries
from reference import (ALGORITHMS, DEFICIENCY_MODES, FILTER_FACTORS,
                       SWAPPED_CHANNELS, Settings)

STEPS = [str(percent) for percent in range(0, 101, 5)]

# Whole percents that a division by 100 leaves just below, fractions, and
# 99.9995, which is titled 100 % while the sight is still anomalous.
ODD_STEPS = ["0.05", "1", "12.5", "29", "37.5", "57", "62.25", "94.99",
             "99.9", "99.9995"]

CURVE_STEPS = ["0", "35", "37.5", "60", "100"]

VIEWS = [(), ("--daltonize",), ("--inverse",), ("--daltonize", "--inverse")]

CUSTOM_FILES = {
    "correction.txt": (
        b"$Deutan correction\n"
        b"1 0 0 0\n"
        b"-0.25 1.25 0.0 0.05\n"
        b"0.7 -0.7 1 -0.125\n"),
    "fixed.txt": (
        b"Night light\n"
        b"0.9 0.05 0.05 0.01\n"
        b"0 0.6 0 0\n"
        b"0 0 0.3 0.02"),
    "blanks.txt": (
        b"$ Tabs and  blanks \t\n"
        b"\t0.8  0.2\t\t0 0\t\n"
        b"  0.1 \t 0.9 0 0  \n"
        b" \t0 0 1.0 0.1 \t \n"),
    "numbers.txt": (
        b"$Notations\n"
        b"0.5abc 1e-1 +.25 -2.5E-2x\n"
        b"-.125e1 3. 007 12e-2\n"
        b"0.333333333333333333333 16777217 1.00000005960464477540 1e-30\n"),
    "hexadecimal.txt": (
        b"$Powers of two\n"
        b"0x.8 -0X1.8p-1 0x10p-6z +0x0.0000000000001p+40\n"
        b"0xg 0x1p 0x1.p+ 0x.4P0\n"
        b"\v0.5 \f-0.25 \v\f0x.1 0\v\n"),
    "text_mode.txt": (
        b"Pairs\r\n0.1 0.2 0.3 0.4\r\n0.5 0.6 0.7 0.8\r\n"
        b"0.9 1.0 1.1 1.2\r\n"
        b"$Ended by a byte\r0.4 0.3 0.2 0.1\r\n0.8 0.7 0.6 0.5\n"
        b"1.2 1.1 1.0 0.9\x1a9\r\n"),
    "line_ends.txt": (
        b"Carriage returns\r0.1 0.2 0.3 0.4\r0.5 0.6 0.7 0.8\r"
        b"0.9 1.0 1.1 1.2\r"
        b"$Zero bytes\x000.4 0.3 0.2 0.1\x000.8 0.7 0.6 0.5\x00"
        b"1.2 1.1 1.0 0.9\x00"),
    "names.txt": (
        b"\n"
        b"0 1 0 0\n1 0 0 0\n0 0 1 0\n"
        b"$\n"
        b"0 0 1 0\n0 1 0 0\n1 0 0 0\n"
        b"Quote \" backslash \\ slash / tab\there\n"
        b"0.3 0.3 0.3 0\n0.3 0.3 0.3 0\n0.3 0.3 0.3 0\n"
        b"$$twice\n"
        b"2 0 0 -0.5\n0 2 0 -0.5\n0 0 2 -0.5\n"
        b" leading blank\n"
        b"0.5 0 0 0\n0 0.5 0 0\n0 0 0.5 0\n"),
}


@dataclass(frozen=True)
class Case:
    command: str
    options: tuple
    settings: Settings

    def arguments(self):
        if self.command == "matrix":
            return ["matrix", "--format", "json", *self.options]
        return [self.command, *self.options]


def _strength(percent):
    return float(percent) / 100


def _case(mode, command="matrix", flags=(), severity=None, **values):
    """Options and settings together; the given values name Settings fields."""
    options = ["--mode", mode]
    fields = {"mode": mode}
    if severity is not None:
        options += ["--severity", severity]
        fields["severity"] = _strength(severity)
    for name, value in values.items():
        options += ["--" + name.replace("_", "-"), value]
        fields[name] = (_strength(value) if name in
                        ("brightness", "contrast", "saturation") else value)
    for flag in flags:
        fields[flag[2:]] = True
    return Case(command, (*options, *flags), Settings(**fields))


def _deficiency_cases():
    for mode in DEFICIENCY_MODES:
        for algorithm in ALGORITHMS:
            for severity in STEPS + ODD_STEPS:
                for flags in VIEWS:
                    yield _case(mode, flags=flags, severity=severity,
                                algorithm=algorithm)
        yield _case(mode)
        yield _case(mode, severity="45")
        yield _case(mode, algorithm="machado")


def _plain_cases():
    for severity in STEPS + ODD_STEPS:
        for colour in FILTER_FACTORS:
            yield _case("filter", severity=severity, filter_colour=colour)
        for swap in SWAPPED_CHANNELS:
            yield _case("swap", severity=severity, swap=swap)
        yield _case("circadian", severity=severity)
    for percent in range(-100, 101):
        yield _case("brightness", brightness=str(percent))
    for percent in range(101):
        yield _case("contrast", contrast=str(percent))
        yield _case("saturation", saturation=str(percent))
    for mode in ("greyscale", "invert", "red-filter"):
        yield _case(mode)
        yield _case(mode, severity="40")


def _custom_cases(directory):
    for name, content in CUSTOM_FILES.items():
        path = Path(directory) / name
        path.write_bytes(content)
        entries = read_entries(content)
        for index in range(len(entries)):
            for severity in STEPS + ["37.5", "99.9"]:
                yield Case("matrix", (
                    "--mode", "custom", "--custom-file", str(path),
                    "--custom-index", str(index), "--severity", severity),
                    Settings("custom", severity=_strength(severity),
                             custom_entries=entries, custom_index=index))


def _curve_cases():
    for mode in DEFICIENCY_MODES:
        for severity in CURVE_STEPS:
            yield _case(mode, "curves", severity=severity)
            yield _case(mode, "curves", severity=severity, algorithm="yang")


def all_cases(directory):
    """Every case; the custom transform files are written to the directory."""
    return [*_deficiency_cases(), *_plain_cases(), *_custom_cases(directory),
            *_curve_cases()]

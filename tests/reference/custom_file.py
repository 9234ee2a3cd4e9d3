"""The custom transform file, read independently of the program.

Records of four lines: a name ("$" first marks an entry whose strength follows
the severity) and three lines of four numbers, the last of each an offset.
"""

import re
from dataclasses import dataclass
from fractions import Fraction

from exact_arithmetic import float32

LINE_END = re.compile("[\n\r\0]")
FIELD_SEPARATOR = re.compile("[ \t]+")
# Decimal notation only: infinities, not-a-numbers and hexadecimal are no
# use as colour coefficients.
LEADING_NUMBER = re.compile(
    r"[+-]?(?:\d+\.?\d*|\.\d+)(?:[eE][+-]?\d+)?", re.ASCII)

ROWS = 3
FIELDS_PER_ROW = 4


@dataclass(frozen=True)
class CustomEntry:
    name: str
    adjustable: bool
    rows: tuple


def read_entries(content):
    """The entries of a file given as bytes, up to the first bad record."""
    lines = LINE_END.split(content.decode("latin-1"))
    if lines[-1] == "":
        lines.pop()
    entries = []
    while lines:
        name = lines.pop(0)
        rows = [_numbers(lines.pop(0)) if lines else None
                for _ in range(ROWS)]
        if None in rows:
            break
        adjustable = name.startswith("$")
        entries.append(CustomEntry(name[1:] if adjustable else name,
                                   adjustable, tuple(rows)))
    return tuple(entries)


def _numbers(line):
    """Four 32-bit floats as floats, or None for any other line."""
    stripped = line.strip(" \t")
    fields = FIELD_SEPARATOR.split(stripped) if stripped else []
    matches = [LEADING_NUMBER.match(field) for field in fields]
    if len(fields) != FIELDS_PER_ROW or None in matches:
        return None
    return tuple(float32(Fraction(match.group())) for match in matches)

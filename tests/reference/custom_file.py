"""The custom transform file, read independently of the program.

Records of four lines: a name ("$" first marks an entry whose strength follows
the severity) and three lines of four numbers, the last of each an offset.
"""

import re
from dataclasses import dataclass
from fractions import Fraction

from exact_arithmetic import float32

END_OF_TEXT = b"\x1a"
LINE_END = re.compile("\r\n|[\n\r\0]")
FIELD_SEPARATOR = re.compile("[ \t]+")
WHITE_SPACE = "\v\f"

# The notations of C: a number may stand in each of them, and text may follow.
LEADING_HEXADECIMAL = re.compile(
    r"([+-]?)0[xX](?=\.?[0-9a-fA-F])([0-9a-fA-F]*)(?:\.([0-9a-fA-F]*))?"
    r"(?:[pP]([+-]?\d+))?", re.ASCII)
LEADING_DECIMAL = re.compile(
    r"[+-]?(?:\d+\.?\d*|\.\d+)(?:[eE][+-]?\d+)?", re.ASCII)
LEADING_WORD = re.compile(r"[+-]?(?:inf|nan)", re.IGNORECASE)

ROWS = 3
FIELDS_PER_ROW = 4


@dataclass(frozen=True)
class CustomEntry:
    name: str
    adjustable: bool
    rows: tuple


def read_entries(content):
    """The entries of a file given as bytes, up to the first bad record."""
    text = content.split(END_OF_TEXT)[0].decode("latin-1")
    lines = LINE_END.split(text)
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
    numbers = tuple(_leading_number(field) for field in fields)
    if len(fields) != FIELDS_PER_ROW or None in numbers:
        return None
    return numbers


def _leading_number(field):
    """The 32-bit float that a field begins with, as a float, or None."""
    if re.match("[A-Za-z]", field):
        return None
    field = field.lstrip(WHITE_SPACE)
    found = LEADING_HEXADECIMAL.match(field)
    if found:
        sign, whole, part, power = found.groups(default="")
        digits = int(whole + part, 16)
        value = digits * Fraction(2) ** (int(power or 0) - 4 * len(part))
        return float32(-value if sign == "-" else value)
    found = LEADING_DECIMAL.match(field)
    if found:
        return float32(Fraction(found.group()))
    found = LEADING_WORD.match(field)
    return float(found.group()) if found else None

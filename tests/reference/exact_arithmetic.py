"""Exact 3x3 matrix arithmetic and the rounding to 32-bit floats.

Matrices are lists of rows of fractions.Fraction, so that no rounding of the
reference can hide, or be taken for, a rounding of the program.
"""

import struct
from fractions import Fraction

FLOAT32_PRECISION = 24
FLOAT32_SMALLEST_EXPONENT = -149

IDENTITY = [[Fraction(int(r == c)) for c in range(3)] for r in range(3)]


def product(a, b):
    return [[sum((a[r][k] * b[k][c] for k in range(3)), Fraction(0))
             for c in range(3)] for r in range(3)]


def combination(weight_a, a, weight_b, b):
    """weight_a * a + weight_b * b, entry by entry."""
    return [[weight_a * a[r][c] + weight_b * b[r][c] for c in range(3)]
            for r in range(3)]


def determinant(m):
    """By the permutation rule of Sarrus."""
    forward = (m[0][0] * m[1][1] * m[2][2] + m[0][1] * m[1][2] * m[2][0]
               + m[0][2] * m[1][0] * m[2][1])
    backward = (m[0][2] * m[1][1] * m[2][0] + m[0][0] * m[1][2] * m[2][1]
                + m[0][1] * m[1][0] * m[2][2])
    return forward - backward


def inverse(m):
    """By Gauss-Jordan elimination; None for a singular matrix."""
    rows = [list(m[r]) + list(IDENTITY[r]) for r in range(3)]
    for column in range(3):
        pivot = max(range(column, 3), key=lambda r: abs(rows[r][column]))
        if rows[pivot][column] == 0:
            return None
        rows[column], rows[pivot] = rows[pivot], rows[column]
        divisor = rows[column][column]
        rows[column] = [value / divisor for value in rows[column]]
        for r in range(3):
            if r != column:
                factor = rows[r][column]
                rows[r] = [value - factor * pivot_value for value, pivot_value
                           in zip(rows[r], rows[column])]
    return [row[3:] for row in rows]


def to_floats(m):
    return [[float(value) for value in row] for row in m]


def from_floats(m):
    return [[Fraction(value) for value in row] for row in m]


def float32(value):
    """The 32-bit float nearest to an exact value, ties to even, as a float.

    Rounded from the exact value in one step (round() takes ties to even):
    going through a double first would round twice.
    """
    value = Fraction(value)
    if value == 0:
        return 0.0
    magnitude = abs(value)
    exponent = (magnitude.numerator.bit_length()
                - magnitude.denominator.bit_length())
    if magnitude < Fraction(2) ** exponent:
        exponent -= 1
    unit_exponent = max(exponent - FLOAT32_PRECISION + 1,
                        FLOAT32_SMALLEST_EXPONENT)
    units = round(value / Fraction(2) ** unit_exponent)
    try:
        packed = struct.pack("<f", float(units * Fraction(2) ** unit_exponent))
    except OverflowError:
        return float("inf") if value > 0 else float("-inf")
    return struct.unpack("<f", packed)[0]

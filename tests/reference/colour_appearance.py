"""How colours look to viewers with a deficiency, and how much two differ.

Colours are triples of sRGB channels, 0..1. Everything here is written from the
published definitions and shares no code with the program.
"""

import cmath
import math
from fractions import Fraction

import reference
from exact_arithmetic import inverse

# IEC 61966-2-1, linear R, G, B to X, Y, Z.
XYZ_OF_RGB = [[0.4124, 0.3576, 0.1805], [0.2126, 0.7152, 0.0722],
              [0.0193, 0.1192, 0.9505]]
DISPLAY_WHITE = [sum(row) for row in XYZ_OF_RGB]

# Brettel, Viénot & Mollon 1997 for the BT.709 primaries: Judd-Vos X, Y, Z of
# the primaries (Viénot, Brettel & Mollon 1999), cones from Smith & Pokorny
# 1975, colour-matching functions at the anchors.
JUDD_VOS_OF_RGB = [["0.409568", "0.355041", "0.179167"],
                   ["0.213389", "0.706743", "0.0798680"],
                   ["0.0186297", "0.114620", "0.912367"]]
CONES_OF_JUDD_VOS = [["0.15514", "0.54312", "-0.03286"],
                     ["-0.15514", "0.45684", "0.03286"],
                     ["0", "0", "0.01608"]]
ANCHORS = {475: ["0.13287", "0.11284", "0.94220"],
           575: ["0.84394", "0.91558", "0.00197"],
           485: ["0.05699", "0.16987", "0.58640"],
           660: ["0.16161", "0.06100", "0.00001"]}
ANCHORS_OF_TYPE = {"protan": (475, 575), "deutan": (475, 575),
                   "tritan": (485, 660)}
MISSING_CONE = {"protan": 0, "deutan": 1, "tritan": 2}


def decode(value):
    if value <= 0.04045:
        return value / 12.92
    return ((value + 0.055) / 1.055) ** 2.4


def encode(value):
    if value <= 0.0031308:
        return value * 12.92
    return 1.055 * value ** (1 / 2.4) - 0.055


def _clamped(colour):
    return tuple(min(max(value, 0.0), 1.0) for value in colour)


def _times(matrix, vector):
    return [sum(float(a) * b for a, b in zip(row, vector)) for row in matrix]


def _cross(a, b):
    return [a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2],
            a[0] * b[1] - a[1] * b[0]]


def _dot(a, b):
    return sum(x * y for x, y in zip(a, b))


def _fractions(rows):
    return [[Fraction(value) for value in row] for row in rows]


def _cones_of_rgb():
    cones, display = _fractions(CONES_OF_JUDD_VOS), _fractions(JUDD_VOS_OF_RGB)
    return [[_dot(row, column) for column in zip(*display)] for row in cones]


CONES_OF_RGB = _cones_of_rgb()
RGB_OF_CONES = inverse(CONES_OF_RGB)
NEUTRAL = [float(sum(row)) for row in CONES_OF_RGB]


def _seen_by_dichromat(kind, linear):
    """Brettel 1997 on linear R, G, B, before the display's limits."""
    cones = _times(CONES_OF_RGB, linear)
    axis = [0.0, 0.0, 0.0]
    axis[MISSING_CONE[kind]] = 1.0
    division = _cross(NEUTRAL, axis)
    anchors = [_times(_fractions(CONES_OF_JUDD_VOS),
                      [float(value) for value in ANCHORS[nm]])
               for nm in ANCHORS_OF_TYPE[kind]]
    side = _dot(division, cones)
    anchor = next(a for a in anchors if (_dot(division, a) >= 0) == (side >= 0))
    normal = _cross(NEUTRAL, anchor)
    move = -_dot(normal, cones) / _dot(normal, axis)
    return _times(RGB_OF_CONES, [c + move * a for c, a in zip(cones, axis)])


def viewer(kind, severity, algorithm, light):
    """A function from colours to colours; severity 0..1."""
    if algorithm == "brettel1997":
        def see(colour):
            linear = [decode(value) for value in colour]
            full = _seen_by_dichromat(kind, linear)
            mixed = [(1 - severity) * a + severity * b
                     for a, b in zip(linear, full)]
            return tuple(encode(value) for value in _clamped(mixed))
        return see
    matrix = [[float(value) for value in row]
              for row in reference.simulation_matrix(reference.Settings(
                  kind, severity=severity, algorithm=algorithm))]
    if light == "encoded":
        return lambda colour: _clamped(_times(matrix, colour))
    return lambda colour: tuple(
        encode(value) for value in
        _clamped(_times(matrix, [decode(value) for value in colour])))


def lab(colour):
    """CIE 15, with its own fractions for the constants."""
    def f(t):
        epsilon, kappa = 216 / 24389, 24389 / 27
        return t ** (1 / 3) if t > epsilon else (kappa * t + 16) / 116

    x, y, z = (f(value / white) for value, white in zip(
        _times(XYZ_OF_RGB, [decode(value) for value in colour]),
        DISPLAY_WHITE))
    return 116 * y - 16, 500 * (x - y), 200 * (y - z)


def ciede2000(first, second):
    """Sharma, Wu & Dalal 2005, with colours as complex numbers a + ib."""
    (l1, a1, b1), (l2, a2, b2) = first, second

    def share(chroma):
        return math.sqrt(chroma ** 7 / (chroma ** 7 + 25 ** 7))

    stretch = 1.5 - 0.5 * share((abs(complex(a1, b1)) + abs(complex(a2, b2)))
                                / 2)
    z1, z2 = complex(stretch * a1, b1), complex(stretch * a2, b2)
    c1, c2 = abs(z1), abs(z2)
    h1, h2 = (math.degrees(cmath.phase(z)) % 360 for z in (z1, z2))
    if c1 * c2 == 0:
        turn, hue = 0.0, h1 + h2
    else:
        turn = h2 - h1
        hue = (h1 + h2) / 2
        if abs(turn) > 180:
            turn -= math.copysign(360, turn)
            hue += 180 if hue < 180 else -180
    lightness, chroma = (l1 + l2) / 2, (c1 + c2) / 2

    def cosine(multiple, shift):
        return math.cos(math.radians(multiple * hue + shift))

    t = (1 - 0.17 * cosine(1, -30) + 0.24 * cosine(2, 0)
         + 0.32 * cosine(3, 6) - 0.20 * cosine(4, -63))
    middle = (lightness - 50) ** 2
    d_l = (l2 - l1) / (1 + 0.015 * middle / math.sqrt(20 + middle))
    d_c = (c2 - c1) / (1 + 0.045 * chroma)
    d_h = (2 * math.sqrt(c1 * c2) * math.sin(math.radians(turn / 2))
           / (1 + 0.015 * chroma * t))
    rotation = 60 * math.exp(-((hue - 275) / 25) ** 2)
    mixed = -2 * share(chroma) * math.sin(math.radians(rotation)) * d_c * d_h
    return math.sqrt(max(0.0, d_l ** 2 + d_c ** 2 + d_h ** 2 + mixed))


def contrast(first, second):
    """WCAG 2."""
    bright, dark = sorted((
        _dot((0.2126, 0.7152, 0.0722), [decode(value) for value in colour])
        for colour in (first, second)), reverse=True)
    return (bright + 0.05) / (dark + 0.05)

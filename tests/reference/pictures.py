"""Colours of pictures through a transform, computed independently.

Brettel, Viénot & Mollon 1997 goes another way here than by projection
matrices: the simulated colour is the one sum of white and one of the two
anchors that gives the two remaining cones the responses of the original.
"""

import struct
import zlib
from fractions import Fraction

from exact_arithmetic import inverse, product

# Viénot, Brettel & Mollon 1999: tristimulus values, as corrected by Judd and
# Vos, of the BT.709 primaries. Rows X, Y, Z; columns R, G, B in linear light.
RGB_TO_XYZ = [[Fraction(value) for value in row.split()] for row in (
    "0.409568 0.355041 0.179167",
    "0.213389 0.706743 0.0798680",
    "0.0186297 0.114620 0.912367")]

# Smith & Pokorny 1975. Rows L, M, S.
XYZ_TO_LMS = [[Fraction(value) for value in row.split()] for row in (
    "0.15514 0.54312 -0.03286",
    "-0.15514 0.45684 0.03286",
    "0 0 0.01608")]

# The corrected colour-matching functions at the anchors' wavelengths.
ANCHORS = {
    475: ("0.13287", "0.11284", "0.94220"),
    575: ("0.84394", "0.91558", "0.00197"),
    485: ("0.05699", "0.16987", "0.58640"),
    660: ("0.16161", "0.06100", "0.00001"),
}
REMAINING_CONES = {"protan": (1, 2), "deutan": (0, 2), "tritan": (0, 1)}
ANCHORS_OF = {"protan": (475, 575), "deutan": (475, 575), "tritan": (485, 660)}

RGB_TO_LMS = product(XYZ_TO_LMS, RGB_TO_XYZ)
LMS_TO_RGB = [[float(value) for value in row] for row in inverse(RGB_TO_LMS)]
FLOAT_RGB_TO_LMS = [[float(value) for value in row] for row in RGB_TO_LMS]


def applied(matrix, vector):
    return [sum(entry * value for entry, value in zip(row, vector))
            for row in matrix]


def to_light(value):
    """IEC 61966-2-1, a channel of 0..1."""
    return value / 12.92 if value <= 0.04045 else ((value + 0.055) / 1.055) ** 2.4


def from_light(light):
    light = min(max(light, 0.0), 1.0)
    return light * 12.92 if light <= 0.0031308 else 1.055 * light ** (1 / 2.4) - 0.055


def brettel_1997(kind, severity, rgb):
    """Linear R, G, B as the dichromat sees them, mixed with the original."""
    first, second = REMAINING_CONES[kind]
    responses = applied(FLOAT_RGB_TO_LMS, rgb)
    white = applied(FLOAT_RGB_TO_LMS, (1.0, 1.0, 1.0))
    seen = None
    for wavelength in ANCHORS_OF[kind]:
        xyz = [float(value) for value in ANCHORS[wavelength]]
        anchor = applied([[float(v) for v in row] for row in XYZ_TO_LMS], xyz)
        # white_share * white + anchor_share * anchor, in the two cones.
        area = white[first] * anchor[second] - white[second] * anchor[first]
        white_share = (responses[first] * anchor[second]
                       - responses[second] * anchor[first]) / area
        anchor_share = (white[first] * responses[second]
                        - white[second] * responses[first]) / area
        if anchor_share >= 0 or seen is None:
            seen = [white_share * w + anchor_share * a
                    for w, a in zip(white, anchor)]
        if anchor_share >= 0:
            break
    full = applied(LMS_TO_RGB, seen)
    return [(1 - severity) * before + severity * after
            for before, after in zip(rgb, full)]


def png_chunk(name, data):
    body = name + data
    return struct.pack(">I", len(data)) + body + struct.pack(">I", zlib.crc32(body))


def write_png(path, width, pixels):
    """RGB tuples of 8 bits as rows of the width."""
    rows = b"".join(
        b"\0" + bytes(channel for pixel in pixels[start:start + width] for channel in pixel)
        for start in range(0, len(pixels), width))
    header = struct.pack(">IIBBBBB", width, len(pixels) // width, 8, 2, 0, 0, 0)
    with open(path, "wb") as file:
        file.write(b"\x89PNG\r\n\x1a\n" + png_chunk(b"IHDR", header)
                   + png_chunk(b"IDAT", zlib.compress(rows)) + png_chunk(b"IEND", b""))


def _unfiltered(kind, row, above):
    """A row of 3 bytes per pixel without its PNG filter."""
    result = bytearray(row)
    for i, value in enumerate(row):
        left = result[i - 3] if i >= 3 else 0
        up = above[i]
        corner = above[i - 3] if i >= 3 else 0
        if kind == 4:
            guess = left + up - corner
            predicted = min((left, up, corner), key=lambda v: abs(guess - v))
        else:
            predicted = (0, left, up, (left + up) // 2)[kind]
        result[i] = (value + predicted) & 0xFF
    return result


def read_png(path):
    """The pixels of an RGB file of 8 bits without interlacing."""
    with open(path, "rb") as file:
        data = file.read()
    at, packed, width = 8, b"", None
    while at < len(data):
        length, name = struct.unpack(">I4s", data[at:at + 8])
        body = data[at + 8:at + 8 + length]
        if name == b"IHDR":
            width, _, depth, colour_type, _, _, interlace = struct.unpack(">IIBBBBB", body)
            if (depth, colour_type, interlace) != (8, 2, 0):
                raise ValueError(f"{path} is not a plain RGB file of 8 bits")
        elif name == b"IDAT":
            packed += body
        at += length + 12
    raw = zlib.decompress(packed)
    stride = 3 * width + 1
    above, pixels = bytearray(stride - 1), []
    for start in range(0, len(raw), stride):
        above = _unfiltered(raw[start], raw[start + 1:start + stride], above)
        pixels += [tuple(above[i:i + 3]) for i in range(0, len(above), 3)]
    return pixels

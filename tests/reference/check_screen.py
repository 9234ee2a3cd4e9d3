#!/usr/bin/env python3
"""Check the picture of the screen that scripts/run leaves.

Within the view, every pixel must be the matrix of a deuteranope applied to
what lies beneath, as this folder's own science computes it. The folder of the
scene holds beneath.ppm (the screen before the program started), screen.ppm
(the screen with it) and view (the view's left, top, width and height).
"""

import sys
from pathlib import Path

from exact_arithmetic import to_floats
from reference import Settings, effect_matrix

# Of the view's pixels; with fewer, the scene proves nothing.
LEAST_CHANGED = 0.2


def read_ppm(path):
    """The width, the height and the bytes of an 8-bit PPM."""
    header, size, depth, pixels = path.read_bytes().split(b"\n", 3)
    if header != b"P6" or depth != b"255":
        raise ValueError(f"{path} is no 8-bit PPM.")
    width, height = map(int, size.split())
    if len(pixels) != 3 * width * height:
        raise ValueError(f"{path} is not complete.")
    return width, height, pixels


def apply(matrix, pixel):
    """The exact result, from 0 to 255, before it is rounded to bytes."""
    inputs = (*(value / 255 for value in pixel), 1, 1)
    return [255 * min(max(sum(value * row[channel]
                              for value, row in zip(inputs, matrix)), 0), 1)
            for channel in range(3)]


def compare(matrix, beneath, screen, view):
    """Returns the share of pixels that the matrix changes visibly, and the
    first place where the screen is a whole step off, or None."""
    width, _, before = beneath
    after = screen[2]
    left, top, view_width, view_height = view
    results = {}
    changed = 0
    for y in range(top, top + view_height):
        for x in range(left, left + view_width):
            at = 3 * (y * width + x)
            pixel = before[at:at + 3]
            if pixel not in results:
                results[pixel] = apply(matrix, pixel)
            expected = results[pixel]
            seen = after[at:at + 3]
            if any(abs(a - b) >= 1 for a, b in zip(expected, seen)):
                return changed, (f"({x}, {y}) shows {tuple(seen)} where "
                                 f"{tuple(pixel)} lies beneath")
            changed += any(abs(a - b) > 8 for a, b in zip(expected, pixel))
    return changed / (view_width * view_height), None


def main():
    folder = Path(sys.argv[1])
    beneath = read_ppm(folder / "beneath.ppm")
    screen = read_ppm(folder / "screen.ppm")
    view = [int(word) for word in (folder / "view").read_text().split()]
    left, top, width, height = view
    if beneath[:2] != screen[:2]:
        return "The two pictures differ in size."
    if not (width > 0 and height > 0 and 0 <= left <= beneath[0] - width
            and 0 <= top <= beneath[1] - height):
        return f"The view {view} is not on the screen."
    matrix = to_floats(effect_matrix(Settings(mode="deutan")))
    changed, fault = compare(matrix, beneath, screen, view)
    if fault:
        return f"The view is not what lies beneath through the matrix: {fault}."
    if changed < LEAST_CHANGED:
        return f"The matrix changes only {changed:.1%} of what lies beneath."
    print(f"All {width * height} pixels of the view are right; the matrix "
          f"changes {changed:.0%} of them.")
    return 0


if __name__ == "__main__":
    sys.exit(main())

"""Measure how far the ways to simulate a deficiency are apart.

    compare_algorithms.py TOOL_PATH [--html]

5,832 sRGB colours (18 levels of each channel) go through the tool's filter
command at full severity; the figures are CIEDE2000 differences between two
results: the mean, the 95th percentile and the largest. The last rows fit the
best matrix on encoded values, with offsets, to Brettel 1997 by least squares.
"""

import argparse
import pathlib
import subprocess
import sys
import tempfile
from fractions import Fraction

import pictures
from colour_appearance import ciede2000, lab
from reference import ALGORITHMS

TYPES = ("protan", "deutan", "tritan")
LEVELS = range(0, 256, 15)
LABELS = {"judd": "Judd 1948", "yang": "Yang et al. 2008",
          "machado": "Machado et al. 2009",
          "vienot1997": "Viénot et al. 1997, approximated",
          "vienot1999": "Viénot et al. 1999"}


def filtered(tool, folder, source, kind, algorithm, light):
    """What the tool makes of the picture, as places in CIELAB."""
    target = folder / "seen.png"
    target.unlink(missing_ok=True)
    subprocess.run([tool, "filter", "--mode", kind, "--algorithm", algorithm,
                    "--light", light, str(source), str(target)], check=True)
    return labs(pictures.read_png(target))


def labs(pixels):
    return [lab([channel / 255 for channel in pixel]) for pixel in pixels]


def figures(first, second):
    """Mean, 95th percentile and largest of the differences."""
    differences = sorted(map(ciede2000, first, second))
    return (sum(differences) / len(differences),
            differences[int(0.95 * len(differences))], differences[-1])


def solve(matrix, right):
    """By Gauss-Jordan elimination in fractions; the matrix is regular."""
    rows = [[Fraction(v) for v in row] + [Fraction(r)]
            for row, r in zip(matrix, right)]
    for column in range(len(rows)):
        pivot = next(r for r in range(column, len(rows)) if rows[r][column])
        rows[column], rows[pivot] = rows[pivot], rows[column]
        rows[column] = [v / rows[column][column] for v in rows[column]]
        for r, row in enumerate(rows):
            if r != column:
                rows[r] = [v - row[column] * p
                           for v, p in zip(row, rows[column])]
    return [row[-1] for row in rows]


def best_matrix(before, after):
    """Rows of red, green, blue and offset for each output channel."""
    inputs = [(*pixel, 255) for pixel in before]
    normal = [[sum(a[i] * a[j] for a in inputs) for j in range(4)]
              for i in range(4)]
    return [solve(normal, [sum(a[i] * b[c] for a, b in zip(inputs, after))
                           for i in range(4)]) for c in range(3)]


def through(matrix, pixels):
    rows = [[float(v) for v in row] for row in matrix]
    return [tuple(min(max(round(sum(a * b for a, b in zip(row, (*p, 255)))), 0),
                      255) for row in rows) for p in pixels]


def measure(tool):
    """Rows of a label, and mean, 95% and largest."""
    pixels = [(r, g, b) for r in LEVELS for g in LEVELS for b in LEVELS]
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        source = folder / "colours.png"
        pictures.write_png(source, len(LEVELS) ** 2, pixels)
        seen = {(algorithm, kind, light):
                filtered(tool, folder, source, kind, algorithm, light)
                for algorithm in ALGORITHMS for kind in TYPES
                for light in ("encoded", "linear")}
        brettel, targets = {}, {}
        for kind in TYPES:
            brettel[kind] = filtered(tool, folder, source, kind,
                                     "brettel1997", "linear")
            targets[kind] = pictures.read_png(folder / "seen.png")

    rows = []
    for algorithm in ALGORITHMS:
        for kind in TYPES:
            rows.append((f"{LABELS[algorithm]}, {kind}: encoded and linear",
                         *figures(seen[algorithm, kind, "encoded"],
                                  seen[algorithm, kind, "linear"])))
    for light in ("encoded", "linear"):
        for algorithm in ALGORITHMS:
            for kind in TYPES:
                rows.append((f"{LABELS[algorithm]}, {kind}, {light}: "
                             "and Brettel et al. 1997",
                             *figures(seen[algorithm, kind, light],
                                      brettel[kind])))
    for kind in TYPES:
        best = through(best_matrix(pixels, targets[kind]), pixels)
        rows.append((f"best matrix on encoded values, {kind}: and Brettel "
                     "et al. 1997", *figures(labs(best), brettel[kind])))
    return rows


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("tool")
    parser.add_argument("--html", action="store_true",
                        help="rows of an HTML table")
    options = parser.parse_args()
    for label, *numbers in measure(options.tool):
        mean, most_of_them, most = (f"{number:.1f}" for number in numbers)
        if options.html:
            print(f"<tr><td>{label}</td><td>{mean}</td><td>{most_of_them}</td>"
                  f"<td>{most}</td></tr>")
        else:
            print(f"{label:72} {mean:>5} {most_of_them:>5} {most:>5}")


if __name__ == "__main__":
    sys.exit(main())

"""Hold the pictures that the command-line program filters to the reference.

    check_pictures.py TOOL_PATH

Demanded of every sample:
- on encoded values: the step nearest to the exact result of the effect matrix
  of 32-bit floats, halves rounded up;
- in linear light and by Brettel 1997: the nearest step to the result in double
  arithmetic, where that is not within 1e-6 steps of a half.
"""

import argparse
import json
import math
import os
import random
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from fractions import Fraction
from pathlib import Path

import pictures
import reference

SEED = 1997
LEVELS = (0, 1, 10, 11, 85, 128, 200, 254, 255)
RANDOM_COLOURS = 343
WIDTH = 8
SEVERITIES = (100, 45)
HALF_STEP = 0.5 + 1e-6
PLAIN_MODES = (("invert", ()), ("saturation", ("--saturation", "30")),
               ("contrast", ("--contrast", "50")), ("circadian", ("--severity", "60")))


def colours():
    generator = random.Random(SEED)
    grid = [(r, g, b) for r in LEVELS for g in LEVELS for b in LEVELS]
    grid += [tuple(generator.randrange(256) for _ in range(3))
             for _ in range(RANDOM_COLOURS)]
    return grid[:len(grid) // WIDTH * WIDTH]


def run(tool, *arguments):
    done = subprocess.run([tool, *arguments], capture_output=True, check=False)
    if done.returncode != 0 or done.stderr:
        raise RuntimeError(f"{' '.join(arguments)}: {done.stderr!r}")
    return done.stdout


def effect_of(tool, options):
    matrix = json.loads(run(tool, "matrix", "--format", "json", *options))["effect_matrix"]
    rows = [[matrix[i][output] for i in range(3)] for output in range(3)]
    return rows, matrix[4][:3]


def encoded_difference(effect, before, after):
    rows, offsets = effect
    for row, offset, step in zip(rows, offsets, after):
        exact = sum((Fraction(entry) * value for entry, value in zip(row, before)),
                    255 * Fraction(offset))
        nearest = min(max(math.floor(exact + Fraction(1, 2)), 0), 255)
        if step != nearest:
            return f"{before}: {step} for {float(exact)}"
    return None


def light_difference(simulate, before, after):
    light = [pictures.to_light(value / 255) for value in before]
    for shown, step in zip(simulate(light), after):
        exact = 255 * pictures.from_light(shown)
        if abs(step - exact) > HALF_STEP:
            return f"{before}: {step} for {exact}"
    return None


def cases():
    for kind in ("protan", "deutan", "tritan"):
        for severity in SEVERITIES:
            choice = ("--mode", kind, "--severity", str(severity))
            for algorithm in reference.ALGORITHMS:
                for light in ("encoded", "linear"):
                    yield (*choice, "--algorithm", algorithm), light, None
            yield ((*choice, "--algorithm", "brettel1997"), "brettel",
                   (kind, severity / 100))
    yield ("--mode", "normal", "--algorithm", "brettel1997"), "brettel", ("protan", 0.2)
    for mode, options in PLAIN_MODES:
        for light in ("encoded", "linear"):
            yield ("--mode", mode, *options), light, None


def differences_of(tool, directory, before, number, case):
    options, light, brettel = case
    output = Path(directory) / f"{number}.png"
    chosen = ("--light", "linear") if light == "linear" else ()
    run(tool, "filter", *options, *chosen, str(Path(directory) / "in.png"), str(output))
    after = pictures.read_png(output)
    if len(after) != len(before):
        return [f"{options}: {len(after)} pixels"]
    if light == "encoded":
        effect = effect_of(tool, options)
        found = (encoded_difference(effect, *pair) for pair in zip(before, after))
    else:
        if brettel:
            def simulate(rgb):
                return pictures.brettel_1997(*brettel, rgb)
        else:
            rows, offsets = effect_of(tool, options)

            def simulate(rgb):
                return [value + offset for value, offset
                        in zip(pictures.applied(rows, rgb), offsets)]
        found = (light_difference(simulate, *pair) for pair in zip(before, after))
    return [f"{' '.join(options)} {light}: {text}" for text in found if text]


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("tool", metavar="TOOL_PATH")
    tool = os.path.abspath(parser.parse_args().tool)
    before = colours()
    with tempfile.TemporaryDirectory() as directory:
        pictures.write_png(Path(directory) / "in.png", WIDTH, before)
        wanted = list(cases())
        with ThreadPoolExecutor(max_workers=os.cpu_count() or 2) as pool:
            results = pool.map(
                lambda item: differences_of(tool, directory, before, *item), enumerate(wanted))
            differences = [text for result in results for text in result]
    for text in differences[:20]:
        print(text)
    print(f"{len(wanted)} pictures of {len(before)} colours, {len(differences)} differences")
    return 1 if differences else 0


if __name__ == "__main__":
    sys.exit(main())

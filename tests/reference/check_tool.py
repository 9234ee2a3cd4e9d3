"""Hold the command-line program to the independent reference.

    check_tool.py TOOL_PATH [--sample N]

Agreement demanded:
- titles: to the character;
- effect matrix of the plain modes: exactly the 32-bit floats of the reference;
- effect matrix of the deficiency modes: exactly the 32-bit rounding of the
  program's own shown matrix, transposed;
- 3x3 matrices of the closed formulas: 1e-12 for simulation and daltonize,
  1e-9 for inverses (up to five digits are lost close to full severity). These
  and all tolerances of matrices are relative to the largest entry of the
  expected matrix, since small entries are differences of large ones;
- the spectral algorithm: 1e-11 for the simulation matrix and the curves. Its
  template polynomial sums terms of 4e7 in magnitude, of which extended
  precision leaves some 1e-12 in a sample (times the sum of the weights'
  magnitudes for the opponent curves). Daltonization and inverse are held to
  those of the program's own simulation matrix, at 1e-12 and 1e-9;
- inverses of matrices that are singular in exact arithmetic have no value to
  agree with: where the program's own matrix has a determinant of exactly 0.0
  by cofactors, and always for Judd's red-green matrices, the simulation must
  be shown; anywhere else the entries must be finite.
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

import reference
from exact_arithmetic import float32, from_floats, to_floats
from spectral_model import CURVE_NAMES, OPPONENT_WEIGHTS, SHIFTS, WAVELENGTHS
from sweep import all_cases

CLOSED_FORM_TOLERANCE = 1e-12
INVERSE_TOLERANCE = 1e-9
SPECTRAL_TOLERANCE = 1e-11
CURVE_TOLERANCE = 1e-11

SAMPLE_SEED = 1931
RUN_LIMIT_SECONDS = 300
REPORTED_DIFFERENCES = 20
FEWEST_COMPARISONS_PER_RUN = 2


class BadOutput(Exception):
    """The program failed or printed something that cannot be compared."""


def run_tool(tool, case):
    """Standard output, or the BadOutput that describes the failure."""
    try:
        run = subprocess.run([tool, *case.arguments()], capture_output=True,
                             timeout=RUN_LIMIT_SECONDS, check=False,
                             stdin=subprocess.DEVNULL)
        if run.returncode != 0:
            raise BadOutput(f"exit code {run.returncode}, standard error "
                            f"{run.stderr[-300:]!r}")
        if run.stderr:
            raise BadOutput(f"standard error {run.stderr[:300]!r}")
        return run.stdout.decode("utf-8")
    except (OSError, subprocess.TimeoutExpired, UnicodeDecodeError) as error:
        return BadOutput(f"{type(error).__name__}: {error}")
    except BadOutput as error:
        return error


def _refuse_constant(name):
    raise BadOutput(f"{name} among the numbers")


def read_json(text):
    """Numbers are kept exact, as printed."""
    try:
        return json.loads(text, parse_float=Fraction, parse_int=Fraction,
                          parse_constant=_refuse_constant)
    except ValueError as error:
        raise BadOutput(f"no JSON: {error}: {text[:80]!r}") from error


def matrix_field(answer, name, size, convert):
    rows = answer.get(name) if isinstance(answer, dict) else None
    if not (isinstance(rows, list) and len(rows) == size
            and all(isinstance(row, list) and len(row) == size
                    and all(isinstance(value, Fraction) for value in row)
                    for row in rows)):
        raise BadOutput(f"{name} is no {size}x{size} matrix of numbers")
    try:
        return [[convert(value) for value in row] for row in rows]
    except OverflowError as error:
        raise BadOutput(f"{name}: {error}") from error


def matrix_difference(expected, actual, tolerance):
    """None, or a description of the worst entry outside the tolerance."""
    largest = max(abs(value) for row in expected for value in row)
    size = range(len(expected))
    error, r, c = max((abs(actual[r][c] - expected[r][c]), r, c)
                      for r in size for c in size)
    if error <= tolerance * largest:
        return None
    return (f"[{r}][{c}] expected {expected[r][c]!r}, "
            f"actual {actual[r][c]!r}")


def cofactor_determinant(m):
    """In double arithmetic, along the first row as the program does it."""
    (a, b, c), (d, e, f), (g, h, i) = m
    k1, k2, k3 = e * i - h * f, g * f - i * d, h * d - g * e
    return a * k1 + b * k2 + c * k3


def shown_difference(settings, expected_simulation, simulation, shown):
    kind, _ = reference.model_deficiency(settings)
    inverting = settings.inverse and not settings.daltonize
    if inverting and reference.is_singular(expected_simulation):
        fallback = settings.algorithm == "judd" and kind != "tritan"
        if fallback or cofactor_determinant(simulation) == 0.0:
            return matrix_difference(simulation, shown, 0.0)
        # Reading the matrix has refused entries that are not finite.
        return None
    if settings.algorithm == "yang":
        expected_simulation = from_floats(simulation)
    expected = reference.shown_from_simulation(settings, expected_simulation)
    return matrix_difference(
        to_floats(expected), shown,
        INVERSE_TOLERANCE if inverting else CLOSED_FORM_TOLERANCE)


def matrix_comparisons(case, text):
    """Pairs of what was compared and None or the difference."""
    settings = case.settings
    answer = read_json(text)
    effect = matrix_field(answer, "effect_matrix", 5, float32)
    expected_title = reference.title(settings)
    title = answer.get("title")
    yield "title", (None if title == expected_title else
                    f"expected {expected_title!r}, actual {title!r}")
    if settings.mode not in reference.DEFICIENCY_MODES:
        yield "effect_matrix", matrix_difference(
            reference.effect_matrix(settings), effect, 0.0)
        return
    simulation = matrix_field(answer, "simulation_matrix", 3, float)
    shown = matrix_field(answer, "shown_matrix", 3, float)
    expected = reference.simulation_matrix(settings)
    yield "simulation_matrix", matrix_difference(
        to_floats(expected), simulation,
        SPECTRAL_TOLERANCE if settings.algorithm == "yang"
        else CLOSED_FORM_TOLERANCE)
    yield "shown_matrix", shown_difference(settings, expected, simulation,
                                           shown)
    yield "effect_matrix", matrix_difference(
        reference.effect_from_rows([[*row, 0.0] for row in shown]), effect,
        0.0)


def read_curves(text):
    rows = [line.split(",") for line in text.splitlines()]
    header = ["wavelength_nm", *CURVE_NAMES]
    if not rows or rows[0] != header:
        raise BadOutput(f"header is not {','.join(header)}")
    if any(len(row) != len(header) for row in rows):
        raise BadOutput(f"a row has other than {len(header)} fields")
    if [row[0] for row in rows[1:]] != [str(nm) for nm in WAVELENGTHS]:
        raise BadOutput("the rows are not those of 360 to 760 nm")
    try:
        columns = [[float(value) for value in column]
                   for column in list(zip(*rows[1:]))[1:]]
    except ValueError as error:
        raise BadOutput(str(error)) from error
    if not all(math.isfinite(value) for curve in columns for value in curve):
        raise BadOutput("a sample is not finite")
    return dict(zip(CURVE_NAMES, columns))


def curve_comparisons(case, text):
    curves = read_curves(text)
    for name, expected in reference.curves(case.settings).items():
        weights = OPPONENT_WEIGHTS.get(name, (1,))
        tolerance = CURVE_TOLERANCE * float(sum(map(abs, weights)))
        error, i = max((abs(value - wanted), i) for i, (value, wanted)
                       in enumerate(zip(curves[name], expected)))
        yield name, None if error <= tolerance else (
            f"at {WAVELENGTHS[i]} nm expected {expected[i]!r}, "
            f"actual {curves[name][i]!r}")
    for name in "LMS":
        peak = max(curves[name])
        yield f"largest {name}", (None if peak == 1.0 else
                                  f"expected 1.0, actual {peak!r}")
    kind, severity = reference.model_deficiency(case.settings)
    if severity == 1.0:
        moved, target = SHIFTS[kind]
        yield f"{moved} on {target}", (
            None if curves[moved] == curves[target] else
            "the two curves are not identical at full severity")


def compare(case, output):
    """All comparisons of one run; a failed run counts as one difference."""
    comparisons = (matrix_comparisons if case.command == "matrix"
                   else curve_comparisons)
    try:
        if isinstance(output, BadOutput):
            raise output
        return list(comparisons(case, output))
    except BadOutput as error:
        return [("run", str(error))]


def positive(text):
    number = int(text)
    if number < 1:
        raise argparse.ArgumentTypeError("must be at least 1")
    return number


def sampled(cases, step):
    """Every step-th case of each mode, at least one of each.

    Shuffled first: neighbours differ in regular cycles (the four views, for
    one) that a step could fall into. The fixed seed makes runs repeatable.
    """
    if step == 1:
        return cases
    groups = {}
    for case in cases:
        groups.setdefault((case.command, case.settings.mode), []).append(case)
    generator = random.Random(SAMPLE_SEED)
    chosen = []
    for group in groups.values():
        generator.shuffle(group)
        chosen += group[::step]
    return chosen


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("tool", metavar="TOOL_PATH")
    parser.add_argument("--sample", metavar="N", type=positive, default=1,
                        help="run every N-th case only")
    options = parser.parse_args()
    tool = os.path.abspath(options.tool)

    count, differences = 0, []
    with tempfile.TemporaryDirectory() as directory:
        cases = sampled(all_cases(directory), options.sample)
        with ThreadPoolExecutor(max_workers=os.cpu_count() or 2) as pool:
            outputs = pool.map(lambda case: run_tool(tool, case), cases)
            for case, output in zip(cases, outputs, strict=True):
                results = compare(case, output)
                count += len(results)
                differences += [
                    f"{' '.join(case.arguments())}: {what}: {difference}"
                    for what, difference in results if difference is not None]

    for line in differences[:REPORTED_DIFFERENCES]:
        print(line)
    if len(differences) > REPORTED_DIFFERENCES:
        print(f"and {len(differences) - REPORTED_DIFFERENCES} more")
    if not differences and count < FEWEST_COMPARISONS_PER_RUN * len(cases):
        differences.append("too few comparisons")
        print("too few comparisons were made")
    print(f"{count} comparisons in {len(cases)} runs, "
          f"{len(differences)} differences")
    return 1 if differences or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main())

"""The cone-shift model of Yang, Ro, Wong & Lee (2008) in 50-digit decimals.

Cone sensitivities follow the photopigment template of Stockman & Sharpe
(2000). Its polynomial cancels terms of about 1e7 down to a result of about 1,
which costs double arithmetic some eight of its sixteen digits; the decimals
here keep more than forty.
"""

import csv
from decimal import Decimal, localcontext
from fractions import Fraction
from functools import lru_cache
from pathlib import Path

from exact_arithmetic import inverse, product

DATA = Path(__file__).resolve().parent.parent / "data"
DIGITS = 50

WAVELENGTHS = range(360, 761)
CURVE_NAMES = ("L", "M", "S", "achromatic", "yellow_blue", "red_green")

# Coefficients of x^0, x^2, ... x^14, x the decadic logarithm of the
# wavelength relative to the template's own peak scale of 558 nm.
TEMPLATE = [Decimal(text) for text in (
    "-188862.9708", "90228.96671", "-2483.531554", "-6675.007924",
    "1813.525992", "-215.1778885", "12.48755862", "-0.289541501")]
TEMPLATE_SCALE = Decimal(558)

NORMAL_PEAKS = {"L": Decimal("558.9"), "M": Decimal("530.3"),
                "S": Decimal("420.7")}
OPTICAL_DENSITY = Decimal("0.35")

# The cone that moves and the cone it has reached at full severity.
SHIFTS = {"protan": ("L", "M"), "deutan": ("M", "L"), "tritan": ("S", "M")}

OPPONENT_WEIGHTS = {
    "achromatic": (Decimal("0.6"), Decimal("0.4"), Decimal(0)),
    "yellow_blue": (Decimal("0.24"), Decimal("0.105"), Decimal("-0.7")),
    "red_green": (Decimal("1.2"), Decimal("-1.6"), Decimal("0.4")),
}

PRIMARY_PEAKS = (620, 549, 469)
PRIMARY_WIDTH = 10


def _in_high_precision(function):
    def wrapper(*arguments):
        with localcontext() as context:
            context.prec = DIGITS
            return function(*arguments)
    wrapper.__doc__ = function.__doc__
    return lru_cache(maxsize=None)(wrapper)


def _density_table(file_name):
    """The published table, its first value held constant below 390 nm."""
    with open(DATA / file_name, newline="", encoding="ascii") as file:
        table = {int(row["wavelength_nm"]): Decimal(row["optical_density"])
                 for row in csv.DictReader(file)}
    first = min(table)
    return [table[max(wavelength, first)] for wavelength in WAVELENGTHS]


@_in_high_precision
def prereceptoral_transmittance():
    return [10 ** -(lens + macular) for lens, macular in zip(
        _density_table("lens_density_1nm.csv"),
        _density_table("macular_density_1nm.csv"))]


@_in_high_precision
def log_wavelengths():
    return [Decimal(wavelength).log10() for wavelength in WAVELENGTHS]


@_in_high_precision
def photopigment_template(peak):
    shift = (peak / TEMPLATE_SCALE).log10()
    curve = []
    for log_wavelength in log_wavelengths():
        square = (log_wavelength - shift) ** 2
        exponent = Decimal(0)
        for coefficient in reversed(TEMPLATE):
            exponent = exponent * square + coefficient
        curve.append(10 ** exponent)
    return curve


@_in_high_precision
def cone_sensitivity(peak):
    """Absorptance behind lens and macular pigment, largest sample 1."""
    full = 1 - 10 ** -OPTICAL_DENSITY
    seen = [(1 - 10 ** (-OPTICAL_DENSITY * absorbance)) / full * transmittance
            for absorbance, transmittance in zip(
                photopigment_template(peak), prereceptoral_transmittance())]
    largest = max(seen)
    return [sample / largest for sample in seen]


@_in_high_precision
def observer_peaks(deficiency, severity):
    """Peaks of L, M and S for a severity of 0 to 1 (a float, taken exactly)."""
    moving, target = SHIFTS[deficiency]
    peaks = dict(NORMAL_PEAKS)
    peaks[moving] += Decimal(severity) * (NORMAL_PEAKS[target]
                                          - NORMAL_PEAKS[moving])
    return peaks["L"], peaks["M"], peaks["S"]


@_in_high_precision
def observer_curves(deficiency, severity):
    """The six curves of the anomalous observer, by name."""
    cones = [cone_sensitivity(peak)
             for peak in observer_peaks(deficiency, severity)]
    curves = dict(zip("LMS", cones))
    for name, weights in OPPONENT_WEIGHTS.items():
        curves[name] = [sum(weight * sample
                            for weight, sample in zip(weights, samples))
                        for samples in zip(*cones)]
    return curves


@_in_high_precision
def primary_spectra():
    return [[(-Decimal(wavelength - peak) ** 2 / (2 * PRIMARY_WIDTH ** 2)).exp()
             for wavelength in WAVELENGTHS] for peak in PRIMARY_PEAKS]


@_in_high_precision
def _cone_row(peak):
    cone = cone_sensitivity(peak)
    raw = [Fraction(sum(a * b for a, b in zip(cone, primary)))
           for primary in primary_spectra()]
    return [value / sum(raw) for value in raw]


def rgb_to_lms(peaks):
    """Rows L, M, S; each sums to 1, so that display white stays neutral."""
    return [_cone_row(peak) for peak in peaks]


@lru_cache(maxsize=None)
def simulation_matrix(deficiency, severity):
    """The colours that give a normal observer the anomalous cone signals."""
    normal = rgb_to_lms(observer_peaks(deficiency, 0.0))
    anomalous = rgb_to_lms(observer_peaks(deficiency, severity))
    return product(inverse(normal), anomalous)

"""What the program should show for any setting, computed independently.

Everything is exact rational arithmetic (and 50-digit decimals in the
spectral model), rounded once at the end. Simulation matrices act on column
vectors (out = M * (r, g, b)); the 5x5 effect matrix is [input][output] with
the offsets in row 4.
"""

import csv
from dataclasses import dataclass
from fractions import Fraction

import spectral_model
from exact_arithmetic import (IDENTITY, combination, determinant, float32,
                              inverse, product)

DEFICIENCY_MODES = ("protan", "deutan", "tritan", "normal")
ALGORITHMS = ("judd", "yang", "machado", "vienot1997", "vienot1999")

# The display of the colour-normal variation: a weak protan shift.
NORMAL_VARIATION_TYPE = "protan"
NORMAL_VARIATION_DIVISOR = 5

# Far above what 50-digit decimals leave of a zero determinant, far below any
# determinant of a matrix that has an inverse.
SINGULAR_LIMIT = Fraction(1, 10 ** 30)

GREY_WEIGHTS = ("0.2989", "0.587", "0.114")
FILTER_FACTORS = {"red": (1, 0, 0), "green": (0, 1, 0), "blue": (0, 0, 1),
                  "yellow": (1, 1, 0), "magenta": (1, 0, 1),
                  "cyan": (0, 1, 1)}
SWAPPED_CHANNELS = {"red-blue": (0, 2), "red-green": (0, 1),
                    "green-blue": (1, 2)}
SWAP_WORDS = {"red-blue": "Red and Blue", "red-green": "Red and Green",
              "green-blue": "Green and Blue"}
DICHROMAT_WORDS = {"protan": "Protanope", "deutan": "Deuteranope",
                   "tritan": "Tritanope"}
ANOMALOUS_WORDS = {"protan": "Protanomalous", "deutan": "Deuteranomalous",
                   "tritan": "Tritanomalous"}


@dataclass(frozen=True)
class Settings:
    """Strengths are the program's 0..1 values (brightness -1..1)."""
    mode: str
    severity: float = 1.0
    algorithm: str = "judd"
    daltonize: bool = False
    inverse: bool = False
    filter_colour: str = "red"
    swap: str = "red-blue"
    brightness: float = 0.0
    contrast: float = 1.0
    saturation: float = 1.0
    custom_entries: tuple = ()
    custom_index: int = 0


def _matrix(*rows):
    return [[Fraction(value) for value in row.split()] for row in rows]


# Judd (1948) at full severity: the two cone signals merged into one.
JUDD = {
    "protan": _matrix("0.12 0.88 0", "0.12 0.88 0", "0 0 1"),
    "deutan": _matrix("0.28 0.72 0", "0.28 0.72 0", "0 0 1"),
    "tritan": _matrix("0.784 0.1054 0.1106", "-0.0271 0.8602 0.1669",
                      "0.1693 0.6768 0.1539"),
}

# Viénot, Brettel & Mollon (1997), approximated as one matrix per type.
VIENOT_1997 = {
    "protan": _matrix("0.222 1.006 -0.228", "0.191 0.723 0.086",
                      "-0.01 -0.019 1.029"),
    "deutan": _matrix("0.459 0.711 -0.17", "0.334 0.546 0.12",
                      "-0.066 0.053 1.013"),
    "tritan": _matrix("0.999 0.093 -0.092", "-0.042 0.883 0.159",
                      "0.3 0.795 -0.095"),
}

# Viénot, Brettel & Mollon (1999): the missing cone signal is rebuilt from
# the two others. The way back to RGB is a published table of its own.
RGB_TO_LMS_1999 = _matrix("17.8824 43.5161 4.11935", "3.45565 27.1554 3.86714",
                          "0.0299566 0.184309 1.46709")
LMS_TO_RGB_1999 = _matrix("0.0809444479 -0.130504409 0.116721066",
                          "-0.0102485335 0.0540193266 -0.113614708",
                          "-0.000365296938 -0.00412161469 0.693511405")
PROJECTION_1999 = {
    "protan": _matrix("0 2.02344 -2.52581", "0 1 0", "0 0 1"),
    "deutan": _matrix("1 0 0", "0.494207 0 1.24827", "0 0 1"),
    "tritan": _matrix("1 0 0", "0 1 0", "-0.395913 0.801109 0"),
}

# What a viewer loses in red and green, moved into green and blue.
DALTONIZE_SHARES = _matrix("0 0 0", "1.4 2.0 0", "1.4 0 2.0")


def _read_machado_tables():
    """Machado, Oliveira & Fernandes (2009): severities 0, 0.1, ... 1."""
    path = spectral_model.DATA / "machado_2009.csv"
    tables = {}
    with open(path, newline="", encoding="ascii") as file:
        for row in csv.DictReader(file):
            step = int(Fraction(row["severity"]) * 10)
            steps = tables.setdefault(row["type"], {})
            steps.setdefault(step, {})[int(row["row"])] = [
                Fraction(row[channel]) for channel in "rgb"]
    return {kind: [[steps[step][r] for r in range(3)] for step in range(11)]
            for kind, steps in tables.items()}


MACHADO = _read_machado_tables()


def model_deficiency(settings):
    """The simulated type and the severity the model is given (0..1)."""
    if settings.mode == "normal":
        return (NORMAL_VARIATION_TYPE,
                settings.severity / NORMAL_VARIATION_DIVISOR)
    return settings.mode, settings.severity


def simulation_matrix(settings):
    """The matrix before daltonize or inversion."""
    kind, severity = model_deficiency(settings)
    k = Fraction(severity)
    if settings.algorithm == "yang":
        return spectral_model.simulation_matrix(kind, severity)
    if settings.algorithm == "machado":
        step = min(int(10 * k), 9)
        above = 10 * k - step
        return combination(1 - above, MACHADO[kind][step],
                           above, MACHADO[kind][step + 1])
    if settings.algorithm == "vienot1999":
        full = product(LMS_TO_RGB_1999,
                       product(PROJECTION_1999[kind], RGB_TO_LMS_1999))
        # The two published tables are inverse to each other only to their
        # printed digits, so the blend starts from the exact identity.
        return combination(1 - k, IDENTITY, k, full)
    full = {"judd": JUDD, "vienot1997": VIENOT_1997}[settings.algorithm][kind]
    return combination(1 - k, IDENTITY, k, full)


def daltonized(simulation):
    lost = combination(1, IDENTITY, -1, simulation)
    return combination(1, IDENTITY, 1, product(DALTONIZE_SHARES, lost))


def is_singular(matrix):
    return abs(determinant(matrix)) < SINGULAR_LIMIT


def shown_from_simulation(settings, simulation):
    """Daltonize wins over inversion; a singular matrix is shown as it is."""
    if settings.daltonize:
        return daltonized(simulation)
    if settings.inverse and not is_singular(simulation):
        return inverse(simulation)
    return simulation


def shown_matrix(settings):
    return shown_from_simulation(settings, simulation_matrix(settings))


def _custom_entry(settings):
    entries = settings.custom_entries
    index = settings.custom_index
    return entries[index if 0 <= index < len(entries) else 0]


def plain_rows(settings, number=Fraction):
    """Per output channel the factors of R, G, B and the offset.

    For the modes that are no colour vision simulation. The number type can
    be exchanged to see what plain double arithmetic makes of the formulas.
    """
    zero, one = number(0), number(1)
    k = number(settings.severity)
    rows = [[one if r == c else zero for c in range(4)] for r in range(3)]

    def scale(factors, offset=zero):
        for channel, factor in enumerate(factors):
            rows[channel][channel] = factor
            rows[channel][3] = offset

    mode = settings.mode
    if mode == "filter":
        scale([one - (one - number(factor)) * k
               for factor in FILTER_FACTORS[settings.filter_colour]])
    elif mode == "red-filter":
        scale([number(factor) for factor in FILTER_FACTORS["red"]])
    elif mode == "greyscale":
        return [[number(weight) for weight in GREY_WEIGHTS] + [zero]
                for _ in range(3)]
    elif mode == "invert":
        scale([-one] * 3, one)
    elif mode == "brightness":
        scale([one] * 3, number(settings.brightness))
    elif mode == "contrast":
        c = number(settings.contrast)
        scale([c] * 3, (one - c) / 2)
    elif mode == "saturation":
        s = number(settings.saturation)
        for row in rows:
            for c, weight in enumerate(GREY_WEIGHTS):
                row[c] = (one - s) * number(weight) + s * row[c]
    elif mode == "swap":
        a, b = SWAPPED_CHANNELS[settings.swap]
        rows[a][a] = rows[b][b] = one - k
        rows[a][b] = rows[b][a] = k
    elif mode == "circadian":
        scale([number("0.1") + number("0.9") * k,
               number("0.065") + number("0.585") * k, zero])
    elif mode == "custom":
        entry = _custom_entry(settings)
        strength = k if entry.adjustable else one
        for row, wanted in zip(rows, entry.rows):
            for c, value in enumerate(wanted):
                row[c] += (number(value) - row[c]) * strength
    else:
        raise ValueError(f"unknown mode {mode}")
    return rows


def effect_matrix(settings):
    """The 5x5 matrix as 32-bit floats (held in Python floats)."""
    if settings.mode in DEFICIENCY_MODES:
        rows = [row + [Fraction(0)] for row in shown_matrix(settings)]
    elif settings.mode == "custom":
        # A 32-bit float of the file times a strength like 0.95 often falls
        # halfway between two floats up to the last bit of a double, so the
        # outcome is defined by the formula in double arithmetic.
        rows = plain_rows(settings, float)
    else:
        rows = plain_rows(settings)
    return effect_from_rows(rows)


def effect_from_rows(rows):
    effect = [[1.0 if i == j else 0.0 for j in range(5)] for i in range(5)]
    for output, row in enumerate(rows):
        for input_channel in range(3):
            effect[input_channel][output] = float32(row[input_channel])
        effect[4][output] = float32(row[3])
    return effect


def percentage(value):
    """Whole percent, a hair of slack against values just below it."""
    slack = Fraction(1, 1000) if value >= 0 else Fraction(-1, 1000)
    return int(Fraction(value) * 100 + slack)


def _deficiency_title(settings):
    if settings.inverse:
        # The program's Tritan title has always lacked this "s".
        word = "Tranform" if settings.mode == "tritan" else "Transform"
        view = f"Inverse {word}"
    else:
        view = "Daltonize" if settings.daltonize else "Simulation"
    words = DICHROMAT_WORDS if settings.severity >= 1.0 else ANOMALOUS_WORDS
    return (f" {view} - {words[settings.mode]} "
            f"{percentage(settings.severity)}% severity")


def title(settings):
    """The title of the main window, blanks included."""
    mode = settings.mode
    p = percentage(settings.severity)
    if mode in ("protan", "deutan", "tritan"):
        return _deficiency_title(settings)
    if mode == "brightness":
        sign = "+" if settings.brightness >= 0 else ""
        return f"Brightness {sign}{percentage(settings.brightness)}%"
    if mode == "custom":
        entry = _custom_entry(settings)
        note = f"   {p}% (mouse-wheel adjusts %)"
        return entry.name + note if entry.adjustable else entry.name
    return {
        "normal": f"Normal  {p}% severity",
        "filter": f"{p}% {settings.filter_colour.capitalize()} Filter",
        "red-filter": "Red Filter",
        "greyscale": "Greyscale",
        "invert": "Invert ",
        "contrast": f"Contrast {percentage(settings.contrast)}%",
        "saturation": f"Saturation {percentage(settings.saturation)}%",
        "swap": f"Swap {p}% {SWAP_WORDS[settings.swap]}",
        "circadian": f"Circadian Light Block, Brightness {p}%",
    }[mode]


def curves(settings):
    """The anomalous observer's six curves as floats, 360 to 760 nm."""
    observer = spectral_model.observer_curves(*model_deficiency(settings))
    return {name: [float(sample) for sample in observer[name]]
            for name in spectral_model.CURVE_NAMES}

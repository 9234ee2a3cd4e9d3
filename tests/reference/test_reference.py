"""Hold the reference itself to published figures and hand calculation."""

import math
import struct
import tempfile
import unittest
from decimal import Decimal
from fractions import Fraction

import pictures
import reference
import spectral_model
from custom_file import read_entries
from exact_arithmetic import (IDENTITY, determinant, float32, from_floats,
                              inverse, product, to_floats)
from reference import Settings, effect_matrix, percentage, title
from sweep import all_cases


def rows(*texts):
    return [[Fraction(value) for value in text.split()] for text in texts]


def simulation(mode, severity, algorithm):
    return reference.simulation_matrix(
        Settings(mode, severity=severity, algorithm=algorithm))


class ExactArithmetic(unittest.TestCase):
    def test_inverse_times_matrix_is_the_identity(self):
        m = rows("0.3 0.6 0.1", "-2 0.5 1", "0 7 1/3")
        self.assertEqual(product(inverse(m), m), IDENTITY)

    def test_inverse_needs_row_exchange(self):
        m = rows("0 1 0", "1 0 0", "0 0 2")
        self.assertEqual(inverse(m), rows("0 1 0", "1 0 0", "0 0 1/2"))

    def test_singular_has_no_inverse(self):
        self.assertIsNone(inverse(rows("1 2 3", "2 4 6", "0 0 1")))

    def test_determinant(self):
        self.assertEqual(determinant(rows("2 0 1", "1 3 2", "1 1 1")), 0)
        self.assertEqual(determinant(rows("2 0 0", "1 3 2", "1 1 1")), 2)

    def test_float32_agrees_with_the_machine(self):
        for value in (0.1, -0.2989, 1e-40, 3.4e38, 5e-324, 1 / 3, -2.5e-45):
            machine = struct.unpack("<f", struct.pack("<f", value))[0]
            self.assertEqual(float32(Fraction(value)), machine)

    def test_float32_rounds_once(self):
        just_above_tie = 1 + Fraction(1, 2 ** 24) + Fraction(1, 2 ** 60)
        self.assertEqual(float32(just_above_tie), 1 + 2.0 ** -23)
        self.assertEqual(float32(1 + Fraction(1, 2 ** 24)), 1.0)
        self.assertEqual(float32(1 + Fraction(3, 2 ** 24)), 1 + 2.0 ** -22)

    def test_float32_overflow(self):
        self.assertEqual(float32(Fraction(10) ** 39), float("inf"))
        self.assertEqual(float32(-Fraction(10) ** 39), float("-inf"))


class Brettel1997(unittest.TestCase):
    def test_greys_stay(self):
        for kind in pictures.ANCHORS_OF:
            for grey in (0.0, 0.25, 1.0):
                for value in pictures.brettel_1997(kind, 1.0, [grey] * 3):
                    self.assertAlmostEqual(value, grey, places=12)

    def test_an_anchor_looks_the_same_to_the_dichromat(self):
        for kind, wavelengths in pictures.ANCHORS_OF.items():
            for wavelength in wavelengths:
                xyz = [float(value) for value in pictures.ANCHORS[wavelength]]
                matrix = [[float(value) for value in row] for row in pictures.XYZ_TO_LMS]
                rgb = pictures.applied(pictures.LMS_TO_RGB, pictures.applied(matrix, xyz))
                for before, after in zip(rgb, pictures.brettel_1997(kind, 1.0, rgb)):
                    self.assertAlmostEqual(before, after, places=12)

    def test_half_the_severity_is_half_the_way_in_light(self):
        before = [0.7, 0.2, 0.1]
        full = pictures.brettel_1997("protan", 1.0, before)
        half = pictures.brettel_1997("protan", 0.5, before)
        for a, b, c in zip(before, full, half):
            self.assertAlmostEqual(c, (a + b) / 2, places=12)

    def test_transfer_function(self):
        self.assertAlmostEqual(pictures.to_light(0.5), 0.214041140482232, places=14)
        for step in range(256):
            self.assertAlmostEqual(pictures.from_light(pictures.to_light(step / 255)),
                                   step / 255, places=6)


class Simulation(unittest.TestCase):
    def test_no_severity_is_the_identity(self):
        for mode in reference.DEFICIENCY_MODES:
            for algorithm in reference.ALGORITHMS:
                with self.subTest(mode=mode, algorithm=algorithm):
                    settings = Settings(mode, severity=0.0,
                                        algorithm=algorithm)
                    matrix = reference.simulation_matrix(settings)
                    for got, wanted in zip(matrix, IDENTITY):
                        for a, b in zip(got, wanted):
                            self.assertAlmostEqual(float(a - b), 0, places=40)

    def test_white_stays_white(self):
        for mode in reference.DEFICIENCY_MODES:
            for algorithm in ("judd", "yang", "machado"):
                with self.subTest(mode=mode, algorithm=algorithm):
                    for row in simulation(mode, 1.0, algorithm):
                        self.assertAlmostEqual(float(sum(row)), 1, places=5)

    def test_judd_half_protan(self):
        self.assertEqual(simulation("protan", 0.5, "judd"),
                         rows("0.56 0.44 0", "0.06 0.94 0", "0 0 1"))

    def test_judd_tritan_by_its_slopes(self):
        k = Fraction(1, 4)
        d, e, f = (Fraction(text) for text in ("0.216", "0.1398", "0.8461"))
        matrix = simulation("tritan", 0.25, "judd")
        self.assertEqual([matrix[i][i] for i in range(3)],
                         [1 - d * k, 1 - e * k, 1 - f * k])
        self.assertEqual(matrix[1][0], Fraction("-0.0271") * k)

    def test_vienot_1997_dichromat(self):
        self.assertEqual(simulation("tritan", 1.0, "vienot1997")[2],
                         rows("0.3 0.795 -0.095")[0])
        self.assertEqual(simulation("protan", 0.5, "vienot1997")[0],
                         rows("0.611 0.503 -0.114")[0])

    def test_vienot_1999_dichromats_lose_one_dimension(self):
        for mode in ("protan", "deutan", "tritan"):
            matrix = simulation(mode, 1.0, "vienot1999")
            self.assertEqual(determinant(matrix), 0)
        protan = to_floats(simulation("protan", 1.0, "vienot1999"))
        self.assertAlmostEqual(protan[0][0], 0.1123, places=3)
        self.assertAlmostEqual(protan[0][1], 0.8877, places=3)

    def test_machado_published_rows(self):
        self.assertEqual(simulation("protan", 1.0, "machado")[0],
                         rows("0.152286 1.052583 -0.204868")[0])
        self.assertEqual(simulation("deutan", 1.0, "machado")[0][0],
                         Fraction("0.367322"))
        self.assertEqual(simulation("tritan", 1.0, "machado")[0][0],
                         Fraction("1.255528"))
        self.assertEqual(simulation("protan", 0.5, "machado")[1],
                         rows("0.092785 0.846313 0.060902")[0])
        for tables in reference.MACHADO.values():
            self.assertEqual(tables[0], IDENTITY)
            self.assertEqual(len(tables), 11)

    def test_machado_between_tables_is_the_midpoint(self):
        matrix = simulation("deutan", 0.25, "machado")
        low, high = reference.MACHADO["deutan"][2:4]
        self.assertEqual(matrix[1][2], (low[1][2] + high[1][2]) / 2)

    def test_normal_is_a_fifth_of_protan(self):
        for algorithm in reference.ALGORITHMS:
            self.assertEqual(simulation("normal", 1.0, algorithm),
                             simulation("protan", 0.2, algorithm))


class Views(unittest.TestCase):
    def test_daltonize_by_hand(self):
        shown = reference.shown_matrix(
            Settings("protan", severity=0.5, daltonize=True))
        # Lost: red 0.44 R - 0.44 G, green -0.06 R + 0.06 G.
        self.assertEqual(shown, rows("1 0 0", "0.496 0.504 0",
                                     "0.616 -0.616 1"))

    def test_daltonize_wins(self):
        both = Settings("deutan", severity=0.7, daltonize=True, inverse=True)
        one = Settings("deutan", severity=0.7, daltonize=True)
        self.assertEqual(reference.shown_matrix(both),
                         reference.shown_matrix(one))

    def test_inverse_undoes_the_simulation(self):
        for algorithm in reference.ALGORITHMS:
            settings = Settings("tritan", severity=0.95, inverse=True,
                                algorithm=algorithm)
            self.assertEqual(
                product(reference.shown_matrix(settings),
                        reference.simulation_matrix(settings)), IDENTITY)

    def test_singular_matrix_is_shown_uninverted(self):
        settings = Settings("deutan", inverse=True)
        self.assertTrue(reference.is_singular(
            reference.simulation_matrix(settings)))
        self.assertEqual(reference.shown_matrix(settings),
                         rows("0.28 0.72 0", "0.28 0.72 0", "0 0 1"))

    def test_which_dichromats_are_singular(self):
        singular = {(mode, algorithm)
                    for mode in ("protan", "deutan", "tritan")
                    for algorithm in reference.ALGORITHMS
                    if reference.is_singular(simulation(mode, 1.0, algorithm))}
        types = ("protan", "deutan", "tritan")
        self.assertEqual(singular, {
            ("protan", "judd"), ("deutan", "judd"),
            *((mode, "yang") for mode in types),
            *((mode, "vienot1999") for mode in types)})


class Spectral(unittest.TestCase):
    def test_prereceptoral_transmittance(self):
        transmittance = spectral_model.prereceptoral_transmittance()
        self.assertEqual(len(transmittance), 401)
        self.assertAlmostEqual(transmittance[0], 10 ** Decimal("-2.55753"),
                               places=25)
        self.assertEqual(transmittance[0], transmittance[30])
        self.assertEqual(set(transmittance[300:]), {1})

    def test_template_maxima(self):
        for peak, wavelength in (("420.7", 421), ("530.3", 530),
                                 ("558.9", 559)):
            curve = spectral_model.photopigment_template(Decimal(peak))
            largest = max(curve)
            self.assertEqual(360 + curve.index(largest), wavelength)
            self.assertAlmostEqual(float(largest), 0.9973, places=4)

    def test_cones_and_opponent_signals(self):
        curves = reference.curves(Settings("deutan", severity=0.35))
        self.assertEqual(tuple(curves), spectral_model.CURVE_NAMES)
        for name in "LMS":
            self.assertEqual(max(curves[name]), 1.0)
        cone_l, cone_m, cone_s = (curves[name][100] for name in "LMS")
        self.assertAlmostEqual(curves["achromatic"][100],
                               0.6 * cone_l + 0.4 * cone_m, places=14)
        self.assertAlmostEqual(
            curves["yellow_blue"][100],
            0.24 * cone_l + 0.105 * cone_m - 0.7 * cone_s, places=14)
        self.assertAlmostEqual(
            curves["red_green"][100],
            1.2 * cone_l - 1.6 * cone_m + 0.4 * cone_s, places=14)

    def test_dichromat_curves_coincide(self):
        for mode, (moved, target) in spectral_model.SHIFTS.items():
            curves = reference.curves(Settings(mode))
            self.assertEqual(curves[moved], curves[target])

    def test_peaks_move_linearly(self):
        self.assertEqual(spectral_model.observer_peaks("protan", 0.5)[0],
                         Decimal("544.6"))
        self.assertEqual(spectral_model.observer_peaks("deutan", 0.5)[1],
                         Decimal("544.6"))
        self.assertEqual(spectral_model.observer_peaks("tritan", 0.5)[2],
                         Decimal("475.5"))
        normal = spectral_model.observer_peaks("tritan", 0.0)
        self.assertEqual(normal, (Decimal("558.9"), Decimal("530.3"),
                                  Decimal("420.7")))

    def test_rows_of_rgb_to_lms_sum_to_one(self):
        for severity in (0.0, 0.4, 1.0):
            for mode in spectral_model.SHIFTS:
                peaks = spectral_model.observer_peaks(mode, severity)
                for row in spectral_model.rgb_to_lms(peaks):
                    self.assertEqual(sum(row), 1)


class Effect(unittest.TestCase):
    def test_layout_is_transposed_with_identity_alpha(self):
        half, rest = float32(Fraction("0.44")), float32(Fraction("0.56"))
        effect = effect_matrix(Settings("protan", severity=0.5))
        self.assertEqual(effect[0][0], rest)
        self.assertEqual(effect[1][0], half)
        self.assertEqual(effect[0][1], float32(Fraction("0.06")))
        self.assertEqual(effect[3], [0.0, 0.0, 0.0, 1.0, 0.0])
        self.assertEqual(effect[4], [0.0, 0.0, 0.0, 0.0, 1.0])

    def test_invert_and_brightness(self):
        self.assertEqual(effect_matrix(Settings("invert"))[4][:3], [1.0] * 3)
        dark = effect_matrix(Settings("brightness", brightness=-1.0))
        self.assertEqual(dark[4][:3], [-1.0] * 3)
        self.assertEqual(dark[1][1], 1.0)

    def test_extremes_of_contrast_and_saturation(self):
        flat = effect_matrix(Settings("contrast", contrast=0.0))
        self.assertEqual([flat[0][0], flat[4][0]], [0.0, 0.5])
        grey = effect_matrix(Settings("saturation", saturation=0.0))
        self.assertEqual(grey, effect_matrix(Settings("greyscale")))
        self.assertEqual(grey[1][2], float32(Fraction("0.587")))
        unchanged = effect_matrix(Settings("contrast"))
        self.assertEqual(effect_matrix(Settings("saturation")), unchanged)

    def test_filter_swap_and_circadian(self):
        yellow = effect_matrix(Settings("filter", severity=0.4,
                                        filter_colour="yellow"))
        self.assertEqual([yellow[i][i] for i in range(3)],
                         [1.0, 1.0, float32(Fraction("0.6"))])
        swapped = effect_matrix(Settings("swap", swap="red-green"))
        self.assertEqual(swapped[0][:3], [0.0, 1.0, 0.0])
        self.assertEqual(swapped[2][:3], [0.0, 0.0, 1.0])
        dim = effect_matrix(Settings("circadian", severity=0.0))
        self.assertEqual([dim[i][i] for i in range(3)],
                         [float32(Fraction("0.1")),
                          float32(Fraction("0.065")), 0.0])
        red = effect_matrix(Settings("red-filter", severity=0.3))
        self.assertEqual([red[i][i] for i in range(3)], [1.0, 0.0, 0.0])

    def test_double_arithmetic_can_meet_the_floats(self):
        with tempfile.TemporaryDirectory() as directory:
            plain = [case.settings for case in all_cases(directory)
                     if case.settings.mode
                     not in (*reference.DEFICIENCY_MODES, "custom")]
        self.assertGreater(len(plain), 500)
        for settings in plain:
            doubles = reference.plain_rows(settings, float)
            self.assertEqual(reference.effect_from_rows(from_floats(doubles)),
                             effect_matrix(settings), settings)


class CustomFile(unittest.TestCase):
    CONTENT = (b"$Deutan correction\n 1 0 0 0 \n-0.5\t1.5 0 0.1abc\n"
               b"0 0 1 2e-1\t\nPlain\n0 1 0 0\n1 0 0 0\n0 0 1 0")

    def test_fields(self):
        first, second = read_entries(self.CONTENT)
        self.assertEqual((first.name, first.adjustable),
                         ("Deutan correction", True))
        self.assertEqual(first.rows[1],
                         (-0.5, 1.5, 0.0, float32(Fraction("0.1"))))
        self.assertEqual(first.rows[2][3], float32(Fraction("0.2")))
        self.assertEqual((second.name, second.adjustable), ("Plain", False))

    def test_reading_ends_at_a_bad_record(self):
        good = b"a\n1 0 0 0\n0 1 0 0\n0 0 1 0\n"
        for bad in (b"b\n1 0 0\n0 1 0 0\n0 0 1 0\n",
                    b"b\n1 0 0 0 0\n0 1 0 0\n0 0 1 0\n",
                    b"b\n1 0 0 x\n0 1 0 0\n0 0 1 0\n",
                    b"b\n1 0 0 0\n0 1 0 0\n", b"b", b"\n"):
            names = [entry.name for entry in read_entries(good + bad + good)]
            self.assertEqual(names[:1], ["a"])
            self.assertNotIn("b", names)
        self.assertEqual(read_entries(b""), ())

    def first_row(self, line):
        (entry,) = read_entries(b"name\n" + line + b"\n0 1 0 0\n0 0 1 0")
        return entry.rows[0]

    def test_notations(self):
        self.assertEqual(self.first_row(b"0x10 -0X1.8p+1 0x.8 0xabg"),
                         (16.0, -3.0, 0.5, 171.0))
        self.assertEqual(self.first_row(b"0x 0xg 0x1p 0x2p+"),
                         (0.0, 0.0, 1.0, 2.0))
        self.assertEqual(self.first_row(b"1e 2e+ .5.5 +3-"),
                         (1.0, 2.0, 0.5, 3.0))
        self.assertEqual(self.first_row(b"\v1 \f2 \v\f3 4\v"),
                         (1.0, 2.0, 3.0, 4.0))
        infinity = float("inf")
        self.assertEqual(self.first_row(b"-inf +INFINITY 1e99 -Infx"),
                         (-infinity, infinity, infinity, -infinity))
        self.assertTrue(all(map(math.isnan,
                                self.first_row(b"-nan +NaN -nanx \vnan"))))
        for field in (b"inf", b"nan", b"x1", b"$1", b".", b"-", b"0", b"\v"):
            read = read_entries(b"a\n1 1 1 " + field + b"\n0 1 0 0\n0 0 1 0")
            self.assertEqual(len(read), int(field == b"0"), field)

    def test_lines(self):
        lines = b"name", b"1 0 0 0", b"0 1 0 0", b"0 0 1 0"
        for end in (b"\n", b"\r", b"\r\n", b"\0"):
            self.assertEqual(len(read_entries(end.join(lines * 2))), 2, end)
        for end in (b"\r\r\n", b"\n\r", b"\r\0"):
            self.assertEqual(read_entries(end.join(lines)), (), end)
        self.assertEqual(
            len(read_entries(b"\n".join((*lines, b"\x1ab", *lines)))), 1)

    def test_strength(self):
        entries = read_entries(self.CONTENT)
        half = Settings("custom", severity=0.5, custom_entries=entries)
        effect = effect_matrix(half)
        self.assertEqual([effect[0][1], effect[1][1]], [-0.25, 1.25])
        self.assertEqual(effect[4][2], float32(Fraction("0.2")) / 2)
        none = Settings("custom", severity=0.0, custom_entries=entries)
        self.assertEqual(effect_matrix(none),
                         effect_matrix(Settings("contrast")))
        fixed = Settings("custom", severity=0.5, custom_entries=entries,
                         custom_index=1)
        self.assertEqual(effect_matrix(fixed)[0][:3], [0.0, 1.0, 0.0])

    def test_titles_and_index_past_the_end(self):
        entries = read_entries(self.CONTENT)
        for index, wanted in (
                (0, "Deutan correction   60% (mouse-wheel adjusts %)"),
                (1, "Plain"),
                (7, "Deutan correction   60% (mouse-wheel adjusts %)")):
            self.assertEqual(title(Settings(
                "custom", severity=0.6, custom_entries=entries,
                custom_index=index)), wanted)


class Titles(unittest.TestCase):
    def test_deficiencies(self):
        for settings, wanted in (
                (Settings("deutan"), " Simulation - Deuteranope 100% severity"),
                (Settings("deutan", severity=0.6),
                 " Simulation - Deuteranomalous 60% severity"),
                (Settings("protan", severity=0.6, daltonize=True),
                 " Daltonize - Protanomalous 60% severity"),
                (Settings("protan", severity=0.0, inverse=True),
                 " Inverse Transform - Protanomalous 0% severity"),
                (Settings("tritan", inverse=True, daltonize=True),
                 " Inverse Tranform - Tritanope 100% severity"),
                (Settings("normal", severity=0.95, inverse=True),
                 "Normal  95% severity")):
            self.assertEqual(title(settings), wanted)

    def test_effects(self):
        for settings, wanted in (
                (Settings("filter", severity=0.6), "60% Red Filter"),
                (Settings("red-filter"), "Red Filter"),
                (Settings("invert"), "Invert "),
                (Settings("brightness", brightness=0.25), "Brightness +25%"),
                (Settings("brightness", brightness=-0.1), "Brightness -10%"),
                (Settings("brightness"), "Brightness +0%"),
                (Settings("contrast", contrast=0.29), "Contrast 29%"),
                (Settings("saturation", saturation=0.58), "Saturation 58%"),
                (Settings("swap", severity=0.5, swap="green-blue"),
                 "Swap 50% Green and Blue"),
                (Settings("circadian", severity=0.05),
                 "Circadian Light Block, Brightness 5%")):
            self.assertEqual(title(settings), wanted)

    def test_percentages_truncate_with_slack(self):
        steps = 0.0
        for percent in range(0, 101, 5):
            self.assertEqual(percentage(steps), percent)
            steps += 0.05
        self.assertEqual(percentage(0.375), 37)
        self.assertEqual(percentage(0.999), 99)
        self.assertEqual(percentage(-0.29), -29)


if __name__ == "__main__":
    unittest.main()

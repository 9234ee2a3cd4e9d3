"""Hold the program's verdicts on palettes to the independent reference.

    check_palettes.py TOOL_PATH PALETTE.gpl... [--table]

Every number of `check --format json` must agree within 1e-5 (a CIEDE2000
difference of 1 is just noticeable): greys that went through a simulation keep
a chroma of rounding errors, some 1e-14, whose square root times a hue that
means nothing is part of CIEDE2000. The findings must be the same, and every
suggestion must keep its promises when the changed palette is judged anew: the
pair is distinct to every viewer, and no other pair becomes worse off than the
limits allow. With --table it prints the findings as a table.
"""

import argparse
import json
import pathlib
import subprocess
import sys

from colour_appearance import ciede2000, contrast, lab, viewer

TYPES = ("protan", "deutan", "tritan")
SEVERITIES = (60, 100)
APART, LOST = 15.0, 8.0
VARIANTS = (("judd", "encoded"), ("judd", "linear"), ("machado", "linear"),
            ("vienot1999", "linear"), ("yang", "encoded"),
            ("vienot1997", "encoded"), ("brettel1997", "linear"))
TOLERANCE = 1e-5
STATUS_WITHOUT_FINDINGS, STATUS_WITH_FINDINGS = 0, 3


def read_palette(path):
    """Names and colours of a .gpl file."""
    colours = []
    for line in path.read_text(encoding="utf-8").splitlines():
        words = line.split(None, 3)
        if len(words) == 4 and all(word.isdigit() for word in words[:3]):
            colours.append((words[3],
                            tuple(int(word) / 255 for word in words[:3])))
    return colours


def hex_text(colour):
    return "#" + "".join(f"{round(255 * value):02x}" for value in colour)


def from_hex(text):
    return tuple(int(text[i:i + 2], 16) / 255 for i in (1, 3, 5))


class Judgement:
    """All pairs of some colours, before and for each viewer."""

    def __init__(self, colours, viewers):
        seen = [colours] + [[see(colour) for colour in colours]
                            for _, see in viewers]
        labs = [[lab(colour) for colour in row] for row in seen]
        size = range(len(colours))
        self.pairs = {
            (i, j): [(ciede2000(places[i], places[j]),
                      contrast(row[i], row[j]))
                     for places, row in zip(labs, seen)]
            for i in size for j in size if i < j}

    def lost(self, pair):
        before, *after = (difference for difference, _ in self.pairs[pair])
        return {v for v, difference in enumerate(after)
                if before >= APART and difference < LOST}


def close(a, b):
    return abs(a - b) <= TOLERANCE


class Complaints(list):
    def expect(self, holds, text):
        if not holds:
            self.append(text)


def check_pairs(answer, judgement, viewers, complaints):
    got = {tuple(pair["colours"]): pair for pair in answer["pairs"]}
    complaints.expect(set(got) == set(judgement.pairs), "other pairs")
    for pair, expected in judgement.pairs.items():
        numbers = [got[pair]["before"], *got[pair]["after"]]
        complaints.expect(len(numbers) == len(expected), f"{pair}: viewers")
        for number, (difference, ratio) in zip(numbers, expected):
            complaints.expect(
                close(number["ciede2000"], difference)
                and close(number["contrast"], ratio),
                f"{pair}: {number}, expected {difference}, {ratio}")
        names = [(entry["deficiency"], entry["severity"])
                 for entry in got[pair]["after"]]
        complaints.expect(names == [name for name, _ in viewers],
                          f"{pair}: {names}")


def check_suggestion(finding, colours, viewers, judgement, complaints):
    suggestion = finding["suggestion"]
    pair = tuple(finding["colours"])
    place = suggestion["colour"]
    complaints.expect(place in pair, f"{pair}: another colour is changed")
    complaints.expect(suggestion["from"] == hex_text(colours[place]),
                      f"{pair}: from {suggestion['from']}")
    changed = list(colours)
    changed[place] = from_hex(suggestion["to"])
    complaints.expect(
        close(suggestion["change_ciede2000"],
              ciede2000(lab(colours[place]), lab(changed[place]))),
        f"{pair}: change {suggestion['change_ciede2000']}")
    after = Judgement(changed, viewers)
    before, *seen = (difference for difference, _ in after.pairs[pair])
    complaints.expect(before >= APART and min(seen) >= LOST,
                      f"{pair}: still {before}, {seen}")
    for other in judgement.pairs:
        complaints.expect(after.lost(other) <= judgement.lost(other),
                          f"{pair}: the suggestion loses {other}")
        complaints.expect(judgement.pairs[other][0][0] < APART
                          or after.pairs[other][0][0] >= APART,
                          f"{pair}: the suggestion brings {other} together")


def check_palette(tool, path, variant):
    """Complaints, and the findings as rows for people."""
    algorithm, light = variant
    names, colours = zip(*read_palette(path))
    viewers = [((kind, severity),
                viewer(kind, severity / 100, algorithm, light))
               for kind in TYPES for severity in SEVERITIES]
    judgement = Judgement(colours, viewers)
    run = subprocess.run([tool, "check", str(path), "--format", "json",
                          "--algorithm", algorithm, "--light", light],
                         capture_output=True, check=False)
    complaints = Complaints()
    expected = {pair: judgement.lost(pair) for pair in judgement.pairs
                if judgement.lost(pair)}
    status = STATUS_WITH_FINDINGS if expected else STATUS_WITHOUT_FINDINGS
    complaints.expect(run.returncode == status, f"status {run.returncode}")
    complaints.expect(not run.stderr, f"standard error {run.stderr!r}")
    answer = json.loads(run.stdout)
    complaints.expect((answer["algorithm"], answer["light"]) == variant,
                      "another algorithm or light")
    complaints.expect(
        [(entry["hex"], entry["name"]) for entry in answer["colours"]]
        == [(hex_text(colour), name) for name, colour in zip(names, colours)],
        "other colours")
    check_pairs(answer, judgement, viewers, complaints)

    keys = [name for name, _ in viewers]
    found = {tuple(finding["colours"]):
             {keys.index((entry["deficiency"], entry["severity"]))
              for entry in finding["lost_to"]}
             for finding in answer["findings"]}
    complaints.expect(found == expected, f"found {found}, expected {expected}")
    rows = []
    for finding in answer["findings"]:
        if finding["suggestion"]:
            check_suggestion(finding, colours, viewers, judgement, complaints)
        rows.append(describe(finding, names, judgement, keys))
    return complaints, rows


def describe(finding, names, judgement, keys):
    i, j = finding["colours"]
    before, *after = (d for d, _ in judgement.pairs[i, j])
    lost = ", ".join(f"{keys[v][0]} {keys[v][1]}% {after[v]:.1f}"
                     for v in sorted(judgement.lost((i, j))))
    change = finding["suggestion"]
    return (f"{names[i]} / {names[j]}", f"{before:.1f}", lost,
            f"{names[change['colour']]} {change['from']} to {change['to']} "
            f"({change['change_ciede2000']:.1f})" if change else "none")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("tool")
    parser.add_argument("palettes", nargs="+", type=pathlib.Path)
    parser.add_argument("--table", action="store_true")
    options = parser.parse_args()
    failed = 0
    found = 0
    for variant in VARIANTS:
        for path in options.palettes:
            complaints, rows = check_palette(options.tool, path, variant)
            failed += bool(complaints)
            found += len(rows)
            for complaint in complaints[:10]:
                print(f"{path.stem}, {' '.join(variant)}: {complaint}")
            if options.table:
                for row in rows or [("no findings", "", "", "")]:
                    print(" | ".join((path.stem, *variant, *row)))
    print(f"{len(VARIANTS) * len(options.palettes)} verdicts, {found} "
          f"findings, {failed} verdicts wrong")
    if not found:
        print("no finding at all: nothing was tested")
    return 1 if failed or not found else 0


if __name__ == "__main__":
    sys.exit(main())

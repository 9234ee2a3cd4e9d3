"""Measure the picture tool against ImageMagick's -color-matrix.

    pictures.py TOOL_PATH [--rounds N]

On one 12-megapixel picture as JPEG and as PNG, turn by turn in one run: the
processor time of the tool, on encoded values, in linear light and by Brettel
1997, as a ratio to that of `convert -color-matrix`. The goals: at most 1.0 for
encoded values, at most 1.5 for the two others. Then the time that 20 pictures
take with one job and with two (the goal on two idle processors: at least 1.8
times as fast).
"""

import argparse
import os
import resource
import statistics
import subprocess
import tempfile
import time
from pathlib import Path

JUDD_DEUTAN = "0.28 0.72 0  0.28 0.72 0  0 0 1"
WAYS = {"encoded": (), "linear": ("--light", "linear"),
        "Brettel 1997": ("--algorithm", "brettel1997")}


def run(*words):
    subprocess.run([str(word) for word in words], check=True)


def processor_seconds(*words):
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    run(*words)
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def compare(tool, folder, rounds):
    for kind in ("jpg", "png"):
        source = folder / f"source.{kind}"
        times = {name: [] for name in ("ImageMagick", *WAYS)}
        for _ in range(rounds):
            times["ImageMagick"].append(processor_seconds(
                "convert", source, "-color-matrix", JUDD_DEUTAN, "-quality", "95",
                folder / f"im.{kind}"))
            for name, options in WAYS.items():
                times[name].append(processor_seconds(
                    tool, "filter", *options, source, folder / f"out.{kind}"))
        baseline = statistics.median(times["ImageMagick"])
        print(f"{kind}: ImageMagick {baseline:.2f} s")
        for name in WAYS:
            seconds = statistics.median(times[name])
            print(f"{kind}: {name} {seconds:.2f} s, ratio {seconds / baseline:.2f}")


def jobs(tool, folder, rounds):
    inputs = []
    for number in range(20):
        inputs.append(folder / f"{number}.jpg")
        os.link(folder / "source.jpg", inputs[-1])
    walls = {1: [], 2: []}
    for _ in range(rounds):
        for count, seconds in walls.items():
            start = time.monotonic()
            run(tool, "filter", "--jobs", count, "--force", *inputs,
                "--output-dir", folder / "many")
            seconds.append(time.monotonic() - start)
    one, two = (min(seconds) for seconds in walls.values())
    print(f"20 pictures: one job {one:.2f} s, two jobs {two:.2f} s, {one / two:.2f} times as fast")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("tool", metavar="TOOL_PATH")
    parser.add_argument("--rounds", type=int, default=5)
    options = parser.parse_args()
    tool = Path(options.tool).resolve()
    with tempfile.TemporaryDirectory() as directory:
        folder = Path(directory)
        run("convert", "-size", "4000x3000", "-seed", "1", "plasma:fractal", "-attenuate", "0.3",
            "+noise", "Gaussian", "-quality", "92", folder / "source.jpg")
        run("convert", folder / "source.jpg", folder / "source.png")
        compare(tool, folder, options.rounds)
        jobs(tool, folder, 3)


if __name__ == "__main__":
    main()

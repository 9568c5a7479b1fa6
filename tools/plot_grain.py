#!/usr/bin/env python3
"""Draws the pictures of docs/math/grain.md from what the program itself measures.

    tools/plot_grain.py PHOTO [-o FOLDER]

Needs python3-matplotlib and a build (./check or ./run); the numbers come from
build/release/tools/grain_report. FOLDER is docs/images when it is not given.
"""

import argparse
import csv
import pathlib
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
REPORT = ROOT / "build" / "release" / "tools" / "grain_report"
FILMS = ("portra400", "trix400", "velvia50")
STYLES = {"full": "-", "aggregate": "--", "classic": ":"}


def rows(path):
    with open(path, newline="") as table:
        return list(csv.DictReader(table))


def plot_granularity(pyplot, table, path):
    figure, panels = pyplot.subplots(1, 3, figsize=(13, 4), constrained_layout=True)
    for panel, film in zip(panels, FILMS):
        for engine, style in STYLES.items():
            picked = [row for row in table if row["film"] == film and row["engine"] == engine]
            for layer in ("red", "green", "blue") if film != "trix400" else ("green",):
                colour = "0.2" if film == "trix400" else "tab:" + layer
                panel.plot([float(row["net"]) for row in picked], [float(row[layer]) for row in picked],
                           style, color=colour, label=engine if layer == "green" else None)
        panel.axvline(1.0, color="0.8", linewidth=0.8)
        panel.set(title=film, xlabel="density over base", ylabel="sigma through 48 µm", ylim=(0, None))
        panel.grid(alpha=0.3)
        panel.legend()
    figure.savefig(path, dpi=80)


def plot_spectrum(pyplot, table, path):
    figure, panels = pyplot.subplots(1, 3, figsize=(13, 4), constrained_layout=True)
    for panel, film in zip(panels, FILMS):
        picked = [row for row in table if row["film"] == film]
        for engine, pitch in sorted({(row["engine"], row["pitch_um"]) for row in picked}):
            curve = [row for row in picked if (row["engine"], row["pitch_um"]) == (engine, pitch)]
            panel.loglog([float(row["cycles_per_mm"]) for row in curve],
                         [max(float(row["power"]), 1e-12) for row in curve], STYLES[engine],
                         label=f"{engine}, {pitch} µm", linewidth=1.0)
        panel.set(title=film, xlabel="cycles per mm", ylabel="power along a row, mm", ylim=(1e-8, None))
        panel.grid(alpha=0.3)
        panel.legend()
    figure.savefig(path, dpi=80)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("photo")
    parser.add_argument("-o", "--output", type=pathlib.Path, default=ROOT / "docs" / "images")
    arguments = parser.parse_args()
    if not REPORT.exists():
        sys.exit("build first (./check): " + str(REPORT) + " is missing")
    import matplotlib
    matplotlib.use("Agg")
    from matplotlib import pyplot
    with tempfile.TemporaryDirectory() as folder:
        if subprocess.run([REPORT, arguments.photo, folder]).returncode != 0:
            sys.exit(1)
        plot_granularity(pyplot, rows(folder + "/granularity.csv"), arguments.output / "grain_granularity.png")
        plot_spectrum(pyplot, rows(folder + "/spectrum.csv"), arguments.output / "grain_spectrum.png")
        shutil.copy(folder + "/crops.jpg", arguments.output / "grain_crops.jpg")
    print(arguments.output)


if __name__ == "__main__":
    main()

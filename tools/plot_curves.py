#!/usr/bin/env python3
"""Plots the curves of a colour film and a paper, as the program itself computes them.

    tools/plot_curves.py [FILM [PAPER]] [-o PLOT.png]

Needs python3-matplotlib and a build (./check or ./run); the numbers come from build/release/tools/curve_table.
"""

import argparse
import csv
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
TABLE = ROOT / "build" / "release" / "tools" / "curve_table"


def read_table(film, paper):
    run = subprocess.run([TABLE, film, paper], capture_output=True, text=True)
    if run.returncode != 0:
        sys.exit(run.stderr.strip())
    rows = list(csv.DictReader(run.stdout.splitlines()))
    return {key: [float(row[key]) for row in rows] for key in rows[0]}


def plot(table, film, paper, path):
    import matplotlib
    matplotlib.use("Agg")
    from matplotlib import pyplot

    figure, (negative, print_curve, system) = pyplot.subplots(1, 3, figsize=(15, 4.8), constrained_layout=True)
    x = table["log_exposure"]
    for layer, colour in (("r", "tab:red"), ("g", "tab:green"), ("b", "tab:blue")):
        negative.plot(x, table[f"film_{layer}"], colour, label=layer.upper())
        system.plot(x, table[f"print_{layer}"], colour)
    negative.set(title=film, xlabel="log exposure from grey", ylabel="density")
    negative.legend()
    print_curve.plot(x, table["paper"], "k")
    print_curve.set(title=paper, xlabel="log light on the paper", ylabel="density")
    system.set(title=f"a neutral scene on {film} and {paper}", xlabel="log exposure from grey",
               ylabel="print, display-linear")
    system.axhline(0.18, color="0.7", linewidth=0.8)
    for axes in (negative, print_curve, system):
        axes.axvline(0, color="0.7", linewidth=0.8)
        axes.grid(alpha=0.3)
    figure.savefig(path, dpi=100)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("film", nargs="?", default="portra400")
    parser.add_argument("paper", nargs="?", default="color_ra4")
    parser.add_argument("-o", "--output", default="curves.png")
    arguments = parser.parse_args()
    if not TABLE.exists():
        sys.exit("build first (./check): " + str(TABLE) + " is missing")
    plot(read_table(arguments.film, arguments.paper), arguments.film, arguments.paper, arguments.output)
    print(arguments.output)


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
"""Writes the answers that the Gaussian and the resampler are held to.

tests/data/image/gaussian.txt comes from scipy.ndimage (written with SciPy 1.10.1),
tests/data/image/resample.txt from Pillow's resize in mode F (written with Pillow 9.4.0).
A case is a line of words followed by a line of 32-bit floats, each as the hexadecimal of its bits.
The input is not stored: sample() here and testPlane() in the tests make the same exact values.
"""
import pathlib

import numpy as np
from PIL import Image
from scipy import ndimage

OUT = pathlib.Path(__file__).resolve().parent.parent / "tests" / "data" / "image"
MODES = ["nearest", "wrap", "reflect", "constant"]
FILTERS = {"bilinear": Image.Resampling.BILINEAR, "lanczos": Image.Resampling.LANCZOS,
           "box": Image.Resampling.BOX, "bicubic": Image.Resampling.BICUBIC}


def sample(width, height):
    """Multiples of 1/64 from -2 to 14, without order; exact in 32-bit floats."""
    y, x = np.mgrid[0:height, 0:width].astype(np.int64)
    v = (x * 7919 + y * 10473 + x * y * 311 + x * x * 17) % 1021
    return (v / 64.0 - 2.0).astype(np.float32)


def hex_line(values):
    return " ".join(f"{bits:08x}" for bits in np.ascontiguousarray(values, np.float32).view(np.uint32).ravel())


def gaussian_cases():
    """(width, height, sigma along y, sigma along x, truncate)"""
    return [
        (1, 1, 1.0, 1.0, 4.0),
        (5, 3, 3.0, 3.0, 4.0),  # both sides far below the radius
        (33, 1, 1.5, 1.5, 4.0),
        (1, 17, 2.0, 2.0, 4.0),
        (13, 9, 0.3, 0.3, 4.0),
        (17, 16, 0.8, 0.8, 4.0),
        (35, 31, 3.0, 3.0, 4.0),
        (21, 40, 2.2, 0.9, 4.0),
        (19, 11, 1.7, 1.7, 2.5),
        (15, 18, 1.3, 0.0, 4.0),  # along y only
        (15, 18, 0.0, 1.3, 4.0),  # along x only
    ]


def write_gaussian():
    with open(OUT / "gaussian.txt", "w") as file:
        for mode in MODES:
            for w, h, sy, sx, truncate in gaussian_cases():
                out = ndimage.gaussian_filter(sample(w, h), (sy, sx), mode=mode, truncate=truncate)
                file.write(f"{mode} {w} {h} {sy} {sx} {truncate}\n{hex_line(out)}\n")


def resample_cases():
    """(width, height, new width, new height)"""
    return [
        (24, 16, 12, 8),
        (37, 23, 13, 9),
        (40, 33, 10, 8),
        (13, 9, 29, 31),
        (31, 7, 11, 19),  # down along x, up along y
        (18, 21, 18, 5),  # one axis alone
        (18, 21, 7, 21),
        (50, 3, 1, 1),
        (1, 1, 5, 4),
        (2, 3, 9, 2),
    ]


def write_resample():
    with open(OUT / "resample.txt", "w") as file:
        for name, filter_ in FILTERS.items():
            for w, h, ow, oh in resample_cases():
                out = Image.fromarray(sample(w, h), mode="F").resize((ow, oh), resample=filter_)
                file.write(f"{name} {w} {h} {ow} {oh}\n{hex_line(np.asarray(out))}\n")


if __name__ == "__main__":
    OUT.mkdir(parents=True, exist_ok=True)
    write_gaussian()
    write_resample()

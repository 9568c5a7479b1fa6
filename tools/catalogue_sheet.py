#!/usr/bin/env python3
"""Prints one photograph on every film, one negative on every paper, or by every recipe, with names.

    tools/catalogue_sheet.py films PHOTO SHEET.jpg [--long 480] [--columns 8] [-- options of tamlo develop]
    tools/catalogue_sheet.py papers PHOTO SHEET.jpg [...]
    tools/catalogue_sheet.py presets PHOTO SHEET.jpg [...]

Films go on the paper that suits their type, papers take the film that fits them. Materials whose process is
not built yet are marked with a dash. Needs python3-pil and a build (./check or ./run).
"""

import argparse
import json
import pathlib
import subprocess
import sys
import tempfile

from PIL import Image, ImageDraw, ImageFont

ROOT = pathlib.Path(__file__).resolve().parent.parent
TAMLO = ROOT / "build" / "release" / "cli" / "tamlo"
FONT = "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"
MARGIN_PX = 8
NAME_PX = 18
PAPERS = {"bw": "bw_neutral", "slide": "scan_film", "tricolor": "scan_film", "collodion": "bw_neutral",
          "instant": "color_scan", "color": "color_ra4"}


def listing(kind):
    answer = subprocess.run([TAMLO, "list", kind, "--json"], capture_output=True, check=True, text=True)
    return [entry["id"] for entry in json.loads(answer.stdout)]


def profile(kind, name):
    answer = subprocess.run([TAMLO, "show", kind, name], capture_output=True, check=True, text=True)
    return json.loads(answer.stdout)


def film_for(paper):
    """The film type decides what a paper may be given."""
    if paper.get("kind") == "plate":
        return "collodion_wet"
    if paper.get("type") == "reversal_paper" or "slide" == (paper.get("film_types") or [""])[0]:
        return "velvia50"
    if str(paper.get("type")).startswith("bw") or paper.get("process"):
        return "trix400"
    return "portra400"


def choices(kind):
    """The label of every cell and what it is developed with."""
    for name in listing(kind):
        if kind == "films":
            yield name, ["--film", name, "--paper", PAPERS[profile("films", name)["type"]]]
        elif kind == "papers":
            yield name, ["--film", film_for(profile("papers", name)), "--paper", name]
        else:
            yield name, ["--preset", name]


def shortened(label, draw, font, width_px):
    while draw.textlength(label, font=font) > width_px:
        label = label[:-2] + "…"
    return label


def main():
    own, rest = sys.argv[1:], []
    if "--" in own:
        cut = own.index("--")
        own, rest = own[:cut], own[cut + 1:]
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("kind", choices=("films", "papers", "presets"))
    parser.add_argument("photo", type=pathlib.Path)
    parser.add_argument("sheet", type=pathlib.Path)
    parser.add_argument("--long", type=int, default=480, help="long side of a picture, in pixels")
    parser.add_argument("--columns", type=int, default=8)
    parser.add_argument("--quality", type=int, default=82, help="of the JPEG")
    args = parser.parse_args(own)

    cells = []
    with tempfile.TemporaryDirectory() as folder:
        for label, material in choices(args.kind):
            out = pathlib.Path(folder) / f"{label}.png"
            run = subprocess.run(
                [TAMLO, "develop", args.photo, "-o", out, *material, "--long", str(args.long), "--lang", "en",
                 *rest], capture_output=True, text=True)
            if run.returncode != 0:
                sys.exit(run.stderr.strip().splitlines()[-1])
            pending = "can't be drawn yet" in run.stderr
            with Image.open(out) as picture:
                cells.append((("– " if pending else "") + label, picture.convert("RGB")))

    width = max(p.width for _, p in cells) + MARGIN_PX
    height = max(p.height for _, p in cells) + MARGIN_PX + NAME_PX
    rows = -(-len(cells) // args.columns)
    sheet = Image.new("RGB", (width * args.columns + MARGIN_PX, height * rows + MARGIN_PX), "white")
    draw = ImageDraw.Draw(sheet)
    font = ImageFont.truetype(FONT, 13) if pathlib.Path(FONT).exists() else ImageFont.load_default()
    for i, (label, picture) in enumerate(cells):
        x, y = MARGIN_PX + i % args.columns * width, MARGIN_PX + i // args.columns * height
        sheet.paste(picture, (x, y))
        draw.text((x, y + picture.height + 2), shortened(label, draw, font, width - MARGIN_PX), fill="black",
                  font=font)
    sheet.save(args.sheet, quality=args.quality)


if __name__ == "__main__":
    main()

#!/bin/bash
# Develops one photograph on every film, on each of some papers, to see a change across the catalogue.
#   tools/render_all.sh PHOTO FOLDER [PAPER...]        (papers: color_ra4 color_scan bw_neutral)
# Files are FOLDER/FILM-PAPER.jpg, 1024 pixels long. Needs a build (./check or ./run).
set -euo pipefail

if [ $# -lt 2 ]; then
    echo "usage: tools/render_all.sh PHOTO FOLDER [PAPER...]" >&2
    exit 2
fi
tamlo=$(dirname "$(readlink -f "${BASH_SOURCE[0]}")")/../build/release/cli/tamlo
photo=$1
folder=$2
shift 2
[ $# -gt 0 ] || set -- color_ra4 color_scan bw_neutral

"$tamlo" list films | while read -r film _; do
    for paper in "$@"; do
        "$tamlo" develop "$photo" -o "$folder/$film-$paper.jpg" --film "$film" --paper "$paper" --long 1024
    done
done

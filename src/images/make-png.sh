#!/bin/sh
# Makes the PNG images from the SVG drawings: those that are compiled in, 64 pixels, sharp in a tool bar at twice the
# scale, and 128 for the program, and packaging/velmora.png with 256. Needs rsvg-convert (Debian: librsvg2-bin). Run it
# after changing a drawing.
# SPDX-License-Identifier: MIT
set -eu
cd "$(dirname "$0")"
draw() { rsvg-convert --width="$3" --height="$3" --output="$2" "$1"; }
for drawing in *.svg; do
    name=${drawing%.svg}
    size=64
    [ "$name" = program ] && size=128 # a larger one takes long to read at the start
    draw "$drawing" "$name.png" "$size"
done
draw program.svg ../../packaging/velmora.png 256

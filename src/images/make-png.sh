#!/bin/sh
# Makes the PNG images, which are compiled in, from the SVG drawings: 64 pixels, sharp in a tool bar at twice the scale,
# and 256 for the program. Needs rsvg-convert (Debian: librsvg2-bin). Run it after changing a drawing.
# SPDX-License-Identifier: MIT
set -eu
cd "$(dirname "$0")"
for drawing in *.svg; do
    name=${drawing%.svg}
    size=64
    [ "$name" = program ] && size=256
    rsvg-convert --width=$size --height=$size --output="$name.png" "$drawing"
done

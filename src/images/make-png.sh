#!/bin/sh
# Makes the PNG images from the SVG drawings: those that are compiled in, 64 pixels, sharp in a tool bar at twice the
# scale, and 128 for the program; and the icons of the program and of data sheets for the desktop, in packaging/icons.
# Needs rsvg-convert (Debian: librsvg2-bin). Run it after changing a drawing.
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
for size in 16 22 32 48 64 128 256; do
    icons=../../packaging/icons/hicolor/${size}x$size
    mkdir -p "$icons/apps" "$icons/mimetypes"
    draw program.svg "$icons/apps/velmora.png" "$size"
    draw document.svg "$icons/mimetypes/velmora-data-sheet.png" "$size"
done

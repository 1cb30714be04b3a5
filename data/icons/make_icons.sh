#!/bin/sh
# Renders the PNG sizes of the program icon from zkr_muf.svg. Run by hand
# after changing the drawing and commit the PNGs: the build only copies them,
# so building needs no SVG renderer (rsvg-convert is in librsvg2-bin).
set -eu
cd "$(dirname "$0")"
for size in 16 32 48 64 128 256; do
    rsvg-convert --width "$size" --height "$size" zkr_muf.svg --output "zkr_muf-$size.png"
done

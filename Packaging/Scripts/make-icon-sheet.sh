#!/usr/bin/env bash
# Draws all icons on one sheet, at the sizes that panels and menus use, for light and dark themes:
#
#   make-icon-sheet.sh PICTURE.png [MAGNIFICATION]
#
# Needs rsvg-convert (librsvg2-bin) and montage (imagemagick).
set -euo pipefail
sheet=$(realpath "$1")
magnification=${2-1}
cd "$(dirname "$0")/../Icons"

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
tiles=()
for icon in *.svg; do
    for colours in "#363636 #f6f6f6" "#f2f2f2 #2b2b2b"; do
        read -r foreground background <<<"$colours"
        for size in 16 22 24 32 64; do
            tile=$folder/$icon$background$size.png
            # A panel replaces this colour by its own.
            sed "s/#808080/$foreground/" "$icon" | rsvg-convert --width "$size" --height "$size" |
                convert - -background "$background" -gravity center -extent "$((size + 16))x80" \
                    -filter point -resize "$((magnification * 100))%" "$tile"
            tiles+=("$tile")
        done
    done
done
montage "${tiles[@]}" -tile 10x -geometry +0+0 -mode concatenate "$sheet"

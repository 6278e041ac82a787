#!/usr/bin/env bash
# Makes Zephlin.icns from the application's drawing. Needs rsvg-convert (librsvg2-bin) and png2icns
# (icnsutils). A Mac has neither, so the result is kept beside this script.
set -euo pipefail
cd "$(dirname "$0")"

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
for size in 16 32 128 256 512 1024; do
    rsvg-convert --width "$size" --height "$size" --output "$folder/$size.png" \
        ../Icons/com.quorvenel.zephlin.svg
done
png2icns Zephlin.icns "$folder"/*.png

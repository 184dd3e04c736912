#!/usr/bin/env bash
# Renders the application icon (packaging/icons/org.kelv_editor.KELVEditor.svg) to the PNG sizes the
# editor uses as its window icon and installs for desktops that want bitmaps. Run it after changing
# the SVG and commit the PNGs with it; the build itself needs no SVG renderer. Needs rsvg-convert
# (Debian package librsvg2-bin).
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
icons=$root/packaging/icons
for size in 16 24 32 48 64 128 256; do
    rsvg-convert --width "$size" --height "$size" "$icons/org.kelv_editor.KELVEditor.svg" \
        --output "$icons/kelveditor-$size.png"
done
echo "render-icons: PNGs written to $icons"

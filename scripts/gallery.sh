#!/usr/bin/env bash
# Builds and runs the Vandrel gallery: a simulated receiver with every finished control bound to it.
# Installs what is missing first (Debian). With no display it renders offscreen and writes a PNG.
#   scripts/gallery.sh [--screenshot FILE] [gallery options...]
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/deps.sh
cmake -S . -B build -DVANDREL_BUILD_TESTS=OFF >/dev/null
cmake --build build -j"$(nproc)" --target vandrel-gallery
gallery=build/examples/gallery/vandrel-gallery

if [ $# -eq 0 ] && [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    shot="$(pwd)/build/gallery.png"
    echo "No display: rendering the gallery offscreen."
    "$gallery" --screenshot "$shot"
    echo "Screenshot written to $shot"
else
    exec "$gallery" "$@"
fi

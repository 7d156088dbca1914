#!/usr/bin/env bash
# Builds and runs the Vandrel gallery: a simulated receiver with every finished control bound to it.
# Installs what is missing first (Debian). With no display it renders offscreen and writes a PNG.
#   scripts/gallery.sh [--qt6] [--screenshot FILE] [gallery options...]
# --qt6 builds it with Qt 6, in build-qt6/.
set -euo pipefail
cd "$(dirname "$0")/.."

if [ "${1:-}" = "--qt6" ]; then
    shift
    bash scripts/deps.sh --qt6
    build=build-qt6
    cmake -S . -B "$build" -DQT_MAJOR_VERSION=6 >/dev/null
    gallery=$build/examples/gallery/vandrel-gallery-qt6
else
    bash scripts/deps.sh
    build=build
    cmake -S . -B "$build" >/dev/null
    gallery=$build/examples/gallery/vandrel-gallery
fi
cmake --build "$build" -j"$(nproc)" --target vandrel-gallery

if [ $# -eq 0 ] && [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    shot="$(pwd)/$build/gallery.png"
    echo "No display: rendering the gallery offscreen."
    "$gallery" --screenshot "$shot"
    echo "Screenshot written to $shot"
else
    exec "$gallery" "$@"
fi

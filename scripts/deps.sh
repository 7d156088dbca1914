#!/usr/bin/env bash
# Installs the Debian packages Vandrel needs to build, test and run its gallery, when any is missing.
# Sourced by the other scripts; usable on its own: scripts/deps.sh [--fuzz] [extra-package...]
# --fuzz adds what scripts/fuzz.sh needs: clang, its libFuzzer and sanitizer runtimes, llvm-symbolizer.
set -euo pipefail

extra=()
if [ "${1:-}" = "--fuzz" ]; then
    shift
    extra=(clang libclang-rt-14-dev llvm)
fi
packages=(cmake g++ make pkg-config extra-cmake-modules qtbase5-dev qttools5-dev qttools5-dev-tools
          libqt5svg5-dev libgeographiclib-dev "${extra[@]}" "$@")

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    sudo=""
    [ "$(id -u)" -eq 0 ] || sudo="sudo"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

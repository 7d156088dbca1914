#!/usr/bin/env bash
# Installs the Debian packages Vandrel needs to build, test and run its gallery, when any is missing.
# Sourced by the other scripts; usable on its own: scripts/deps.sh [--qt6] [extra-package...]
# With --qt6 it also takes the Qt 6 packages (the Qt 5 ones stay: they are the reference build).
set -euo pipefail

qt6=()
if [ "${1:-}" = "--qt6" ]; then
    shift
    qt6=(qt6-base-dev qt6-tools-dev qt6-tools-dev-tools qt6-l10n-tools qt6-5compat-dev)
fi
packages=(cmake g++ make pkg-config extra-cmake-modules qtbase5-dev qttools5-dev qttools5-dev-tools
          libqt5svg5-dev libgeographiclib-dev "${qt6[@]}" "$@")

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

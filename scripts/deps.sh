#!/usr/bin/env bash
# Installs the Debian packages Vandrel needs to build, test and run its gallery, when any is missing.
# Sourced by the other scripts; usable on its own: scripts/deps.sh [extra-package...]
#   scripts/deps.sh --locale de_DE.UTF-8   generates that locale of the C library when it is missing
set -euo pipefail

sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"

if [ "${1:-}" = "--locale" ]; then
    name="${2:?--locale needs a locale name}"
    # locale -a lists "de_DE.utf8" for "de_DE.UTF-8".
    normalized=$(echo "$name" | sed -E 's/\.UTF-?8$/.utf8/I')
    if ! locale -a 2>/dev/null | grep -qixF "$normalized"; then
        echo "Generating locale $name"
        $sudo localedef -i "${name%%.*}" -f UTF-8 "$name"
    fi
    exit 0
fi

packages=(cmake g++ make pkg-config extra-cmake-modules qtbase5-dev qttools5-dev qttools5-dev-tools
          libqt5svg5-dev libgeographiclib-dev "$@")

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

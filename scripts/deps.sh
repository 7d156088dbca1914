#!/usr/bin/env bash
# Installs the Debian packages Vandrel needs to build, test and run its gallery, when any is missing.
# Sourced by the other scripts; usable on its own: scripts/deps.sh [--qt6] [--fuzz] [--locale L] [extra-package...]
#   --qt6                   also the Qt 6 packages (the Qt 5 ones stay: they are the reference build)
#   --fuzz                  also what scripts/fuzz.sh needs: clang, its libFuzzer and sanitizer runtimes, llvm-symbolizer
#   --locale de_DE.UTF-8    also generates that locale of the C library when it is missing
set -euo pipefail

locale_name=""
more=()
while [ $# -gt 0 ]; do
    case "$1" in
        --qt6) more+=(qt6-base-dev qt6-tools-dev qt6-tools-dev-tools qt6-l10n-tools qt6-5compat-dev); shift ;;
        --fuzz) more+=(clang libclang-rt-14-dev llvm); shift ;;
        --locale) locale_name="${2:?--locale needs a locale name, e.g. de_DE.UTF-8}"; shift 2; more+=(locales) ;;
        *) break ;;
    esac
done

sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"

packages=(cmake g++ make pkg-config extra-cmake-modules qtbase5-dev qttools5-dev qttools5-dev-tools
          libqt5svg5-dev libgeographiclib-dev fonts-dejavu-core "${more[@]}" "$@")

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    $sudo apt-get update -qq
    DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi

if [ -n "$locale_name" ]; then
    # locale -a lists "de_DE.utf8" for "de_DE.UTF-8".
    listed=$(echo "$locale_name" | sed -E 's/\.UTF-?8$/.utf8/I')
    if ! locale -a 2>/dev/null | grep -qixF "$listed"; then
        echo "Generating locale $locale_name"
        $sudo localedef -i "${locale_name%%.*}" -f UTF-8 "$locale_name"
    fi
fi

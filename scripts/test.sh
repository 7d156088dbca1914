#!/usr/bin/env bash
# Builds Vandrel and runs every test. Installs what is missing first (Debian).
#   scripts/test.sh              build in build/, run the suite
#   scripts/test.sh --sanitize   the same in build-asan/ under AddressSanitizer (with leak detection)
#                                and UndefinedBehaviorSanitizer
#   scripts/test.sh --qt6        the same with Qt 6 instead of Qt 5, in build-qt6/ (build-qt6-asan/)
#   scripts/test.sh --locale L   the suite in build/ once more with LC_ALL=L (e.g. de_DE.UTF-8, whose
#                                decimal separator is a comma), generating the locale when it is missing
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)

sanitize=0
qt=5
locale=""
while [ $# -gt 0 ]; do
    case "$1" in
        --sanitize) sanitize=1; shift ;;
        --qt6) qt=6; shift ;;
        --locale) locale="${2:?--locale needs a locale name, e.g. de_DE.UTF-8}"; shift 2 ;;
        *) echo "usage: scripts/test.sh [--sanitize] [--qt6] [--locale L]" >&2; exit 2 ;;
    esac
done

deps=()
suffix=""
if [ $qt -eq 6 ]; then
    deps+=(--qt6)
    suffix=-qt6
fi
[ -z "$locale" ] || deps+=(--locale "$locale")
bash scripts/deps.sh "${deps[@]}"

jobs=$(nproc)
# A compiler cache, when the machine has one, makes a second build of the same sources (another checkout
# included) cheap; paths are taken relative to the checkout so that clones share it.
launcher=()
if command -v ccache >/dev/null; then
    launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    export CCACHE_BASEDIR="$root" CCACHE_NOHASHDIR=1
fi
if [ $sanitize -eq 1 ]; then
    build=build$suffix-asan
    cmake -S . -B "$build" -DQT_MAJOR_VERSION=$qt -DCMAKE_BUILD_TYPE=Debug -DVANDREL_WERROR=ON "${launcher[@]}" \
        -DECM_ENABLE_SANITIZERS='address;undefined' \
        -DCMAKE_CXX_FLAGS="-fno-sanitize-recover=undefined -fno-omit-frame-pointer -O1" >/dev/null
    # Full stacks on malloc so that the suppressions can see which library allocated.
    export ASAN_OPTIONS="detect_leaks=1:fast_unwind_on_malloc=0:strict_string_checks=1:detect_stack_use_after_return=1"
    export LSAN_OPTIONS="suppressions=$root/scripts/lsan.supp:print_suppressions=0"
    export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
else
    build=build$suffix
    # The locale run reuses the normal build; configure only a fresh one.
    [ -n "$locale" ] && [ -f "$build/CMakeCache.txt" ] ||
        cmake -S . -B "$build" -DQT_MAJOR_VERSION=$qt -DVANDREL_WERROR=ON -DVANDREL_BUILD_TESTS=ON "${launcher[@]}" >/dev/null
fi
cmake --build "$build" -j"$jobs"
cd "$build"
if [ -n "$locale" ]; then
    # Qt takes its system locale from these variables, the C library from setlocale() in QApplication.
    export LC_ALL="$locale" LANG="$locale" LANGUAGE=""
    echo "== the suite under LC_ALL=$LC_ALL"
fi
# The long stress run (label "long") belongs to the sanitizer run, where it can catch what touches freed memory.
long=(-LE long)
[ $sanitize -eq 0 ] || long=()
ctest --output-on-failure -j"$jobs" --timeout 900 "${long[@]}"

#!/usr/bin/env bash
# Builds Vandrel and runs every test. Installs what is missing first (Debian).
#   scripts/test.sh              build in build/, run the suite
#   scripts/test.sh --sanitize   the same in build-asan/ under AddressSanitizer (with leak detection)
#                                and UndefinedBehaviorSanitizer
#   scripts/test.sh --locale L   the suite in build/ once more with LC_ALL=L (e.g. de_DE.UTF-8, whose
#                                decimal separator is a comma), generating the locale when it is missing
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)

sanitize=0
locale=""
case "${1:-}" in
    --sanitize) sanitize=1 ;;
    --locale) locale="${2:?--locale needs a locale name, e.g. de_DE.UTF-8}" ;;
esac

if [ -n "$locale" ]; then
    bash scripts/deps.sh --locale "$locale"
else
    bash scripts/deps.sh
fi

jobs=$(nproc)
if [ $sanitize -eq 1 ]; then
    build=build-asan
    cmake -S . -B "$build" -DCMAKE_BUILD_TYPE=Debug -DVANDREL_WERROR=ON \
        -DECM_ENABLE_SANITIZERS='address;undefined' \
        -DCMAKE_CXX_FLAGS="-fno-sanitize-recover=undefined -fno-omit-frame-pointer -O1" >/dev/null
    # Full stacks on malloc so that the suppressions can see which library allocated.
    export ASAN_OPTIONS="detect_leaks=1:fast_unwind_on_malloc=0:strict_string_checks=1:detect_stack_use_after_return=1"
    export LSAN_OPTIONS="suppressions=$root/scripts/lsan.supp:print_suppressions=0"
    export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
else
    build=build
    # The locale run reuses the normal build; configure only a fresh one.
    [ -n "$locale" ] && [ -f "$build/CMakeCache.txt" ] || cmake -S . -B "$build" -DVANDREL_WERROR=ON >/dev/null
fi
cmake --build "$build" -j"$jobs"
cd "$build"
if [ -n "$locale" ]; then
    # Qt takes its system locale from these variables, the C library from setlocale() in QApplication.
    export LC_ALL="$locale" LANG="$locale" LANGUAGE=""
    echo "== the suite under LC_ALL=$LC_ALL"
fi
ctest --output-on-failure -j"$jobs" --timeout 300

#!/usr/bin/env bash
# Builds Vandrel and runs every test. Installs what is missing first (Debian).
#   scripts/test.sh              build in build/, run the suite
#   scripts/test.sh --sanitize   the same in build-asan/ under AddressSanitizer (with leak detection)
#                                and UndefinedBehaviorSanitizer
#   scripts/test.sh --qt6        the same with Qt 6 instead of Qt 5, in build-qt6/ (with --sanitize:
#                                build-qt6-asan/)
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)

sanitize=0
qt=5
for arg in "$@"; do
    case "$arg" in
        --sanitize) sanitize=1 ;;
        --qt6) qt=6 ;;
        *) echo "usage: scripts/test.sh [--sanitize] [--qt6]" >&2; exit 2 ;;
    esac
done

if [ $qt -eq 6 ]; then
    bash scripts/deps.sh --qt6
    suffix=-qt6
else
    bash scripts/deps.sh
    suffix=
fi

jobs=$(nproc)
if [ $sanitize -eq 1 ]; then
    build=build$suffix-asan
    cmake -S . -B "$build" -DQT_MAJOR_VERSION=$qt -DCMAKE_BUILD_TYPE=Debug -DVANDREL_WERROR=ON \
        -DECM_ENABLE_SANITIZERS='address;undefined' \
        -DCMAKE_CXX_FLAGS="-fno-sanitize-recover=undefined -fno-omit-frame-pointer -O1" >/dev/null
    # Full stacks on malloc so that the suppressions can see which library allocated.
    export ASAN_OPTIONS="detect_leaks=1:fast_unwind_on_malloc=0:strict_string_checks=1:detect_stack_use_after_return=1"
    export LSAN_OPTIONS="suppressions=$root/scripts/lsan.supp:print_suppressions=0"
    export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
else
    build=build$suffix
    cmake -S . -B "$build" -DQT_MAJOR_VERSION=$qt -DVANDREL_WERROR=ON -DVANDREL_BUILD_TESTS=ON >/dev/null
fi
cmake --build "$build" -j"$jobs"
cd "$build"
ctest --output-on-failure -j"$jobs" --timeout 300

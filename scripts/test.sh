#!/usr/bin/env bash
# Builds Vandrel and runs every test. Installs what is missing first (Debian).
#   scripts/test.sh              build in build/, run the suite
#   scripts/test.sh --sanitize   the same in build-asan/ under AddressSanitizer (with leak detection)
#                                and UndefinedBehaviorSanitizer
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)

sanitize=0
[ "${1:-}" = "--sanitize" ] && sanitize=1

bash scripts/deps.sh

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
    cmake -S . -B "$build" -DVANDREL_WERROR=ON >/dev/null
fi
cmake --build "$build" -j"$jobs"
cd "$build"
ctest --output-on-failure -j"$jobs" --timeout 300

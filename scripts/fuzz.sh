#!/usr/bin/env bash
# Builds the libFuzzer targets (fuzz/) with clang in build-fuzz/ and runs each for a bounded time,
# starting from a copy of its seed corpus in fuzz/corpus/<target>/ (the repository is not written).
#   scripts/fuzz.sh [seconds-per-target] [target...]      default 60 s, every target
# Inputs that fail are kept in build-fuzz/artifacts/; replay one with build-fuzz/fuzz/fuzz_<target> FILE.
set -euo pipefail
cd "$(dirname "$0")/.."
root=$(pwd)

seconds=${1:-60}
[ $# -gt 0 ] && shift
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
    for dir in fuzz/corpus/*/; do targets+=("$(basename "$dir")"); done
fi

bash scripts/deps.sh --fuzz

launcher=()
if command -v ccache >/dev/null; then
    launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    export CCACHE_BASEDIR="$root" CCACHE_NOHASHDIR=1
fi
CC=clang CXX=clang++ cmake -S . -B build-fuzz -DVANDREL_BUILD_FUZZ=ON -DVANDREL_WERROR=ON \
    -DVANDREL_BUILD_TESTS=OFF -DVANDREL_BUILD_GALLERY=OFF "${launcher[@]}" >/dev/null
cmake --build build-fuzz -j"$(nproc)" --target "${targets[@]/#/fuzz_}"

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
mkdir -p build-fuzz/artifacts
# Leaks are the sanitizer suite's business (scripts/test.sh --sanitize); looked for after each input
# here, they would cost twenty times the speed, Qt's caches making every input look like one.
export ASAN_OPTIONS="detect_leaks=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"

failed=()
for target in "${targets[@]}"; do
    echo "== fuzz_$target, ${seconds} s"
    mkdir -p "$work/$target"
    cp fuzz/corpus/"$target"/* "$work/$target/"
    if ! build-fuzz/fuzz/fuzz_"$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=4096 -max_len=256 \
            -print_final_stats=1 -artifact_prefix="$root/build-fuzz/artifacts/$target-" "$work/$target" \
            2>"$work/$target.log"; then
        failed+=("$target")
        tail -n 40 "$work/$target.log"
    fi
    grep -E '^(#[0-9]+ +DONE|stat::number_of_executed_units|stat::average_exec_per_sec)' "$work/$target.log" || true
done

if [ ${#failed[@]} -gt 0 ]; then
    echo "fuzzing found faults in: ${failed[*]} (inputs in build-fuzz/artifacts/)"
    exit 1
fi
echo "fuzzing: no faults in ${targets[*]}"

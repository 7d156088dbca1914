#!/usr/bin/env bash
# Builds the benchmark in Release (build-bench/) and runs it: Vandrel against the same widgets wired by
# hand (the floor) and against QDataWidgetMapper. Installs what is missing first (Debian).
#   scripts/bench.sh [benchmark flags...]     e.g. --benchmark_filter=create
# The ratios are printed at the end; every run is also written as JSON to build-bench/bench.json.
set -euo pipefail
cd "$(dirname "$0")/.."

bash scripts/deps.sh libbenchmark-dev
launcher=()
if command -v ccache >/dev/null; then
    launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    export CCACHE_BASEDIR="$(pwd)" CCACHE_NOHASHDIR=1
fi
cmake -S . -B build-bench -DCMAKE_BUILD_TYPE=Release -DVANDREL_BUILD_BENCH=ON "${launcher[@]}" >/dev/null
cmake --build build-bench -j"$(nproc)" --target vandrel-bench
QT_QPA_PLATFORM=offscreen build-bench/bench/vandrel-bench --benchmark_out=build-bench/bench.json \
    --benchmark_out_format=json "$@"

#!/usr/bin/env bash
# Runs every benchmark program of a benchmark build, one after the other.
set -euo pipefail
build=${1:-build-bench}
shopt -s nullglob
for program in "$build"/benchmarks/bench_*; do
    [ -f "$program" ] && [ -x "$program" ] || continue
    echo "== $(basename "$program")"
    "$program" --benchmark_repetitions=${BENCH_REPETITIONS:-5} --benchmark_enable_random_interleaving=true \
        --benchmark_report_aggregates_only=true "${@:2}"
done
# The tool, timed from outside against the standard tools it stands beside.
"$(dirname "$0")/bench-tool.sh" "$build"

#!/usr/bin/env bash
# Instructions per call of each operation of bench_settings, counted by callgrind, which stays
# steady on a busy machine. Only what runs inside the benchmark's countedLoop() is counted.
#   scripts/count-settings-instructions.sh [build-bench] [calls]
set -euo pipefail
build=${1:-build-bench}
calls=${2:-50}
program="$build/benchmarks/bench_settings"
out=$(mktemp)
trap 'rm -f "$out"' EXIT

count() {
    valgrind --tool=callgrind --collect-atstart=no --toggle-collect='*countedLoop*' \
        --callgrind-out-file="$out" "$program" --count "$1" "$2" "$calls" >/dev/null 2>&1
    awk '/^(summary|totals):/ { print int($2 / '"$calls"'); exit }' "$out"
}

printf '%-22s %12s %12s\n' operation "20 keys" "2000 keys"
for operation in raw_fresh raw_held settings_lookup simulator_path simulator_path_held \
    synplify_path synplify_path_held file_filter file_filter_held; do
    printf '%-22s %12s %12s\n' "$operation" "$(count "$operation" 20)" "$(count "$operation" 2000)"
done

#!/usr/bin/env bash
# The comparators' figures: sort time as a ratio to the same sort with strcmp in the same run
# (fastest of interleaved repetitions, pinned to one processor), and instructions per comparison
# counted by callgrind on a smaller input.
#   scripts/comparator-figures.sh [build-bench] [repetitions]
set -euo pipefail
build=${1:-build-bench}
repetitions=${2:-5}
program="$build/benchmarks/bench_comparators"
comparators="strcmp strnlen2+strcmp compareAlphaNum compareNameNum comparePinH comparePinV"
pin=()
command -v taskset >/dev/null && pin=(taskset -c "$(($(nproc) - 1))")

ratios() { # set sort min_time
    "${pin[@]}" "$program" --benchmark_filter="^$1/$2/" --benchmark_repetitions="$repetitions" \
        --benchmark_min_time="$3" --benchmark_enable_random_interleaving=true \
        --benchmark_report_aggregates_only=true 2>/dev/null |
        awk -v set="$1" -v sort="$2" '$1 ~ /_min$/ { name = $1; sub("_min$", "", name); sub(".*/", "", name); time[name] = $2 }
            END { for (name in time) printf "%s %s %s %.1f %.2f\n", set, sort, name, time[name], time[name] / time["strcmp"] }'
}

instructions() { # set name function
    local out
    out=$(mktemp)
    local count
    count=$(CORVEKIT_BENCH_SCALE=20 valgrind --tool=callgrind --collect-atstart=no \
        --toggle-collect="$3" --callgrind-out-file="$out" "$program" \
        --benchmark_filter="^$1/sort/$2\$" --benchmark_min_time=0.0001 \
        --benchmark_repetitions=1 2>/dev/null | grep -o 'comparisons=[0-9.]*k' | head -1 | tr -dc '0-9.')
    # The measured loop sorts once and the counting pass once more: two sorts.
    awk -v total="$(awk '/^(summary|totals):/ { print $2; exit }' "$out")" -v count="$count" \
        'BEGIN { printf "%.1f", total / (2 * count * 1000) }'
    rm -f "$out"
}

printf '%-5s %-11s %-16s %10s %6s\n' set sort comparator "time (ms)" ratio
for set in nets pins; do
    minTime=0.1
    [ "$set" = pins ] && minTime=0.3
    for sort in sort stable_sort; do
        ratios "$set" "$sort" "$minTime" | while read -r s o name time ratio; do
            printf '%-5s %-11s %-16s %10s %6s\n' "$s" "$o" "$name" "$time" "$ratio"
        done | sort -k3,3 -s
    done
done

if command -v valgrind >/dev/null; then
    echo
    printf '%-16s %12s %12s\n' comparator "nets instr." "pins instr."
    for name in $comparators; do
        case $name in
        strcmp) function='*::compareStrcmp(char const*, char const*)' filter=strcmp ;;
        strnlen2+strcmp) function='*::compareStrnlenStrcmp(char const*, char const*)' filter='strnlen2\+strcmp' ;;
        *) function="BasePublic::$name(char const*, char const*)" filter=$name ;;
        esac
        printf '%-16s %12s %12s\n' "$name" "$(instructions nets "$filter" "$function")" \
            "$(instructions pins "$filter" "$function")"
    done
fi

#!/usr/bin/env bash
# The corvekit tool as an administrator runs it, timed from outside: one function per
# measurement, each named bench_<what> and printing its figures and the goal it must meet.
#
#   scripts/bench-tool.sh [BUILD_DIR [MEASUREMENT...]]
#
# BUILD_DIR is a build with the tool (default build-bench: `cmake --preset bench -B build-bench
# && cmake --build build-bench --target corvekit_tool`); MEASUREMENT names functions without
# their bench_ prefix, all of them by default. BENCH_REPETITIONS runs (default 3) are made of
# each command and the fastest counts. The script fails when a goal is missed.
set -euo pipefail

# Read the whole file first, so that every function is known, then run the measurements.
if [[ -z ${BENCH_TOOL_DEFINING:-} ]]; then
    BENCH_TOOL_DEFINING=1 source "${BASH_SOURCE[0]}"
    build=${1:-build-bench}
    [[ -x $build/tool/corvekit ]] || { echo "bench-tool: no tool at $build/tool/corvekit" >&2; exit 2; }
    tool=$(realpath "$build/tool/corvekit")
    work=$(mktemp -d)
    trap 'rm -rf "$work"' EXIT
    repetitions=${BENCH_REPETITIONS:-3}
    measurements=("${@:2}")
    if [[ ${#measurements[@]} -eq 0 ]]; then
        mapfile -t measurements < <(declare -F | awk '$3 ~ /^bench_/ { sub(/^bench_/, "", $3); print $3 }')
    fi
    status=0
    for measurement in "${measurements[@]}"; do
        echo "== $measurement"
        "bench_$measurement" || status=1
    done
    exit $status
fi

# CPU seconds (user and system, the children's threads included) of the fastest of
# $repetitions runs of the command; its standard output is dropped.
cpu_seconds() {
    local best="" run seconds
    for ((run = 0; run < repetitions; run++)); do
        seconds=$( { TIMEFORMAT='%U %S'; time "$@" > /dev/null; } 2>&1 | tail -n 1 |
            awk '{ printf "%.3f", $1 + $2 }')
        if [[ -z $best ]] || awk -v a="$seconds" -v b="$best" 'BEGIN { exit !(a < b) }'; then
            best=$seconds
        fi
    done
    echo "$best"
}

# Whether $1 / $2 is at least $3; prints the ratio.
ratio_at_least() {
    awk -v a="$1" -v b="$2" -v goal="$3" 'BEGIN {
        ratio = a / (b > 0 ? b : 0.001); printf "%.2f", ratio; exit !(ratio >= goal) }'
}

# One million hierarchical net names as a synthesised netlist has them: instance paths with
# generate indexes, registers with bit indexes, numbered nets. A fixed seed makes the same file.
net_names() {
    awk -v count="$1" 'BEGIN {
        srand(20261123)
        split("u_soc_top u_cpu_subsys u_core u_alu u_lsu u_fetch u_decode u_regfile " \
              "u_ddr_ctrl u_phy u_axi_xbar u_dma u_eth_mac u_pcie_ep u_fifo_rx u_fifo_tx " \
              "u_uart u_spi_master u_i2c u_timer u_intc u_crc32 u_async_bridge u_cdc_sync " \
              "u_serdes_lane u_pll_wrapper", blocks, " ")
        split("gen_lane gen_ch gen_bank gen_slice g_stage gen_port", generates, " ")
        split("data_q_reg wr_ptr_reg rd_ptr_reg state_reg cnt_reg valid_q addr_o rdata " \
              "wdata_reg mem_reg shift_reg sync_ff credit_cnt tag_q byte_en n_ " \
              "FSM_onehot_state_reg ready_d1_reg", signals, " ")
        for (i = 0; i < count; i++) {
            name = ""
            depth = 3 + int(rand() * 4)
            for (level = 0; level < depth; level++) {
                name = name blocks[1 + int(rand() * 26)]
                if (rand() < 0.25)
                    name = name "/" generates[1 + int(rand() * 6)] "[" int(rand() * 16) "]"
                else if (rand() < 0.33)
                    name = name int(rand() * 8)
                name = name "/"
            }
            signal = signals[1 + int(rand() * 18)]
            name = name signal
            if (signal == "n_")
                name = name int(rand() * 100000)
            else if (rand() < 0.75)
                name = name "[" int(rand() * 64) "]"
            if (rand() < 0.2)
                name = name "_i_" (1 + int(rand() * 9)) "/O"
            print name
        }
    }'
}

# `corvekit sort` of one million net names against `sort -V` (the C locale's version sort, the
# nearest standard tool) on the same file, in CPU time. Goal: at least 2.5 times faster.
bench_sort() {
    local names=$work/nets.txt ours theirs
    net_names 1000000 > "$names"
    ours=$(cpu_seconds "$tool" sort "$names")
    theirs=$(cpu_seconds env LC_ALL=C sort -V "$names")
    echo "corvekit sort: ${ours} s CPU; sort -V: ${theirs} s CPU"
    if ratio=$(ratio_at_least "$theirs" "$ours" 2.5); then
        echo "sort -V / corvekit sort: ${ratio}x (goal: at least 2.5x)"
    else
        echo "sort -V / corvekit sort: ${ratio}x, below the goal of 2.5x" >&2
        return 1
    fi
}

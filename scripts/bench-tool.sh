#!/usr/bin/env bash
# Timings of the corvekit tool on installations generated in a temporary folder, each the mean
# wall-clock time of a number of runs, process start included.
#   scripts/bench-tool.sh [builddir] [runs]
set -euo pipefail
build=${1:-build}
runs=${2:-20}
tool="$build/tool/corvekit"

# Mean milliseconds of one run of the command after the environment words, over $runs runs.
mean_ms() {
    local start end
    start=$(date +%s%N)
    for _ in $(seq "$runs"); do
        env "$@" >/dev/null
    done
    end=$(date +%s%N)
    echo $(((end - start) / runs / 1000000))
}

# settings list over three levels with a system file of 2,000 keys. Goal: under 50 ms.
bench_settings_list() {
    local dir
    dir=$(mktemp -d)
    mkdir -p "$dir/installation/data" "$dir/home/.config/Meravex/OstraneNG" "$dir/project"
    {
        echo '; System defaults'
        echo '[General]'
        for i in $(seq 1000); do echo "KEY_$i=value $i"; done
        echo
        echo '[File_Extension]'
        for i in $(seq 1000); do echo "type$i=ext$i, alt$i"; done
    } >"$dir/installation/data/.setting.ini"
    printf '[General]\nKEY_1=user\nKEY_2=user\n' >"$dir/home/.config/Meravex/OstraneNG/.setting.ini"
    printf '[General]\nKEY_1=project\n[File_Extension]\ntype1=p\n' >"$dir/project/.setting.ini"
    printf 'settings list, 2,000 system keys, 3 levels: %s ms a run (goal: under 50 ms)\n' \
        "$(mean_ms TOOLRTF="$dir/installation" HOME="$dir/home" \
            XDG_CONFIG_HOME="$dir/home/.config" "$tool" settings list --project "$dir/project")"
    rm -rf "$dir"
}

bench_settings_list

#!/usr/bin/env bash
# Runs the corvekit tool against a fresh copy of the sample installation in examples/.
# The tool is placed in the copy's bin/nt64, as a suite tool would be installed, so the install
# root is found from the application's location. HOME is a copy too: the user's real settings
# are neither read nor written.
set -euo pipefail
tool=$(realpath "$1")
demo=$2
source_dir=$(cd "$(dirname "$0")/.." && pwd)

rm -rf "$demo"
mkdir -p "$demo"
demo=$(cd "$demo" && pwd)
cp -r "$source_dir/examples/installation" "$source_dir/examples/home" \
    "$source_dir/examples/project" "$demo/"
cp "$tool" "$demo/installation/bin/nt64/corvekit"

# Prints its arguments as one shell command line that can be pasted as it stands.
quote() {
    local word line=""
    for word in "$@"; do
        if [[ ! $word =~ ^[A-Za-z0-9_./:=,+@%-]+$ ]]; then
            word="'${word//\'/\'\\\'\'}'"
        fi
        line+="${line:+ }$word"
    done
    printf '%s\n' "$line"
}

# The set-up of every command below, printed so that a reader can repeat them by hand.
cd "$demo"
echo "The demo runs in a copy of examples/ with the tool in installation/bin/nt64, and a"
echo "throw-away home. To run the commands below by hand, paste this into a shell first:"
echo
echo "    cd $(quote "$demo")"
echo '    export PATH="$PWD/installation/bin/nt64:$PATH" HOME="$PWD/home" XDG_CONFIG_HOME="$PWD/home/.config"'
echo '    unset TOOLRTF FOUNDRY ZEKPROG_PATH SOLVANE_GROUP_SETTING_FILE TIVORANDEBUG'
export PATH="$demo/installation/bin/nt64:$PATH" HOME="$demo/home" XDG_CONFIG_HOME="$demo/home/.config"
unset TOOLRTF FOUNDRY ZEKPROG_PATH SOLVANE_GROUP_SETTING_FILE TIVORANDEBUG

# Runs the tool with the given arguments; leading NAME=VALUE words set its environment.
run() {
    local assignments=()
    while [[ $# -gt 0 && $1 =~ ^[A-Z_]+= ]]; do
        assignments+=("$1")
        shift
    done
    echo
    echo "\$ $(quote "${assignments[@]}" corvekit "$@")"
    env "${assignments[@]}" corvekit "$@" 2>&1 || echo "(exit status $?)"
}

run doctor --project project
run env --project project/
run settings get DEFAULT_DEVICE_FAMILY --project project/
run settings get MESSAGE_LIMIT --project project --show-scope --show-origin
run settings get MESSAGE_LIMIT --project project --all --show-scope
run settings get SIMULATOR_TYPE --project project/ --json
run settings list --project project --show-scope

# Label keys and their display texts.
run label SHOW_IN
run label display_pref
run label SHOW
run label LOCATE_SITE --json
run label --list
# Versions, typed settings, companion tools and file type filters.
run version
run version --group Solvane --pattern major-minor
run settings get DEFAULT_DEVICE_FAMILY --project project/ --type string
run settings get MESSAGE_LIMIT --project project/ --type int
run settings get DEFAULT_SPEED_GRADE --project project/ --type int
run settings set --user --type int EDITOR_FONT_SIZE 13
run settings get EDITOR_FONT_SIZE --type int
run settings set --project project/ --type list SOURCE_DIRS "rtl, tb"
run settings get SOURCE_DIRS --project project/ --type list --json
run settings unset --project project/ SOURCE_DIRS
run tools --project project/
run tools --defaults --json
run filter vhdl
run filter netlist "Netlists" --project project/
# The tool profiles itself: with ENABLE_GUI_PROFILER=1 the profile report of the subcommand and
# its steps follows on standard error.
run ENABLE_GUI_PROFILER=1 settings get DEFAULT_DEVICE_FAMILY --project project/
# With GUI_PROFILER_TRACE as well, the runs go to a timeline file (the process id before its
# extension) that profile summary sums up and a browser's trace viewer draws.
run ENABLE_GUI_PROFILER=1 GUI_PROFILER_TRACE=timeline.json settings list --project project/
run profile summary timeline.*.json
# Names and pins: a BGA pin list row by row and column by column, net names in natural order,
# and a wildcard pattern with the names it matches as whole names.
run sort --by pinh project/bga-pins.txt
run sort --by pinv project/bga-pins.txt
run sort project/nets.txt
run wildcard 'u_fifo_*/wr_ptr_reg[?]' 'u_fifo_rx/wr_ptr_reg[3]' 'u_fifo_rx/wr_ptr_reg[12]' \
    'u_fifo_tx/wr_ptr_reg[5]' 'u_fifo_rx/rd_ptr_reg[3]'
# Help index queries, against the index of the sample installation.
index=installation/docs/webhelp/eng/helpindex.xml
run helpindex "$index" --check
run helpindex "$index" --list
run helpindex "$index" --tool Spreadsheet
run helpindex "$index" --tool Spreadsheet --view "Port Assignments"
run helpindex "$index" --tool Spreadsheet --whatsthis "Port Assignments"
run helpindex "$index" --tool Spreadsheet --dialog Options --text
run helpindex "$index" --tool Spreadsheet --dialog Options --tooltip "Show Defaults" --json
run helpindex "$index" --tool "Netlist Analyzer" --dialog Replace

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

run() {
    echo
    echo "\$ corvekit $*"
    env -u TOOLRTF -u FOUNDRY -u ZEKPROG_PATH -u SOLVANE_GROUP_SETTING_FILE -u TIVORANDEBUG \
        HOME="$demo/home" XDG_CONFIG_HOME="$demo/home/.config" \
        "$demo/installation/bin/nt64/corvekit" "$@" || echo "(exit status $?)"
}

cd "$demo"
run env --project "$demo/project/"
run settings get DEFAULT_DEVICE_FAMILY --project "$demo/project/"
run settings get MESSAGE_LIMIT --project "$demo/project/"
run settings get SIMULATOR_TYPE --project "$demo/project/" --json

# Help index queries, against the index of the sample installation.
index=installation/docs/webhelp/eng/helpindex.xml
run help "$index" --check
run help "$index" --tool Spreadsheet
run help "$index" --tool Spreadsheet --view "Port Assignments"
run help "$index" --tool Spreadsheet --whatsthis "Port Assignments"
run help "$index" --tool Spreadsheet --dialog Options --text
run help "$index" --tool Spreadsheet --dialog Options --tooltip "Show Defaults" --json
run help "$index" --tool "Netlist Analyzer" --dialog Replace

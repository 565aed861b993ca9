#!/usr/bin/env bash
# The ABI guard of libcorvekit.
#   abi.sh baseline BUILD_DIR   writes the ABI of the built library to abi/<soname>.abi
#   abi.sh check BUILD_DIR      compares the built library with that file and fails on any
#                               change other than an added symbol
# The baseline is named after the library's soname, so a new SOVERSION needs a new baseline.
set -euo pipefail
mode=$1
build_dir=$2
source_dir=$(cd "$(dirname "$0")/.." && pwd)

library=$(realpath "$build_dir/corvekit/libcorvekit.so")
soname=$(objdump -p "$library" | awk '$1 == "SONAME" { print $2 }')
baseline=$source_dir/abi/$soname.abi

# No build paths in the file: the same sources give the same baseline in any checkout.
abidw_flags=(--no-corpus-path --no-comp-dir-path --no-show-locs --type-id-style hash)
# The private interface for the tool is no part of the ABI.
suppressions=(--suppressions "$source_dir/abi/private.suppr")

case $mode in
baseline)
    mkdir -p "$source_dir/abi"
    find "$source_dir/abi" -name '*.abi' -delete
    abidw "${abidw_flags[@]}" "${suppressions[@]}" --out-file "$baseline" "$library"
    # Source file names relative to the checkout, which abidw keeps absolute.
    sed -i "s|path='$source_dir/|path='|" "$baseline"
    echo "ABI baseline written to ${baseline#"$source_dir"/}; commit it with the change."
    ;;
check)
    if [ ! -f "$baseline" ]; then
        echo "abi-check: no baseline for $soname in abi/." >&2
        echo "A new SOVERSION starts a new baseline: run 'make abi-baseline' and commit it." >&2
        exit 1
    fi
    status=0
    abidiff --no-added-syms "${suppressions[@]}" "$baseline" "$library" || status=$?
    if [ "$status" -ne 0 ]; then
        # abidiff's status is a bit set: 1 error, 2 usage, 4 a change, 8 an incompatible change.
        if [ $((status & 3)) -ne 0 ]; then
            echo "abi-check: abidiff failed (status $status)." >&2
        else
            echo "abi-check: the ABI of $soname differs from abi/$soname.abi (see above)." >&2
            echo "An incompatible change needs a new SOVERSION; a deliberate compatible one," >&2
            echo "a new baseline: 'make abi-baseline', then commit abi/. See docs/release.md." >&2
        fi
        exit 1
    fi
    echo "abi-check: $soname keeps the ABI of abi/$soname.abi (added symbols aside)."
    ;;
*)
    echo "usage: $0 baseline|check BUILD_DIR" >&2
    exit 2
    ;;
esac

#!/usr/bin/env bash
# Checks the Debian packages of a build directory: lintian must report no error, and a consumer
# must build and run against the packages unpacked into a scratch root, through find_package and
# through pkg-config.
set -euo pipefail
build_dir=$(realpath "$1")
source_dir=$(cd "$(dirname "$0")/.." && pwd)
package_tests=$source_dir/env/tools/basetool/corvekit/tests/package

shopt -s nullglob
debs=("$build_dir"/*.deb)
if [ ${#debs[@]} -ne 3 ]; then
    echo "test-package: expected 3 packages in $build_dir, found ${#debs[@]}" >&2
    exit 1
fi

echo "lintian ${debs[*]##*/}"
lintian --fail-on error --tag-display-limit 0 "${debs[@]}"

debs_list=$(IFS=';'; echo "${debs[*]}")
cmake -DDEBS="$debs_list" -DWORK_DIR="$build_dir/package-test" \
    -DCONSUMER_DIR="$package_tests/consumer" -DCXX_COMPILER="$(command -v c++)" \
    -P "$package_tests/consumer_test.cmake"
echo "test-package: the consumer builds and runs against the unpacked packages."

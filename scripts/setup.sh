#!/usr/bin/env bash
# Installs the Debian packages that building, testing, benchmarking, fuzzing, packaging and the
# ABI check of corvekit need.
# Only missing packages are installed; a machine that has them all is left untouched.
set -euo pipefail

packages=(
    build-essential cmake ninja-build pkg-config
    qt6-base-dev
    libbenchmark-dev
    clang libclang-rt-dev
    clang-format clang-tidy
    valgrind
    dpkg-dev fakeroot file lintian
    abigail-tools
)

missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
        missing+=("$package")
    fi
done

if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

echo "Installing: ${missing[*]}"
sudo=""
if [ "$(id -u)" -ne 0 ]; then
    sudo="sudo"
fi
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"

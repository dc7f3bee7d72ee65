#!/usr/bin/env bash
# Installs the Debian packages the build needs, when they are missing, and configures the build
# tree. Safe to run again: it installs nothing that is there and CMake rebuilds only what changed.
set -euo pipefail

top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${OSSA_BUILD_DIR:-$top/build}"
build_type="${OSSA_BUILD_TYPE:-RelWithDebInfo}"

packages=(cmake ninja-build g++ qtbase5-dev qtbase5-dev-tools libqt5svg5-dev clang-format xvfb xdotool
    python3-dev pybind11-dev)
missing=()
for package in "${packages[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q "install ok installed"; then
        missing+=("$package")
    fi
done
if [ "${#missing[@]}" -gt 0 ]; then
    echo "Installing missing packages: ${missing[*]}"
    sudo_cmd=()
    if [ "$(id -u)" -ne 0 ]; then
        sudo_cmd=(sudo)
    fi
    "${sudo_cmd[@]}" apt-get update -qq
    DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends \
        "${missing[@]}"
fi

if [ ! -f "$build/build.ninja" ]; then
    cmake -S "$top" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE="$build_type" "$@"
fi

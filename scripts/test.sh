#!/usr/bin/env bash
# Sets up, builds everything with warnings as errors and runs the whole test suite through CTest.
set -euo pipefail

top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${OSSA_BUILD_DIR:-$top/build}"
"$top/scripts/setup.sh"
cmake --build "$build"
cd "$build"
ctest --output-on-failure -j"$(nproc)" "$@"

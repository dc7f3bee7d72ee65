#!/usr/bin/env bash
# Builds the benchmark program in Release and runs it offscreen; arguments go to the program
# (for example --sizes 1000,5000 --runs 5 --graph artist).
set -euo pipefail
top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="$top/build-release"
OSSA_BUILD_DIR="$build" OSSA_BUILD_TYPE=Release "$top/scripts/setup.sh" -DOSS_BUILD_BENCHMARKS=ON
cmake -S "$top" -B "$build" -DOSS_BUILD_BENCHMARKS=ON > /dev/null
cmake --build "$build" --target ossa-bench ossa-bench-model
QT_QPA_PLATFORM=offscreen "$build/bin/ossa-bench-model"
QT_QPA_PLATFORM=offscreen "$build/bin/ossa-bench" "$@"

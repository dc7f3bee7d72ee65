#!/usr/bin/env bash
# Builds the whole project (libraries, plug-in, shell and tests) with AddressSanitizer and
# UndefinedBehaviorSanitizer in a build tree of its own, runs every test and the shell headless on
# the bundled sample, and fails on the first finding (leaks included, except the ones inside Qt,
# fontconfig and glib listed in scripts/sanitize/lsan.supp).
set -euo pipefail

top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${OSSA_SANITIZE_BUILD_DIR:-$top/build-sanitize}"

OSSA_BUILD_DIR="$build" OSSA_BUILD_TYPE=RelWithDebInfo "$top/scripts/setup.sh" \
    -DOSS_SANITIZE=address,undefined "$@"
cmake --build "$build"

export ASAN_OPTIONS="detect_leaks=1:abort_on_error=0:halt_on_error=1:strict_string_checks=1:detect_stack_use_after_return=1"
export LSAN_OPTIONS="suppressions=$top/scripts/sanitize/lsan.supp:print_suppressions=0"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"

started=$(date +%s)
(cd "$build" && ctest --output-on-failure -j"$(nproc)")
QT_QPA_PLATFORM=offscreen "$build/bin/ossa" --settings-dir "$(mktemp -d)" \
    --screenshot "$build/sanitized-sample.png" --quit "$top/resources/projects/sample.ossa"
echo "Sanitized run: every test and the shell on the sample passed with no finding" \
    "($(($(date +%s) - started)) s after the build)"

#!/usr/bin/env bash
# Runs the undo model test with long sequences: 10,000 seeded edits of every kind (or the count
# given), undone completely and redone completely, comparing every network's dump at every
# 100th step and at the ends, and prints the time of undoing and redoing everything against
# doing it. Usage: scripts/undo-model.sh [steps] [seed]
set -euo pipefail

top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${OSSA_BUILD_DIR:-$top/build}"
"$top/scripts/setup.sh"
cmake --build "$build" --target tst_UndoModel

export QT_QPA_PLATFORM=offscreen
export OSS_UNDO_STEPS="${1:-10000}"
export OSS_UNDO_CHECKPOINT="${OSS_UNDO_CHECKPOINT:-100}"
if [ -n "${2:-}" ]; then
    export OSS_UNDO_SEED="$2"
fi
"$build/bin/tst_UndoModel" everyStepUndoesAndRedoesExactly

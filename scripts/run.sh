#!/usr/bin/env bash
# Sets up, builds and starts the host shell on its bundled sample project. Without a display the
# shell runs offscreen, writes a picture of its main window and prints the picture's path.
set -euo pipefail

top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
build="${OSSA_BUILD_DIR:-$top/build}"
"$top/scripts/setup.sh"
cmake --build "$build" --target ossa OssShaderNetworkNodeGraphViewContext

args=()
sample="$top/resources/projects/sample.ossa"
if [ -f "$sample" ]; then
    args+=("$sample")
fi
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
    export QT_QPA_PLATFORM="${QT_QPA_PLATFORM:-offscreen}"
    args+=(--screenshot "${OSSA_SCREENSHOT:-$top/build/ossa-nodegraph.png}")
fi
exec "$build/bin/ossa" "${args[@]}" "$@"

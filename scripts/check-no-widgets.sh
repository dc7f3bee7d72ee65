#!/usr/bin/env bash
# Fails when one of the given binaries loads Qt's widgets library, directly or through the
# libraries it links (as the dynamic loader resolves them).
set -euo pipefail
if [ "$#" -eq 0 ]; then
    echo "usage: $0 <binary>..." >&2
    exit 2
fi
if ! command -v ldd >/dev/null; then
    echo "ldd is needed to list the libraries a binary loads" >&2
    exit 2
fi
failed=0
for file in "$@"; do
    if [ ! -f "$file" ]; then
        echo "missing: $file" >&2
        failed=1
        continue
    fi
    if ! libraries="$(ldd "$file" 2>&1)"; then
        echo "cannot list the libraries of $file: $libraries" >&2
        failed=1
        continue
    fi
    if widgets="$(grep -i 'libQt5Widgets' <<<"$libraries")"; then
        echo "$(basename "$file") loads QtWidgets: $(awk '{print $3}' <<<"$widgets")" >&2
        failed=1
    fi
done
if [ "$failed" -ne 0 ]; then
    exit 1
fi
echo "$# binaries load no QtWidgets"

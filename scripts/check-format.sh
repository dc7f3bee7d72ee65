#!/usr/bin/env bash
# Fails when a C++ source of the project differs from what .clang-format makes of it.
set -euo pipefail
top="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"
cd "$top"
clang_format="${CLANG_FORMAT:-clang-format}"
mapfile -t files < <(find host OssShaderNetworkNodeGraphViewContext tests bench \
    \( -name '*.cpp' -o -name '*.h' \) -type f 2>/dev/null | sort)
if [ "${1:-}" = "--fix" ]; then
    "$clang_format" -i "${files[@]}"
    exit 0
fi
"$clang_format" --dry-run --Werror "${files[@]}"
echo "${#files[@]} files are formatted"

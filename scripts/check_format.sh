#!/usr/bin/env bash
# Says which C++ files are not formatted as .clang-format has it.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

if git rev-parse --is-inside-work-tree >/dev/null 2>&1; then
    list() { git ls-files -z -- '*.h' '*.cpp'; }
else
    list() { find . -path ./build -prune -o \( -name '*.h' -o -name '*.cpp' \) -print0; }
fi
[ "$(list | tr -dc '\0' | wc -c)" -gt 0 ] || { echo "check_format.sh: there is no C++ file here" >&2; exit 1; }
list | xargs -0 clang-format --dry-run -Werror

#!/usr/bin/env bash
# Compares the C++ code in the README with the example that is built and run.
#   usage: check_readme.sh SOURCE_DIR
set -euo pipefail
cd "$1"
shown=$(sed -n '/^```cpp$/,/^```$/p' README.md | grep -v '^```')
if ! diff -u --label examples/render_and_cut.cpp --label README.md examples/render_and_cut.cpp - <<<"$shown"; then
    echo "The README and examples/render_and_cut.cpp differ; make them the same." >&2
    exit 1
fi

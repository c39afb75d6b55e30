#!/usr/bin/env bash
# Compares the C++ code in the README with the example that is built and run.
#   usage: check_readme.sh SOURCE_DIR
set -euo pipefail
cd "$1"
shown=$(sed -n '/^```cpp$/,/^```$/p' README.md | grep -v '^```')
if ! diff -u --label examples/mpr_planes.cpp --label README.md examples/mpr_planes.cpp - <<<"$shown"; then
    echo "The README and examples/mpr_planes.cpp differ; make them the same." >&2
    exit 1
fi

#!/usr/bin/env bash
# Compares the exported functions, types and tables of libcorvane with those of the committed baseline.
#   usage: check_interface.sh SOURCE_DIR GENERATOR COMPILER
#          check_interface.sh --write SOURCE_DIR GENERATOR COMPILER   brings the baseline up to date
set -euo pipefail
write=
[ "${1:-}" = --write ] && { write=1; shift; }
source=$(cd "$1" && pwd) generator=$2 compiler=$3
baseline=$source/tests/package/interface/libcorvane.abi
build=$(mktemp -d)
trap 'rm -rf "$build"' EXIT

# Types are read from debugging information, which the library that is delivered does not carry.
cmake -S "$source" -B "$build" -G "$generator" --log-level=ERROR -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_BUILD_TYPE=None \
    -DCMAKE_CXX_FLAGS="-g -O1 -ffile-prefix-map=$source/=" -DCORVANE_BUILD_APPS=OFF -DCORVANE_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" --parallel 2 --target corvane >/dev/null
found=$build/found.abi
abidw --exported-interfaces-only --headers-dir "$source/include" --drop-private-types --drop-undefined-syms \
    --no-elf-needed --no-write-default-sizes --type-id-style hash --no-corpus-path --no-comp-dir-path --no-show-locs \
    --no-parameter-names --out-file "$found" "$build/libcorvane.so"
if [ -n "$write" ]; then
    cp "$found" "$baseline"
elif ! abidiff "$baseline" "$found"; then
    echo "The binary interface changed: hosts would have to be built again. If that is meant, run:" \
        "tests/package/check_interface.sh --write . $generator $compiler" >&2
    exit 1
fi

#!/usr/bin/env bash
# Builds the library without programs, tests and benchmarks, and shows that this asks for no other package.
#   usage: check_library_alone.sh SOURCE_DIR GENERATOR COMPILER
set -euo pipefail
source=$1 generator=$2 compiler=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail()
{
    cat "$work/log"
    echo "check_library_alone.sh: $1" >&2
    exit 1
}

cmake -S "$source" -B "$work/build" -G "$generator" -DCMAKE_CXX_COMPILER="$compiler" -DCORVANE_BUILD_APPS=OFF \
    -DCORVANE_BUILD_TESTS=OFF -DCORVANE_BUILD_BENCH=OFF --trace-format=json-v1 --trace-redirect="$work/trace" \
    >"$work/log" 2>&1 || fail "the library alone cannot be configured"

# Commands of this project (not of CMake's own modules) that look for something outside it.
searches=$(grep -F "\"file\":\"$source/" "$work/trace" |
    grep -iE '"cmd":"(find_[a-z]+|pkg_[a-z_]+|fetchcontent_[a-z]+|externalproject_add)"' || true)
grep -q '"cmd":"add_library"' "$work/trace" || fail "the trace is not that of the library"
if foreign=$(grep -vE '"args":\["Threads"' <<<"$searches") && [ -n "$foreign" ]; then
    fail "the library alone looks for more than threads: $foreign"
fi

cmake --build "$work/build" >"$work/log" 2>&1 || fail "the library alone does not build"
for library in corvane corvane_c trevik; do
    [ -n "$(find "$work/build" -name "lib$library.so")" ] || fail "lib$library.so was not built"
done

#!/usr/bin/env bash
# Builds and runs a program that takes the library as a subproject, and shows that nothing else comes along.
#   usage: check_subproject.sh SOURCE_DIR GENERATOR COMPILER
set -euo pipefail
source=$1 generator=$2 compiler=$3
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail()
{
    cat "$work/log"
    echo "check_subproject.sh: $1" >&2
    exit 1
}

cp "$source/tests/package/consumer/consumer.cpp" "$work"
cat >"$work/CMakeLists.txt" <<EOF
cmake_minimum_required(VERSION 3.22)
project(host_program LANGUAGES CXX)
add_subdirectory("$source" corvane)
add_executable(consumer consumer.cpp)
target_link_libraries(consumer PRIVATE corvane::corvane)
EOF
cmake -S "$work" -B "$work/build" -G "$generator" -DCMAKE_CXX_COMPILER="$compiler" >"$work/log" 2>&1 ||
    fail "the subproject cannot be configured"
for option in CORVANE_BUILD_APPS CORVANE_BUILD_TESTS CORVANE_BUILD_BENCH CORVANE_INSTALL; do
    grep -q "^$option:BOOL=OFF$" "$work/build/CMakeCache.txt" || fail "$option is not off in a subproject"
done
cmake --build "$work/build" >"$work/log" 2>&1 || fail "the program does not build with the subproject"
"$work/build/consumer" || fail "the program computes a wrong value"
cmake --install "$work/build" --prefix "$work/prefix" >"$work/log" 2>&1 || fail "the program's installation fails"
[ -z "$(find "$work/prefix" -type f 2>/dev/null)" ] || fail "the subproject installs files unasked"

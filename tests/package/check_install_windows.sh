#!/usr/bin/env bash
# Installs a build for Windows, moves the prefix, and builds and runs programs against it, found by CMake.
#   usage: check_install_windows.sh BUILD_DIR SOURCE_DIR VERSION GENERATOR TOOLCHAIN RUN...
#   RUN  the command that runs a program for Windows
set -euo pipefail
build=$1 source=$2 version=$3 generator=$4 toolchain=$5
shift 5
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail()
{
    echo "check_install_windows.sh: $1" >&2
    exit 1
}

cmake --install "$build" --prefix "$work/first" >"$work/log" || { cat "$work/log"; fail "the installation failed"; }
prefix=$work/moved
mv "$work/first" "$prefix"
cp -r "$source/tests/package/consumer" "$work/consumer"
cmake -S "$work/consumer" -B "$work/build" -G "$generator" -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
    -DCMAKE_EXE_LINKER_FLAGS=-static -Dcorvane_DIR="$prefix/lib/cmake/corvane" -DWANTED_VERSION="${version%.*}" \
    >"$work/log" || { cat "$work/log"; fail "find_package does not find the library"; }
cmake --build "$work/build" >"$work/log" || { cat "$work/log"; fail "the programs do not build"; }

# Windows looks for DLLs in the program's own folder.
for program in consumer gpu_consumer; do
    mv "$work/build/$program.exe" "$prefix/bin"
    "$@" "$prefix/bin/$program.exe" || fail "$program computes a wrong value or does not start"
done

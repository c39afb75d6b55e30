#!/usr/bin/env bash
# Makes the zip file of a build for Windows, unpacks it, and builds and runs programs against it, found by CMake.
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

(cd "$build" && cpack -G ZIP -B "$work/made") >"$work/log" 2>&1 || { cat "$work/log"; fail "cpack fails"; }
name=corvane-$version-windows-x86_64
[ -f "$work/made/$name.zip" ] || fail "there is no $name.zip"
(cd "$work" && cmake -E tar xf "made/$name.zip") || fail "the zip file is broken"
prefix=$work/$name
"$@" "$prefix/bin/corvane_verify.exe" >"$work/log" || { tail "$work/log"; fail "the pictures are not those of Linux"; }
grep -q 'every picture is what it must be' "$work/log" || fail "corvane_verify says nothing"
cp -r "$source/tests/package/consumer" "$work/consumer"
cmake -S "$work/consumer" -B "$work/build" -G "$generator" -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
    -DCMAKE_EXE_LINKER_FLAGS=-static -Dcorvane_DIR="$prefix/lib/cmake/corvane" -DWANTED_VERSION="${version%.*}" \
    >"$work/log" || { cat "$work/log"; fail "find_package does not find the library"; }
cmake --build "$work/build" >"$work/log" || { cat "$work/log"; fail "the programs do not build"; }

# Windows looks for DLLs in the program's own folder.
for program in consumer c_consumer gpu_consumer; do
    mv "$work/build/$program.exe" "$prefix/bin"
    "$@" "$prefix/bin/$program.exe" || fail "$program computes a wrong value or does not start"
done

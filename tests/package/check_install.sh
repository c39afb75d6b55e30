#!/usr/bin/env bash
# Installs a build, moves the prefix, and builds and runs programs against it: found by CMake and by pkg-config.
#   usage: check_install.sh BUILD_DIR SOURCE_DIR VERSION GENERATOR COMPILER
set -euo pipefail
build=$1 source=$2 version=$3 generator=$4 compiler=$5
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset LD_LIBRARY_PATH CMAKE_PREFIX_PATH PKG_CONFIG_PATH

fail()
{
    echo "check_install.sh: $1" >&2
    exit 1
}

cmake --install "$build" --prefix "$work/first" >"$work/log" || { cat "$work/log"; fail "the installation failed"; }
prefix=$work/moved
mv "$work/first" "$prefix"

for file in include/corvane/Corvane.h include/trevik/Cuda3D.h lib/libcorvane.so lib/libcorvane.so."$version" \
    include/corvane/corvane_c.h lib/libcorvane_c.so lib/libcorvane_c.so."$version" lib/pkgconfig/corvane_c.pc lib/libtrevik.so lib/cmake/corvane/corvaneConfig.cmake lib/pkgconfig/corvane.pc share/doc/corvane/LICENSE; do
    [ -e "$prefix/$file" ] || fail "$file is not installed"
done
[ "$(cd "$source/include" && find . -name '*.h' | sort)" = "$(cd "$prefix/include" && find . -type f | sort)" ] ||
    fail "the installed headers are not those of include/"
if grep -rIlF -e "$work/first" -e "$source" -e "$build" "$prefix/lib/cmake" "$prefix/lib/pkgconfig"; then
    fail "these files name the folder in which they were made"
fi

# The source folder must not be where the consumer finds anything.
cp -r "$source/tests/package/consumer" "$work/consumer"
cmake -S "$work/consumer" -B "$work/build" -G "$generator" -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_PREFIX_PATH="$prefix" -DWANTED_VERSION="${version%.*}" >"$work/log" ||
    { cat "$work/log"; fail "find_package does not find the library"; }
grep -q "^corvane_DIR:PATH=$prefix/" "$work/build/CMakeCache.txt" || fail "find_package found another installation"
cmake --build "$work/build" >"$work/log" || { cat "$work/log"; fail "the program does not build with CMake"; }
"$work/build/consumer" || fail "the program built with CMake computes a wrong value"
"$work/build/c_consumer" || fail "the program in C built with CMake computes a wrong value"
"$work/build/gpu_consumer" || fail "the GPU library finds a GPU that it cannot know"

export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
[ "$(pkg-config --modversion corvane)" = "$version" ] || fail "pkg-config does not give version $version"
read -r -a flags <<<"$(pkg-config --cflags --libs corvane)"
"$compiler" -std=c++17 -Wall -Wextra -Werror "$work/consumer/consumer.cpp" -o "$work/by_hand" "${flags[@]}" \
    -Wl,-rpath,"$prefix/lib" || fail "the program does not build with pkg-config"
"$work/by_hand" || fail "the program built with pkg-config computes a wrong value"

read -r -a flags <<<"$(pkg-config --cflags --libs corvane_c)"
cc -std=c99 -pedantic -Wall -Wextra -Werror "$work/consumer/c_consumer.c" -o "$work/c_by_hand" "${flags[@]}" \
    -Wl,-rpath,"$prefix/lib" || fail "the program in C does not build with pkg-config"
"$work/c_by_hand" || fail "the program in C built with pkg-config computes a wrong value"

if grep -q '^CORVANE_BUILD_APPS:BOOL=ON' "$build/CMakeCache.txt"; then
    [ "$("$prefix/bin/corvane" --version | grep -oF "$version")" = "$version" ] ||
        fail "the installed program does not start or does not say version $version"
fi

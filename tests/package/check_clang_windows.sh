#!/usr/bin/env bash
# Compiles every source of the library with clang++ for Microsoft's binary interface, as clang-cl would, without a
# warning. The headers of MinGW stand in for Microsoft's.
#   usage: check_clang_windows.sh SOURCE_DIR HEADERS...
#   HEADERS  the folders in which MinGW's compiler looks for headers
set -uo pipefail
cd "$1" || exit 1
shift
status=0 count=0

# MinGW's headers want to be seen by GCC and to find the word __declspec as a macro.
options=(--target=x86_64-pc-windows-msvc -fms-extensions -fno-ms-compatibility -fexceptions -fcxx-exceptions
    -U_MSC_VER -D__MINGW32__ -D__MINGW64__ -D__declspec=__declspec -D__GNUC__=12 -D__GNUC_MINOR__=2
    -Wno-builtin-macro-redefined -Wno-macro-redefined
    -std=c++20 -Wall -Wextra -Werror -ffp-contract=off -fsyntax-only
    -I. -Iinclude -DCORVANE_BUILDING -DTREVIK_BUILDING -DNOMINMAX
    -DCORVANE_C_BUILDING -DCORVANE_VERSION=\"0\" -DCORVANE_VERSION_MAJOR=0 -DCORVANE_VERSION_MINOR=0 -DCORVANE_VERSION_PATCH=0)
for folder in "$@"; do
    case $folder in
    */gcc/*/include | */gcc/*/include-fixed) ;; # the compiler's own: clang has others
    *) options+=(-isystem "$folder") ;;
    esac
done

compile()
{
    if ! clang++ "${options[@]}" "$@"; then
        echo "clang++ for Windows does not compile: $*" >&2
        status=1
    fi
    count=$((count + 1))
}

while IFS= read -r source; do
    case $source in
    core/fan_out_posix.cpp) ;; # for other systems
    */kernels/selection.cpp) compile "$source" ;;
    */kernels/*)
        compile -DKERNEL_ISA=base -DKERNEL_LANES=4 "$source"
        compile -DKERNEL_ISA=avx2 -DKERNEL_LANES=8 -mavx2 "$source"
        ;;
    *) compile "$source" ;;
    esac
done < <(find core camera mpr render3d engine3d trevik capi -name '*.cpp' 2>/dev/null | sort)
echo "$count compilations"
[ $count -gt 20 ] || status=1
exit $status

#!/usr/bin/env bash
# Compares how compilers lay out every record and virtual table of the interface with what hosts were built with: by the
# Itanium rules (GCC, Clang, MinGW for 64-bit Linux and Windows) and by Microsoft's.
#   usage: check_layouts.sh SOURCE_DIR itanium|microsoft
#          check_layouts.sh --write SOURCE_DIR itanium|microsoft   brings the description up to date
set -euo pipefail
write=
[ "${1:-}" = --write ] && { write=1; shift; }
here=$1/tests/package/interface rules=$2
case $rules in
itanium) target=x86_64-linux-gnu ;;
microsoft) target=x86_64-pc-windows-msvc ;;
*) echo "check_layouts.sh: itanium or microsoft, not $rules" >&2; exit 2 ;;
esac
found=$(mktemp)
trap 'rm -f "$found"' EXIT

# Only what the interface decides: not how the compiler writes it down for itself.
clang++ --target=$target -std=c++17 -ffreestanding -nostdinc++ -I"$1/include" -Xclang -fdump-record-layouts \
    -Xclang -fdump-vtable-layouts -S -emit-llvm -o /dev/null "$here/probe.cpp" |
    awk '/^\*\*\* Dumping IRgen/ { skipped = 1 } /^\*\*\* Dumping AST|^VFTable|^Vtable|^ *VTable/ { skipped = 0 } !skipped' |
    sed -E 's/[[:space:]]+$//' | cat -s >"$found"
[ -s "$found" ] || { echo "check_layouts.sh: clang++ describes nothing" >&2; exit 1; }
if [ -n "$write" ]; then
    cp "$found" "$here/$rules.txt"
elif ! diff -u --label "interface/$rules.txt" --label "include/" "$here/$rules.txt" "$found"; then
    echo "The binary interface changed: hosts would have to be built again. If that is meant, run:" \
        "tests/package/check_layouts.sh --write . $rules" >&2
    exit 1
fi

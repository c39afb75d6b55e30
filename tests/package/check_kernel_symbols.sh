#!/usr/bin/env bash
# Says which symbols an object file, compiled for one instruction set, defines outside its own namespace. The linker
# may keep such a symbol's copy for everyone, and a machine without that instruction set would stop at it.
#   usage: check_kernel_symbols.sh NAMESPACE OBJECT...
set -euo pipefail
namespace=$1
shift
[ $# -gt 0 ] || { echo "check_kernel_symbols.sh: no object file for $namespace" >&2; exit 1; }

status=0
for object in "$@"; do
    # Local symbols (small letters) are nobody else's; u is unique across the program.
    symbols=$(nm --defined-only --demangle "$object" | sed -nE 's/^[0-9a-f]+ [A-TV-Zuvw] //p')
    [ -n "$symbols" ] || { echo "$object defines nothing" >&2; status=1; }
    foreign=$(grep -vE "^((vtable|typeinfo|typeinfo name|guard variable) for )?$namespace" <<<"$symbols" || true)
    if [ -n "$foreign" ]; then
        printf '%s defines outside %s:\n%s\n' "$object" "$namespace" "$foreign" >&2
        status=1
    fi
done
exit $status

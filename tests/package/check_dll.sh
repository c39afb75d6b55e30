#!/usr/bin/env bash
# Prints what a DLL exports, and compares this and the DLLs that it needs with what is meant to be.
#   usage: check_dll.sh DLL LIST OBJDUMP [NEEDED...]
#   LIST     the names that the library exports on Linux, demangled; see check_exports.sh
#   OBJDUMP  one that reads DLLs
#   NEEDED   DLLs that it may need, those that every Windows has apart
set -euo pipefail
export LC_ALL=C
library=$1 list=$2 objdump=$3
shift 3
status=0

headers=$("$objdump" --private-headers "$library")
exported=$(sed -n '/\[Ordinal\/Name Pointer\] Table/,/^$/s/^\t\[.*\] *//p' <<<"$headers" | c++filt | sort -u)
printf '%s exports %s names:\n%s\n' "${library##*/}" "$(grep -c . <<<"$exported")" "$exported"

# A type's name, which only its own table refers to, stays inside.
if ! diff --label "$list" --label "exported by $library" -u \
    <(grep -v '^typeinfo name for ' "$list") <(echo "$exported"); then
    echo "The DLL does not export what the library exports on Linux." >&2
    status=1
fi

while IFS= read -r needed; do
    case " kernel32.dll msvcrt.dll $* " in
    *" ${needed,,} "*) ;;
    *)
        echo "$library needs $needed" >&2
        status=1
        ;;
    esac
done < <(sed -nE 's/^[[:space:]]*DLL Name: //p' <<<"$headers")
exit $status

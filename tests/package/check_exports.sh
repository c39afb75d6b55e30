#!/usr/bin/env bash
# Compares what a library exports, needs and is called with what is meant to be.
#   usage: check_exports.sh LIBRARY LIST SONAME [NEEDED...]
#   LIST    the exported names, demangled, one per line, sorted in the C locale; `check_exports.sh --list LIBRARY`
#           prints one
#   NEEDED  libraries without version that it may need, the compiler's own runtime apart
set -euo pipefail
export LC_ALL=C

exportsOf()
{
    nm --dynamic --defined-only --demangle "$1" | cut -d ' ' -f 3- | sort -u
}

if [ "$1" = --list ]; then
    exportsOf "$2"
    exit
fi
library=$1 list=$2 soname=$3
shift 3
status=0

echo "${library##*/} exports $(exportsOf "$library" | wc -l) names:"
exportsOf "$library"
if ! diff --label "$list" --label "exported by $library" -u "$list" <(exportsOf "$library"); then
    echo "The binary interface changed; if that is meant, bring $list up to date." >&2
    status=1
fi

dynamic=$(readelf --dynamic --wide "$library")
if ! grep -qF "Library soname: [$soname]" <<<"$dynamic"; then
    echo "$library: the soname is not $soname:" "$(grep -F SONAME <<<"$dynamic")" >&2
    status=1
fi
while IFS= read -r needed; do
    case " libstdc++ libm libgcc_s libc libpthread ld-linux-x86-64 $* " in
    *" ${needed%%.so*} "*) ;;
    *)
        echo "$library needs $needed" >&2
        status=1
        ;;
    esac
done < <(sed -nE 's/.*\(NEEDED\).*\[(.*)\].*/\1/p' <<<"$dynamic")
exit $status

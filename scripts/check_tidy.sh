#!/usr/bin/env bash
# Runs clang-tidy over the C++ files that a build folder compiles and prints what it finds.
#   usage: scripts/check_tidy.sh BUILD
#   BUILD  configured with clang++ and CMAKE_EXPORT_COMPILE_COMMANDS=ON. Its folder `tidy` then holds the lists `passed`
#          and `failed`. Tests and fuzz programs are left out; what is compiled several times, for instruction sets and
#          into tests, is looked at once.
set -euo pipefail
build=$(realpath "$1")
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
export tidy=$build/tidy
rm -rf "$tidy"
mkdir "$tidy"

# The last command for each file: kernels for the widest instruction set.
awk -v tests="$root/tests/" -v fuzz="$root/fuzz/" '
    BEGIN { RS = "\n},?\n"; print "[" }
    match($0, /"file": "[^"]*\.cpp"/) {
        file = substr($0, RSTART + 9, RLENGTH - 10)
        sub(/^\[\n/, "")
        if (index(file, tests) != 1 && index(file, fuzz) != 1)
            commands[file] = $0
    }
    END {
        for (file in commands) {
            printf "%s%s\n}", separator, commands[file]
            separator = ",\n"
            print file >"/dev/stderr"
        }
        print "\n]"
    }' "$build/compile_commands.json" >"$tidy/compile_commands.json" 2>"$tidy/files"
touch "$tidy/passed" "$tidy/failed"

check()
{
    local found
    if found=$(clang-tidy -p "$tidy" --quiet "$1" 2>&1); then
        echo "$1" >>"$tidy/passed"
    else
        echo "$1" >>"$tidy/failed"
        printf '%s\n' "$found"
    fi
}
export -f check
# shellcheck disable=SC2016 # the inner shell expands it
sort "$tidy/files" | tr '\n' '\0' | xargs -0 -n 1 -P "$(nproc)" bash -c 'check "$1"' check
[ ! -s "$tidy/failed" ]

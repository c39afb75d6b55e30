#!/usr/bin/env bash
# Prints which lines and branches the tests have reached, by folder, and fails below 95 % of the library's lines.
#   usage: scripts/coverage.sh BUILD
#   BUILD  a folder whose programs were built by clang++ with -fprofile-instr-generate -fcoverage-mapping and have left
#          what they ran in BUILD/profiles. BUILD/coverage.txt then shows every line with its count.
set -euo pipefail
readonly wanted=95 # percent
readonly library="core camera mpr render3d engine3d trevik capi"
build=$(realpath "$1")
root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

cd "$root"
llvm-profdata merge --sparse -o "$build/tests.profdata" "$build"/profiles/*.profraw
objects=("$build/libcorvane.so" -object "$build/capi/libcorvane_c.so" -object "$build/trevik/libtrevik.so"
    -object "$build/bin/corvane" -object "$build/apps/verify/corvane_verify")
options=(-instr-profile "$build/tests.profdata" -ignore-filename-regex '^/usr/|/tests/')
llvm-cov show "${objects[@]}" "${options[@]}" >"$build/coverage.txt"
llvm-cov report "${objects[@]}" "${options[@]}" >"$build/coverage_by_file.txt"

# Columns 8 and 9 of the report: lines and those missed; 11 and 12: branches.
awk -v library="$library" -v wanted=$wanted '
    function Percent(all, missed) { return all ? 100 * (all - missed) / all : 100 }
    function Row(name, lines, missedLines, branches, missedBranches)
    {
        printf "%-20s %8d lines %6.2f %%  %8d branches %6.2f %%\n", name, lines, Percent(lines, missedLines),
            branches, Percent(branches, missedBranches)
    }
    NF == 13 && $8 ~ /^[0-9]+$/ && $1 != "TOTAL" {
        folder = $1
        sub(/\/.*/, "", folder)
        lines[folder] += $8; missedLines[folder] += $9; branches[folder] += $11; missedBranches[folder] += $12
    }
    END {
        count = split(library " host apps", folders, " ")
        for (n = 1; n <= count; ++n) {
            folder = folders[n]
            Row(folder, lines[folder], missedLines[folder], branches[folder], missedBranches[folder])
            if (index(" " library " ", " " folder " ")) {
                allLines += lines[folder]; allMissedLines += missedLines[folder]
                allBranches += branches[folder]; allMissedBranches += missedBranches[folder]
            }
        }
        Row("the library", allLines, allMissedLines, allBranches, allMissedBranches)
        if (!allLines || Percent(allLines, allMissedLines) < wanted) {
            printf "coverage.sh: the tests reach less than %d %% of the lines of the library\n", wanted >"/dev/stderr"
            exit 1
        }
    }' "$build/coverage_by_file.txt"

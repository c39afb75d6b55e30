#!/usr/bin/env bash
# Says which file includes something that its folder may not see.
#   usage: check_layers.sh SOURCE_DIR
set -euo pipefail
cd "$1"
status=0

# The project folder that an include names, or 'system'.
#   $1  the file that includes
#   $2  the included name with its quotes or brackets
folderOf()
{
    local name=${2:1:-1} found
    for found in "$(dirname "$1")/$name" "$name" "include/$name"; do
        if [[ -f $found ]]; then
            realpath --relative-to=. "$found" | cut -d / -f 1
            return
        fi
    done
    echo system
}

# Checks every file of a folder.
#   $1      the folder
#   $2 ...  the folders that it may include, itself and the system's headers apart
allow()
{
    local folder=$1 file include seen
    shift
    [ -d "$folder" ] || return 0
    while IFS= read -r file; do
        while IFS= read -r include; do
            seen=$(folderOf "$file" "$include")
            if [[ $seen != system && $seen != "$folder" && " $* " != *" $seen "* ]]; then
                echo "$file includes $include: $folder/ may not see $seen/" >&2
                status=1
            fi
        done < <(sed -nE 's/^[[:space:]]*#[[:space:]]*include[[:space:]]*([<"][^">]+[">]).*/\1/p' "$file")
    done < <(find "$folder" -name '*.h' -o -name '*.cpp')
}

[ -d include/corvane ] || { echo "check_layers.sh: $1 is not the source folder" >&2; exit 1; }
allow include
allow core include
allow camera include core
allow mpr include core
allow render3d include core
allow engine3d include core camera mpr render3d
allow trevik include
allow capi include
allow host include
allow apps include host capi

# The interface needs nothing but the freestanding headers of C.
while IFS= read -r line; do
    echo "$line: the interface includes <stdint.h>, <stddef.h> and its own headers only" >&2
    status=1
done < <(grep -rnE '^[[:space:]]*#[[:space:]]*include[[:space:]]*<' include | grep -vE '<(stdint|stddef)\.h>')
exit $status

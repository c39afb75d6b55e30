#!/usr/bin/env bash
# Writes the hashes that `corvane verify` compares with, after a change that is meant to change pictures.
#   usage: scripts/update_picture_hashes.sh PROGRAM   the program corvane_verify of a build
set -euo pipefail
[ $# -eq 1 ] || { sed -n '2,3s/^# //p' "$0" >&2; exit 2; }
list=$(dirname "${BASH_SOURCE[0]}")/../host/verification_hashes.inc
new=$({ "$1" || true; } | sed -nE 's/^(ok|DIFFERS|NEW) +([0-9a-f]{16})  (.*)$/{"\3", 0x\2u},/p')
[ -n "$new" ] || { echo "update_picture_hashes.sh: $1 made no pictures" >&2; exit 1; }
printf '// Written by scripts/update_picture_hashes.sh.\n%s\n' "$new" >"$list"

#!/usr/bin/env bash
# Writes the reference pages; whatever a host can use must be described.
#   usage: check_reference.sh SOURCE_DIR
set -euo pipefail
pages=$(mktemp -d)
trap 'rm -rf "$pages"' EXIT
"$1/scripts/reference.sh" "$pages" >/dev/null
for page in classEngine3D classRender3D classEngineMPR structPnImageParam corvane__c__scene_8h; do
    [ -s "$pages/html/$page.html" ] || { echo "check_reference.sh: there is no page $page" >&2; exit 1; }
done
grep -q 'Moves the perspective camera along its direction' "$pages/html/classEngine3D.html" ||
    { echo "check_reference.sh: the comments of the headers are missing" >&2; exit 1; }

#!/usr/bin/env bash
# Writes the reference of the interface as pages, from the headers' comments. Fails on anything without a description.
#   usage: scripts/reference.sh [FOLDER]   build/reference unless another is given; the pages are in its html folder
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
folder=$(realpath -m "${1:-build/reference}")
mkdir -p "$folder"
{ cat docs/Doxyfile; echo "OUTPUT_DIRECTORY = \"$folder\""; } | doxygen -
echo "$folder/html/index.html"

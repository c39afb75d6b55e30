#!/usr/bin/env bash
# Builds Corvane and makes a gallery of pictures from one volume.
#   usage: ./run.sh [INPUT]
#   INPUT  a DICOM folder or file, a NIfTI, NRRD or MetaImage file, or phantom:[OPTIONS]; without it phantom:
set -euo pipefail
root=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

fail()
{
    echo "run.sh: $1" >&2
    exit 2
}

[ $# -le 1 ] || fail "give one input at most; usage: ./run.sh [INPUT]"
input=${1:-phantom:}
case $input in
-h | --help)
    sed -n '2,4s/^# *//p' "${BASH_SOURCE[0]}"
    exit 0
    ;;
phantom:*) name=${input%:} ;;
*)
    [ -e "$input" ] || fail "there is no '$input'; give a file, a folder or phantom:"
    input=$(realpath "$input")
    name=$(basename "$input")
    name=${name%.gz}
    [ -d "$input" ] || name=${name%.*}
    ;;
esac
name=$(tr -c 'A-Za-z0-9_\n.-' '-' <<<"${name:-input}") # a plain folder name whatever the input is called
build=$root/build/release
gallery=$root/gallery/$name

"$root/scripts/install_packages.sh" build apps

echo "Building in $build"
cmake -S "$root" -B "$build" -G Ninja --log-level=WARNING -DCMAKE_BUILD_TYPE=Release -DCORVANE_BUILD_APPS=ON \
    -DCORVANE_BUILD_TESTS=OFF >/dev/null
cmake --build "$build" --parallel "$(nproc)"

"$root/scripts/gallery.sh" "$build/bin/corvane" "$input" "$gallery"
echo "Open $gallery/index.html"

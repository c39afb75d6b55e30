#!/usr/bin/env bash
# Makes the Debian packages of a build, installs them into an empty root, and uses what lies there.
#   usage: check_packages.sh BUILD_DIR SOURCE_DIR VERSION GENERATOR COMPILER
set -euo pipefail
build=$1 source=$2 version=$3 generator=$4 compiler=$5
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset LD_LIBRARY_PATH CMAKE_PREFIX_PATH PKG_CONFIG_PATH

fail()
{
    echo "check_packages.sh: $1" >&2
    exit 1
}

(cd "$build" && cpack -G DEB -B "$work/made") >"$work/log" 2>&1 || { cat "$work/log"; fail "cpack fails"; }
cd "$work/made"
for package in "libcorvane0_${version}_amd64" "libcorvane-dev_${version}_amd64" "corvane_${version}_amd64"; do
    [ -f "$package.deb" ] || fail "there is no $package.deb, but $(echo *.deb)"
done
dependsOf() { dpkg-deb --field "$1"_*.deb Depends; }
[[ $(dependsOf libcorvane0) == *libc6* && $(dependsOf libcorvane0) != *corvane* ]] ||
    fail "libcorvane0 depends on $(dependsOf libcorvane0)"
[[ $(dependsOf libcorvane-dev) == "libcorvane0 (= $version)" ]] || fail "libcorvane-dev depends on $(dependsOf libcorvane-dev)"
[[ $(dependsOf corvane) == *"libcorvane0 (= $version)"* && $(dependsOf corvane) == *libgdcm* && $(dependsOf corvane) == *libpng* ]] ||
    fail "corvane depends on $(dependsOf corvane)"

root=$work/root
mkdir -p "$root/var/lib/dpkg"/{updates,info,triggers}
touch "$root/var/lib/dpkg/status"
# The dependencies are those of this machine, not of the empty root.
dpkg --root="$root" --force-depends --force-not-root --force-script-chrootless --log=/dev/null --install ./*.deb \
    >"$work/log" 2>&1 || { cat "$work/log"; fail "dpkg does not install the packages"; }
"$root/usr/bin/corvane" verify >"$work/log" || { cat "$work/log"; fail "the installed program makes other pictures"; }
"$root/usr/bin/corvane" vr phantom:size=48x48x40 --size 64 -o "$work/picture.png" >/dev/null || fail "the installed program draws nothing"
[ -s "$work/picture.png" ] || fail "there is no picture"
cp -r "$source/tests/package/consumer" "$work/consumer"
cmake -S "$work/consumer" -B "$work/build" -G "$generator" -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_PREFIX_PATH="$root/usr" -DWANTED_VERSION="${version%.*}" >"$work/log" ||
    { cat "$work/log"; fail "find_package does not find the installed library"; }
cmake --build "$work/build" >"$work/log" || { cat "$work/log"; fail "a program does not build against the packages"; }
"$work/build/consumer" || fail "a program built against the packages computes a wrong value"
dpkg --root="$root" --force-not-root --force-script-chrootless --log=/dev/null --purge corvane libcorvane-dev libcorvane0 \
    >"$work/log" 2>&1 || { cat "$work/log"; fail "dpkg does not remove the packages"; }
left=$(find "$root" -path "$root/var" -prune -o -type f -print)
[ -z "$left" ] || fail "these files stay after removal: $left"

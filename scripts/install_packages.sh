#!/usr/bin/env bash
# Installs the Debian 12 packages that are missing; with nothing missing it only asks dpkg and needs no network.
#   usage: scripts/install_packages.sh GROUP...
#   build  compiler and build tool: all that the library needs
#   apps   what the corvane program reads and writes files with
#   test   test and benchmark frameworks, a second compiler with its formatter, its checks and its coverage tools,
#          valgrind, a comparer of binary interfaces, what packages and the reference are made with
#   wine   the compiler for Windows, what runs its programs here, the test framework's source
set -euo pipefail

packagesOf()
{
    case $1 in
    build) echo g++ cmake ninja-build ;;
    apps) echo libgdcm-dev libnifti2-dev libteem-dev libpng-dev zlib1g-dev libcli11-dev nlohmann-json3-dev libtinyxml2-dev ;;
    test) echo libgtest-dev libbenchmark-dev clang libclang-rt-dev clang-format clang-tidy llvm valgrind pkgconf git abigail-tools dpkg-dev file doxygen ;;
    wine) echo g++-mingw-w64-x86-64-posix wine64 googletest ;;
    *) return 1 ;;
    esac
}

fail()
{
    echo "install_packages.sh: $1" >&2
    exit 1
}

isInstalled()
{
    [ "$(dpkg-query --show --showformat='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

[ $# -gt 0 ] || fail "name at least one group: build, apps, test, wine"
wanted=()
for group in "$@"; do
    packages=$(packagesOf "$group") || fail "unknown group '$group'; the groups are build, apps, test and wine"
    read -r -a packages <<<"$packages"
    wanted+=("${packages[@]}")
done

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
    echo "install_packages.sh: not a Debian system; should the build miss something, install what corresponds to:" \
        "${wanted[*]}" >&2
    exit 0
fi

missing=()
for package in "${wanted[@]}"; do
    isInstalled "$package" || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

asRoot=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || fail "packages are missing; as root run: apt-get install ${missing[*]}"
    asRoot=(sudo)
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT
aptGet()
{
    "${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -y -o DPkg::Lock::Timeout=300 "$@" \
        >"$log" 2>&1 </dev/null
}

echo "Installing ${missing[*]}"
# Without network the lists of an earlier update may still do.
aptGet update || echo "install_packages.sh: apt-get update failed, going on with the package lists at hand" >&2
if ! aptGet install --no-install-recommends "${missing[@]}"; then
    reason=$(grep -m 1 '^E: ' "$log" || tail -n 1 "$log")
    fail "could not install ${missing[*]}: ${reason#E: }"
fi

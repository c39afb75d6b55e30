#!/usr/bin/env bash
# Runs a Windows program under Wine, without a display. The first run makes the prefix (Wine's settings and drives) and
# in it an empty drive D:.
#   usage: scripts/wine.sh PREFIX PROGRAM [ARGUMENT...]
set -euo pipefail

fail()
{
    echo "wine.sh: $1" >&2
    exit 125
}

[ $# -ge 2 ] || fail "usage: scripts/wine.sh PREFIX PROGRAM [ARGUMENT...]"
wine=$(command -v wine64 || command -v /usr/lib/wine/wine64 || command -v wine) || fail "install wine64"
mkdir -p "$1"
WINEPREFIX=$(realpath "$1")
shift
export WINEPREFIX WINEARCH=win64 WINEDEBUG=-all WINEDLLOVERRIDES='mscoree,mshtml,winemenubuilder.exe='
unset DISPLAY WAYLAND_DISPLAY

# One caller makes the prefix, the others wait for it.
(
    flock 9
    if [ ! -e "$WINEPREFIX/ready" ]; then
        "$wine" wineboot --init >"$WINEPREFIX/log" 2>&1 </dev/null || fail "Wine made no prefix; see $WINEPREFIX/log"
        mkdir -p "$WINEPREFIX/drive_d"
        ln -sfn ../drive_d "$WINEPREFIX/dosdevices/d:"
        touch "$WINEPREFIX/ready"
    fi
) 9>"$WINEPREFIX/lock"

# The first program starts Wine's services, which stay for some seconds and keep its output open: a caller that reads
# the output from a pipe would wait for them.
output=$(mktemp)
trap 'rm -f "$output"' EXIT
status=0
"$wine" "$@" >"$output" 2>&1 </dev/null || status=$?
tr -d '\r' <"$output" # lines end as they do here
exit $status

#!/usr/bin/env bash
# Shows that a library reaches a class through its virtual table: of the class's symbols it needs the constructor and
# the destructor only.
#   usage: check_seam_symbols.sh LIBRARY CLASS
set -euo pipefail
library=$1 class=$2
expected="$class::$class()
$class::~$class()"
needed=$(nm --dynamic --undefined-only --demangle "$library" | sed 's/^ *[Uw] //' | grep -F "$class" | LC_ALL=C sort -u)
if [ "$needed" != "$expected" ]; then
    echo "check_seam_symbols.sh: $library needs of $class:" "$needed" >&2
    exit 1
fi

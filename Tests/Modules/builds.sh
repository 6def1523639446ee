#!/usr/bin/env bash
# SPDX-License-Identifier: LicenseRef-Halyard
# builds.sh OBJECT... : what is compiled for a certain processor must not be linked in for another. A weak symbol is kept
# once per program, from any object; so each one must carry the name of its build.
set -euo pipefail

bad=0
for object in "$@"; do
    build=$(sed -E 's/.*_(portable|baseline|avx2|avx512)\.dir.*/\1/' <<<"$object")
    while read -r symbol; do
        printf '%s: weak symbol outside brt::%s: %s\n' "$object" "$build" "$symbol" >&2
        bad=1
    done < <(nm --defined-only --demangle "$object" | sed -nE 's/^[0-9a-f]* [WVu] //p' | grep -v -F "brt::$build::")
done
(($#)) || { echo "builds.sh: no objects" >&2 && exit 1; }
exit "$bad"

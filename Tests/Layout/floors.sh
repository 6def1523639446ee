#!/usr/bin/env bash
# SPDX-License-Identifier: LicenseRef-Halyard
# usage: floors.sh PROJECT_FOLDER
# Fails with the offending lines where a file includes a header of a floor above its own, or where a system's own
# words stand outside the platform floor.
set -euo pipefail
cd "$1"

failed=0
complain() {
    printf '%s\n%s\n' "$1" "$2" >&2
    failed=1
}

# forbid FOLDER PATTERN: no file below FOLDER may include what matches PATTERN.
forbid() {
    local lines
    [[ -d $1 ]] || return 0
    lines=$(grep -rnE "^#include \"($2)" --include='*.h' --include='*.cpp' "$1" || true)
    [[ -z $lines ]] || complain "$1 reaches upward:" "$lines"
}

above_core='Modules/|Audio/|Other/|UI/|Tools/'
forbid Sources/Platform "Core/|$above_core"
forbid Sources/Core "$above_core"
forbid Modules 'UI/|Audio/VST/|Tools/'
forbid Sources/Audio 'UI/|Tools/'
forbid Sources/Other 'UI/|Tools/'
forbid Sources/UI 'Audio/VST/|Tools/'

lines=$(grep -rnE '#\s*if.*(__linux__|__unix__|_WIN32|__APPLE__)|#include <(unistd|pthread|sys/|fcntl|signal|dlfcn|xcb)' \
    --include='*.h' --include='*.cpp' Sources Modules Tools | grep -v '^Sources/Platform/' || true)
[[ -z $lines ]] || complain "A system's own words outside Sources/Platform:" "$lines"

exit $failed

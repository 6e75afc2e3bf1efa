#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks that the tree keeps its layering and that the checker reports each kind of violation.
#   layering_test.sh ROOT
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failed=0

"$here/check_layering.sh" "$1" || { echo "FAILED: the tree breaks its layering"; failed=1; }

# plant PATH TEXT EXPECTED: checks that a tree with this file is rejected with EXPECTED in the message.
plant() {
    rm -rf "$scratch/src"
    mkdir -p "$scratch/src/model" "$scratch/src/engine" "$scratch/src/platform/x11/server" "$scratch/src/$(dirname "$1")"
    touch "$scratch/src/engine/geo.h" "$scratch/src/model/zone.h" "$scratch/src/platform/x11/server/connection.h"
    printf '%b\n' "$2" >"$scratch/src/$1"
    if message=$("$here/check_layering.sh" "$scratch"); then
        echo "FAILED: not noticed in $1: $2"
        failed=1
    elif [[ $message != *"$3"* ]]; then
        echo "FAILED: wrong message for $1: $message"
        failed=1
    fi
}
plant model/zone.cpp '#include "engine/geo.h"' "model may not include engine/geo.h"
plant engine/ax.cpp '#include "platform/x11/server/connection.h"' "engine may not include platform/x11/server/connection.h"
plant platform/sim/windows.cpp '#include "platform/x11/server/connection.h"' "platform/sim may not include"
plant platform/x11/windows/a.cpp '#include "engine/geo.h"' "platform/x11/windows may not include engine/geo.h"
plant platform/x11/server/a.cpp '#include "platform/x11/windows/b.h"' "is not under src/"
plant platform/x11/windows/older/a.cpp 'int x;' "has no place in the house"
plant platform/macos/input/mouse.mm '#import "engine/geo.h"' "platform/macos/input may not include engine/geo.h"
plant engine/ax.cpp '#include <QString>' "engine may not include <QString>"
plant engine/ax.cpp '#include <xcb/xcb.h>' "engine may not include <xcb/xcb.h>"
plant app/signals.cpp '#include <unistd.h>' "app may not include <unistd.h>"
plant model/settings/store.cpp '#include <nlohmann/json.hpp>' "JSON stays in"
plant engine/ax.cpp '#ifdef __linux__\n#endif' "conditional on the operating system"
plant engine/ax.cpp '#include "engine/nowhere.h"' "is not under src/"
plant attic/old.cpp 'int x;' "has no place in the house"

rm -rf "$scratch/src"
mkdir -p "$scratch/src/model" "$scratch/src/platform/x11" "$scratch/src/program"
touch "$scratch/src/model/zone.h"
printf '#include "model/zone.h"\n#include <xcb/xcb.h>\n#ifdef __linux__\n#endif\n' >"$scratch/src/platform/x11/windows.cpp"
printf '#include "platform/x11/windows.cpp"\n' >"$scratch/src/program/main.cpp"
"$here/check_layering.sh" "$scratch" || { echo "FAILED: a tree in order is refused"; failed=1; }

exit "$failed"

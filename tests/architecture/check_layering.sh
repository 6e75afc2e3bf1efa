#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks that every file under ROOT/src includes only what its folder may see. Prints each violation.
#   check_layering.sh ROOT
set -euo pipefail
cd "$1/src"

# The other folders that each folder may include.
declare -A sees=(
    [model]=""
    [model/settings]="model"
    [ports/desktop]="model model/settings"
    [ports]="model model/settings ports/desktop"
    [engine]="model model/settings ports/desktop ports"
    [snap]="model model/settings ports/desktop ports engine"
    [placer]="model model/settings ports/desktop ports engine"
    [app/updates]="model model/settings ports/desktop ports"
    [app]="model model/settings ports/desktop ports engine snap placer app/updates"
    [qt_values]=""
    [look]="qt_values"
    [settings_ui/kit]="model model/settings ports/desktop ports engine snap placer app qt_values look"
    [settings_ui/editor]="model model/settings ports/desktop ports engine snap placer app qt_values look settings_ui/kit"
    [settings_ui]="model model/settings ports/desktop ports engine snap placer app qt_values look settings_ui/kit settings_ui/editor"
    [platform/sim/time]="model model/settings ports/desktop ports"
    [platform/sim/windows]="model model/settings ports/desktop ports platform/sim/time"
    [platform/sim]="model model/settings ports/desktop ports platform/sim/time platform/sim/windows"
    [platform/xdg]="model model/settings ports/desktop ports"
    [platform/xdg/applications]="model model/settings ports/desktop ports platform/xdg"
    [platform/xkb]="model model/settings ports/desktop ports"
    [platform/wayland]="model model/settings ports/desktop ports platform/xdg/applications"
    [platform/plasma/keys]="model model/settings ports/desktop ports platform/xkb platform/wayland"
    [platform/plasma]="model model/settings ports/desktop ports platform/xdg platform/xdg/applications platform/wayland platform/plasma/keys"
    [platform/x11/server]="model model/settings ports/desktop ports"
    [platform/x11/displays]="model model/settings ports/desktop ports platform/x11/server"
    [platform/x11/windows]="model model/settings ports/desktop ports platform/xdg platform/xdg/applications platform/x11/server platform/x11/displays"
    [platform/x11/applications]="model model/settings ports/desktop ports platform/xdg/applications platform/x11/server platform/x11/displays platform/x11/windows"
    [platform/x11/input]="model model/settings ports/desktop ports platform/xkb platform/x11/server platform/x11/displays platform/x11/windows"
    [platform/x11/instance]="model model/settings ports/desktop ports platform/x11/server"
    [platform/x11]="model model/settings ports/desktop ports platform/xkb platform/xdg platform/xdg/applications platform/x11/server platform/x11/instance platform/x11/displays platform/x11/windows platform/x11/applications platform/x11/input"
    [platform/macos/objects]="model model/settings ports/desktop ports"
    [platform/macos/windows]="model model/settings ports/desktop ports platform/macos/objects"
    [platform/macos/input]="model model/settings ports/desktop ports platform/macos/objects platform/macos/windows"
    [platform/macos/shell]="model model/settings ports/desktop ports platform/macos/objects"
    [platform/macos]="model model/settings ports/desktop ports platform/macos/objects platform/macos/windows platform/macos/input platform/macos/shell"
    [platform/qt]="model model/settings ports/desktop ports qt_values"
    [platform/qt/overlay]="model model/settings ports/desktop ports qt_values"
    [platform/qt_web/process]="model model/settings ports/desktop ports"
    [platform/qt_web]="model model/settings ports/desktop ports platform/qt_web/process"
    [platform/posix]="model model/settings ports/desktop ports platform/qt"
    [platform/qt_xdg]="model model/settings ports/desktop ports qt_values look platform/qt platform/xdg platform/xdg/applications"
    [platform/qt_wayland]="model model/settings ports/desktop ports qt_values platform/qt platform/qt/overlay"
    [platform/qt_x11]="model model/settings ports/desktop ports qt_values platform/qt"
    [platform/qt_x11/overlay]="model model/settings ports/desktop ports qt_values look platform/qt platform/qt/overlay platform/qt_x11"
    [platform/qt_x11/tray]="model model/settings ports/desktop ports qt_values platform/qt platform/qt_xdg platform/qt_x11"
)
no_qt_and_no_system="model model/settings ports/desktop ports engine snap placer app/updates app"
json_home="model/json.h"

offences=0
offence() {
    echo "$*"
    offences=$((offences + 1))
}

# Sets `folder` to the folder of a file; empty for a file directly under src/.
set_folder() {
    case $1 in
    */*) folder=${1%/*} ;;
    *) folder= ;;
    esac
}

is_core() { [[ " $no_qt_and_no_system " == *" $1 "* ]]; }

check_own_include() { # FILE FOLDER INCLUDE
    [ -f "$3" ] || { offence "$1: \"$3\" is not under src/"; return; }
    set_folder "$3"
    [[ " $2 ${sees[$2]} " == *" $folder "* ]] || offence "$1: $2 may not include $3"
}

check_foreign_include() { # FILE FOLDER INCLUDE
    [[ $3 != nlohmann/* || $1 == "$json_home" ]] || offence "$1: JSON stays in $json_home"
    is_core "$2" || return 0
    # The C++ standard library has no header with a dot or a slash in its name.
    [[ $3 != */* && $3 != *.* && $3 != Q* || $3 == nlohmann/* ]] || offence "$1: $2 may not include <$3>"
}

# Prints one line for each thing to check: its kind, the file, the line number and the included path.
facts() {
    find . -name '*.h' -o -name '*.cpp' -o -name '*.mm' | sed 's|^\./||' | sort | xargs awk '
        FNR == 1 { print "file", FILENAME, FNR, "" }
        /^ *#[ \t]*(include|import)[ \t]*"[^"]+"/ { split($0, part, "\""); print "own", FILENAME, FNR, part[2] }
        /^ *#[ \t]*(include|import)[ \t]*<[^>]+>/ { split($0, part, "[<>]"); print "foreign", FILENAME, FNR, part[2] }
        /^[ \t]*#[ \t]*(if|ifdef|ifndef|elif).*(__linux|__unix|__APPLE__|_WIN32|__MACH__|Q_OS_)/ {
            print "system", FILENAME, FNR, ""
        }'
}

while read -r kind file line include; do
    set_folder "$file"
    own=$folder
    [ "$own" != program ] || continue # connects a back end with the core, and may see everything
    if [ -z "${sees[$own]+known}" ]; then
        [ "$kind" != file ] || offence "$file: the folder $own has no place in the house"
        continue
    fi
    case $kind in
    own) check_own_include "$file" "$own" "$include" ;;
    foreign) check_foreign_include "$file" "$own" "$include" ;;
    system)
        [[ $own == platform/* ]] ||
            offence "$file:$line: conditional on the operating system outside platform/"
        ;;
    esac
done < <(facts)

[ "$offences" = 0 ]

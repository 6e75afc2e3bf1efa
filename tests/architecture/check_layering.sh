#!/usr/bin/env bash
# Checks that every file under ROOT/src includes only what its folder may see. Prints each violation.
#   check_layering.sh ROOT
set -euo pipefail
cd "$1/src"

# The other folders that each folder may include.
declare -A sees=(
    [model]=""
    [ports]="model"
    [engine]="model ports"
    [snap]="model ports engine"
    [placer]="model ports engine"
    [app]="model ports engine snap placer"
    [qt_values]=""
    [settings_ui/kit]="model ports engine snap placer app qt_values"
    [settings_ui/editor]="model ports engine snap placer app qt_values settings_ui/kit"
    [settings_ui]="model ports engine snap placer app qt_values settings_ui/kit settings_ui/editor"
    [platform/sim/time]="model ports"
    [platform/sim/windows]="model ports platform/sim/time"
    [platform/sim]="model ports platform/sim/time platform/sim/windows"
    [platform/xdg]="model ports"
    [platform/x11/server]="model ports"
    [platform/x11/displays]="model ports platform/x11/server"
    [platform/x11/windows]="model ports platform/xdg platform/x11/server platform/x11/displays"
    [platform/x11/applications]="model ports platform/xdg platform/x11/server platform/x11/displays platform/x11/windows"
    [platform/x11/input]="model ports platform/x11/server platform/x11/displays platform/x11/windows"
    [platform/x11]="model ports platform/xdg platform/x11/server platform/x11/displays platform/x11/windows platform/x11/applications platform/x11/input"
    [platform/macos/objects]="model ports"
    [platform/macos/windows]="model ports platform/macos/objects"
    [platform/macos/input]="model ports platform/macos/objects platform/macos/windows"
    [platform/macos/shell]="model ports platform/macos/objects"
    [platform/macos]="model ports platform/macos/objects platform/macos/windows platform/macos/input platform/macos/shell"
    [platform/qt]="model ports qt_values"
    [platform/qt/overlay]="model ports qt_values"
    [platform/qt_web]="model ports"
    [platform/posix]="model ports platform/qt"
    [platform/qt_xdg]="model ports qt_values platform/qt"
    [platform/qt_x11]="model ports qt_values platform/qt"
    [platform/qt_x11/overlay]="model ports qt_values platform/qt platform/qt/overlay platform/qt_x11"
    [platform/qt_x11/tray]="model ports qt_values platform/qt platform/qt_x11"
)
no_qt_and_no_system="model ports engine snap placer app"
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

#!/usr/bin/env bash
# Checks that every include under ROOT/src stays within what its folder may see. Prints each offence.
#   check_layering.sh ROOT
set -euo pipefail
cd "$1/src"

# What each folder may include, itself apart.
declare -A sees=(
    [model]=""
    [ports]="model"
    [engine]="model ports"
    [snap]="model ports engine"
    [placer]="model ports engine"
    [app]="model ports engine snap placer"
    [settings_ui]="model ports engine snap placer app"
    [platform/sim]="model ports"
    [platform/x11]="model ports"
    [platform/macos]="model ports"
    [platform/qt]="model ports snap app"
)
no_qt_and_no_system="model ports engine snap placer app"
json_home="model/json_document.cpp"

offences=0
offence() {
    echo "$*"
    offences=$((offences + 1))
}

folder_of() {
    case $1 in
    platform/*) cut -d/ -f1-2 <<<"$1" ;;
    */*) cut -d/ -f1 <<<"$1" ;;
    esac
}

is_core() { [[ " $no_qt_and_no_system " == *" $1 "* ]]; }

while IFS= read -r file; do
    folder=$(folder_of "$file")
    [ -n "$folder" ] || continue # main.cpp picks the back end and may see everything
    if [ -z "${sees[$folder]+known}" ]; then
        offence "$file: the folder $folder has no place in the house"
        continue
    fi
    while IFS= read -r include; do
        [ -f "$include" ] || { offence "$file: \"$include\" is not under src/"; continue; }
        target=$(folder_of "$include")
        [[ " $folder ${sees[$folder]} " == *" $target "* ]] || offence "$file: $folder may not include $include"
    done < <(sed -nE 's/^ *#\s*(include|import)\s*"([^"]+)".*/\2/p' "$file")
    while IFS= read -r include; do
        [[ $include != nlohmann/* || $file == "$json_home" ]] || offence "$file: JSON stays in $json_home"
        is_core "$folder" || continue
        # The C++ standard library has no header with a dot or a slash in its name.
        [[ $include != */* && $include != *.* && $include != Q* || $include == nlohmann/* ]] ||
            offence "$file: $folder may not include <$include>"
    done < <(sed -nE 's/^ *#\s*(include|import)\s*<([^>]+)>.*/\2/p' "$file")
    [[ $folder == platform/* ]] ||
        while IFS= read -r line; do
            offence "$file:$line: conditional on the operating system outside platform/"
        done < <(grep -nE '^\s*#\s*(if|ifdef|ifndef|elif).*(__linux|__unix|__APPLE__|_WIN32|__MACH__|Q_OS_)' "$file" | cut -d: -f1)
done < <(find . -name '*.h' -o -name '*.cpp' -o -name '*.mm' | sed 's|^\./||' | sort)

[ "$offences" = 0 ]

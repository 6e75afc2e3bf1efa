#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Prints the hash of the sources that decide what the pictures of the documents look like: the demo itself, and
# whatever the program paints.
set -euo pipefail
cd "$(dirname "$0")/.."
inputs=(script/demo demo packaging/icon src/app/main_menu.cpp src/app/status_menu.cpp src/model/action_id.cpp
    src/model/presets.cpp src/platform/x11/words.h src/platform/xkb/printed_names.cpp
    src/platform/plasma/words.h src/platform/qt/overlay src/platform/qt_wayland src/platform/qt_x11/overlay
    src/platform/qt_x11/tray src/qt_values src/settings_ui
    src/snap/overlay_view.cpp)
[ ! -e src/look ] || inputs+=(src/look)
find "${inputs[@]}" -type f ! -name CMakeLists.txt | LC_ALL=C sort | xargs sha256sum | sha256sum | cut -d ' ' -f 1

# SPDX-License-Identifier: MIT
# Edits zones in the settings window with synthetic pointer events. Sourced by script/demo.

# open_settings starts a second instance, which makes the first one open its settings window; close_settings
# presses Ctrl+W.
open_settings() {
    "$tessarel_program" || fail "the second instance does not reach the first"
    wait_until 10 has_settings || fail "no settings window opens"
    wait_until 5 is_active "$settings" || fail "the settings window is not in front"
}
has_settings() {
    settings=$(xdotool search --onlyvisible --name '^Tessarel Settings$' 2>/dev/null | head -n 1)
    [ -n "$settings" ]
}
close_settings() {
    xdotool key ctrl+w
    wait_until 5 settings_are_gone || fail "the settings window does not close"
}
settings_are_gone() { ! has_settings; }

# click_zone_at X Y: selects the zone at the point, in percent of the layout editor.
click_zone_at() { xdotool mousemove --sync $(in_picture "$1" "$2") click 1; }

# pull_edge FROM_X TO_X Y: drags an edge of the selected zone; the edge snaps to a guide that is close to
# TO_X.
pull_edge() {
    xdotool mousemove --sync $(in_picture "$1" "$3") mousedown 1
    xdotool mousemove --sync $(in_picture "$((($1 + $2) / 2))" "$3") mousemove --sync $(in_picture "$2" "$3")
    xdotool mouseup 1
}

# in_picture X Y: prints the screen coordinates of a point, given in percent of the layout editor.
in_picture() {
    local corner
    eval "corner=($(xwininfo -id "$settings" | awk '/Absolute upper-left/ { print $NF }'))"
    # The position of the layout editor in the window, and its size, in pixels.
    echo $((corner[0] + 36 + 500 * $1 / 100)) $((corner[1] + 96 + 312 * $2 / 100))
}

# Zones designed by a real mouse in the settings window. Sourced by script/demo.

# open_settings, close_settings: by a second start of the program, and by its window's key.
open_settings() {
    "$tessarel_program" || fail "the second start does not tell the first"
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

# click_zone_at X Y: selects the zone there. Places in the picture of the screen are in percent.
click_zone_at() { xdotool mousemove --sync $(in_picture "$1" "$2") click 1; }

# pull_edge FROM_X TO_X Y: moves an edge of the selected zone; a guide nearby draws it to itself.
pull_edge() {
    xdotool mousemove --sync $(in_picture "$1" "$3") mousedown 1
    xdotool mousemove --sync $(in_picture "$((($1 + $2) / 2))" "$3") mousemove --sync $(in_picture "$2" "$3")
    xdotool mouseup 1
}

# in_picture X Y: that place on the screen.
in_picture() {
    local corner
    eval "corner=($(xwininfo -id "$settings" | awk '/Absolute upper-left/ { print $NF }'))"
    # Where the picture stands in the window, and its size.
    echo $((corner[0] + 36 + 500 * $1 / 100)) $((corner[1] + 96 + 312 * $2 / 100))
}

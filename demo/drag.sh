# SPDX-License-Identifier: MIT
# Drags windows with synthetic pointer events. Sourced by script/demo.

# drag PROGRAM ZONE TITLE: drags the program's window by its title bar into an entry of `zone`. Takes the
# screenshot TITLE while the overlay is shown.
drag() {
    local target=${window[$1]} before asked x y width height
    asked=$(zone_in "$left_area" "$gap" "$margin" "${zone[$2]}")
    xdotool windowactivate "$target"
    wait_until 5 is_active "$target" || fail "$1 cannot be activated"
    before=$(frame_of "$target")
    read -r x y width height <<<"$before"
    xdotool mousemove --sync $((x + width / 2)) $((y + 8)) mousedown 1
    wait_until 20 follows "$target" "$x" || fail "$1 does not follow the mouse"
    xdotool keydown shift
    read -r x y width height <<<"$asked"
    wait_until 20 shows_zones $((x + width / 2)) $((y + height / 2)) || fail "no zones are shown"
    shoot "$3"
    presses+=("$1|drag into $2|$before|$asked")
    xdotool mouseup 1 keyup shift
    await_press "${presses[-1]}"
    xdotool mousemove 1910 10
}

# follows WINDOW X: moves the pointer a little; true once the window is more than 3 px right of X.
follows() {
    local x
    pull 8 4
    read -r x _ <<<"$(frame_of "$1")"
    ((x > $2 + 3))
}

# shows_zones X Y: moves the pointer a step towards the point; true once it is there and the overlay is on
# screen.
shows_zones() {
    local X Y shown
    eval "$(xdotool getmouselocation --shell)"
    pull $((($1 - X) / 3 + ($1 > X) - ($1 < X))) $((($2 - Y) / 3 + ($2 > Y) - ($2 < Y)))
    (((X - $1) ** 2 + (Y - $2) ** 2 < 100)) || return 1
    for shown in $(xdotool search --onlyvisible --pid "$tessarel" 2>/dev/null); do
        ! xwininfo -id "$shown" | grep -q 'Width: 1920' || return 0
    done
    return 1
}

# pull DX DY: moves the pointer by that many pixels.
pull() { xdotool mousemove_relative -- "$1" "$2"; }

# SPDX-License-Identifier: MIT
# Clicks Tessarel's status item in the panel and the rows of its menu. Sourced by script/demo.

# Numbers of menu rows; the zones come first. Separators are too thin to count.
menu_rows_without_zones=8
submenu_rows=9
layouts_row_after_zones=3

# tray_windows ICONS|MENUS: prints the ids of Tessarel's windows of that kind, in the order in which they
# opened.
tray_windows() {
    local id frame
    for id in $(xdotool search --onlyvisible --class '^tessarel$' 2>/dev/null | sort -n); do
        read -ra frame <<<"$(frame_of "$id")"
        if ((frame[2] > 60)); then [ "$1" = ICONS ] || echo "$id"; else [ "$1" = MENUS ] || echo "$id"; fi
    done
}

has_icon() { [ -n "$(tray_windows ICONS)" ]; }
has_menus() { [ "$(tray_windows MENUS | wc -l)" = "$1" ]; }

open_menu() {
    wait_until 10 has_icon || fail "there is no icon in the panel"
    local frame
    read -ra frame <<<"$(frame_of "$(tray_windows ICONS | head -n 1)")"
    xdotool mousemove $((frame[0] + frame[2] / 2)) $((frame[1] + frame[3] / 2)) click 1
    wait_until 5 has_menus 1 || fail "no menu opens"
}

# point_at MENU ROW ROWS: moves the pointer to the row ROW (from 0) of the open menu MENU (1 or 2), which has
# ROWS rows.
point_at() {
    local frame y
    read -ra frame <<<"$(frame_of "$(tray_windows MENUS | sed -n "$1p")")"
    y=$((frame[1] + (2 * $2 + 1) * frame[3] / (2 * $3)))
    xdotool mousemove $((frame[0] + 2)) "$y" mousemove $((frame[0] + frame[2] / 2)) "$y"
}

# choose_row: clicks the row under the pointer and waits until the menu has closed.
choose_row() {
    xdotool click 1
    wait_until 5 has_menus 0 || fail "the menu does not close"
    xdotool mousemove 1910 10
}

# choose_arranging ZONES, point_at_pausing ZONES: the row "arrange all" or "pause", below that many zone rows.
choose_arranging() {
    open_menu
    point_at 1 $(($1 + 1)) $((menu_rows_without_zones + $1))
    choose_row
}
point_at_pausing() { point_at 1 $(($1 + 4)) $((menu_rows_without_zones + $1)); }

# point_at_layout ZONES LAYOUT: opens the submenu of layouts and moves the pointer to its row LAYOUT (from 0).
point_at_layout() {
    open_menu
    point_at 1 $(($1 + layouts_row_after_zones)) $((menu_rows_without_zones + $1))
    xdotool click 1
    wait_until 5 has_menus 2 || fail "the submenu of layouts does not open"
    point_at 2 "$2" "$submenu_rows"
}

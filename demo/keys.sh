#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Prints a list of the key combinations; runs in the terminal window of the demo.
key=$'\e[1;38;5;117m' text=$'\e[0m' title=$'\e[1;38;5;222m' dim=$'\e[38;5;245m'

row() { printf '  %s%-26s%s %s\n' "$key" "$1" "$text" "$2"; }

printf '\e[?25l\n  %sTessarel%s  windows where they belong\n\n' "$title" "$text"
row 'Ctrl+Alt+1 ... 9' 'the zones of your layout'
row 'Ctrl+Alt+Left, Right' 'left and right half'
row 'Ctrl+Alt+Up, Down' 'top and bottom half'
row 'Ctrl+Alt+Return' 'the whole screen'
row 'Ctrl+Alt+C' 'the middle of the screen'
row 'Ctrl+Alt+Backspace' 'back to where it was'
row 'Ctrl+Alt+A' 'all windows into the zones'
row 'Ctrl+Alt+Super+Right' 'next display'
row 'Ctrl+Alt+Super+Left' 'previous display'
printf '\n  %sDefault layout%s\n\n' "$title" "$text"
printf '  %s┌───────┬───────┬───────┐\n' "$dim"
printf '  │ %s  1  %s │ %s  2  %s │ %s  3  %s │\n' "$key" "$text$dim" "$key" "$text$dim" "$key" "$text$dim"
printf '  ├───────┴───┬───┴───────┤\n'
printf '  │ %s    4    %s │ %s    5    %s │\n' "$key" "$text$dim" "$key" "$text$dim"
printf '  └───────────┴───────────┘%s\n' "$text"
exec sleep infinity

# SPDX-License-Identifier: MIT
# Makes the moving picture of the documents, frame by frame, so that it looks the same on a slow machine. Sourced
# by script/demo.

film_frames=0
film_width=720

# film HUNDREDTHS CAPTION: takes a frame of the first monitor, with the pointer and a line of text, and shows it
# that long.
film() {
    local X Y shown
    eval "$(xdotool getmouselocation --shell)"
    film_frames=$((film_frames + 1))
    printf -v shown '%s/film/%03d.miff' "$stage" "$film_frames"
    import -window root -crop '1920x1080+0+0' +repage miff:- |
        convert miff:- -fill white -stroke black -strokewidth 2 \
            -draw "translate $X,$Y path 'M 0,0 L 0,36 L 9,28 L 15,42 L 21,39 L 15,26 L 27,26 Z'" \
            -resize "${film_width}x" \
            -fill '#10151fd0' -stroke none -draw "roundrectangle 12,12 $((28 + 9 * ${#2})),44 8,8" \
            -fill white -font DejaVu-Sans -pointsize 15 -annotate +22+33 "$2" \
            -set delay "$1" "$shown"
}

# film_pull X Y STEPS CAPTION: pulls the pointer there in as many frames.
film_pull() {
    local X Y step
    for ((step = $3; step > 0; --step)); do
        eval "$(xdotool getmouselocation --shell)"
        pull $((($1 - X) / step)) $((($2 - Y) / step))
        wait_until 2 picture_stands_still 1920 || true
        film 8 "$4"
    done
}

# play_film: a drag with Shift, hot keys, the menu. Leaves all windows where they were, and remembered in the zones
# of fill_zones.
play_film() {
    mkdir -p "$stage/film"
    film_drag picture 1600 780
    local caption='Press Ctrl+Alt+1'
    film 60 "$caption"
    snap files 1
    film_settled 100 "$caption"
    caption='Press Ctrl+Alt+4'
    snap editor 4
    film_settled 100 "$caption"
    caption='Ctrl+Alt+A arranges all windows'
    arrange ctrl+alt+a 1 2 3 4 5
    film_settled 130 "$caption"
    point_at_layout 5 7
    film_settled 130 'Layouts from the menu'
    xdotool key Escape key Escape
    wait_until 5 has_menus 0 || fail "the menu does not close"
    xdotool mousemove 1910 10
    for program in "${programs[@]}"; do
        press "$program" ctrl+alt+BackSpace "${home_frame[$program]}"
    done
    film_settled 100 'Ctrl+Alt+Backspace takes windows back'
    convert "$stage"/film/*.miff +dither +map -layers Optimize -loop 0 "$out/film.gif"
}

film_settled() {
    wait_until 5 picture_stands_still 1920 || true
    film "$1" "$2"
    judge_presses
}

# film_drag PROGRAM X Y: drags the window to the point with Shift held, and drops it there.
film_drag() {
    local target=${window[$1]} x y width height before caption='Drag a window while you hold Shift'
    xdotool windowactivate "$target"
    wait_until 5 is_active "$target" || fail "$1 cannot be activated"
    before=$(frame_of "$target")
    read -r x y width height <<<"$before"
    xdotool mousemove --sync $((x + width / 2)) $((y + 8))
    film 60 "$caption"
    xdotool mousedown 1
    wait_until 20 follows "$target" "$x" || fail "$1 does not follow the mouse"
    xdotool keydown shift
    wait_until 20 shows_zones $((x + width / 2 + 60)) $((y + 60)) || fail "no zones are shown"
    film 20 "$caption"
    film_pull "$2" "$3" 10 "$caption"
    film 40 "$caption"
    presses+=("$1|drag|$before|$(zone_in "$left_area" "$gap" "$margin" "${zone[5]}")")
    xdotool mouseup 1 keyup shift
    await_press "${presses[-1]}"
    xdotool mousemove 1910 10
    film_settled 100 "$caption"
}

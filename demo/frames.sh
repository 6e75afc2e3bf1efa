# SPDX-License-Identifier: MIT
# Computes the actual and the expected frames of windows, independently of Tessarel. A frame is "x y width
# height" in pixels, with the origin at the top-left corner of the screen. Sourced by script/demo.

# frame_of WINDOW: prints the current frame of the window, with title bar and border.
frame_of() {
    { xwininfo -id "$1"; xprop -id "$1" -notype _NET_FRAME_EXTENTS; } 2>/dev/null | awk -F '[:=,]' '
        /Absolute upper-left X/ { x = $2 }
        /Absolute upper-left Y/ { y = $2 }
        /^ *Width/ { width = $2 }
        /^ *Height/ { height = $2 }
        /^_NET_FRAME_EXTENTS = / { left = $2; right = $3; top = $4; bottom = $5 }
        END { print x - left, y - top, width + left + right, height + top + bottom }'
}

# place_of WINDOW: prints the current frame of the window as a part of a picture, in X's notation.
place_of() {
    local frame
    read -ra frame <<<"$(frame_of "$1")"
    echo "${frame[2]}x${frame[3]}+${frame[0]}+${frame[1]}"
}

# step_of WINDOW: prints the resize increments of the window in pixels, across and down; "1 1" by default.
step_of() {
    xprop -id "$1" WM_NORMAL_HINTS 2>/dev/null | awk '
        /resize increment/ { across = $(NF - 2); down = $NF }
        END { print (across ? across : 1), (down ? down : 1) }'
}

# fits GOT ASKED STEP: true if the frame GOT matches ASKED. The corner must be equal; the size may be smaller
# by less than one resize increment.
fits() {
    local got asked step
    read -ra got <<<"$1"
    read -ra asked <<<"$2"
    read -ra step <<<"$3"
    ((got[0] == asked[0] && got[1] == asked[1])) || return 1
    ((got[2] <= asked[2] && got[2] > asked[2] - step[0])) || return 1
    ((got[3] <= asked[3] && got[3] > asked[3] - step[1]))
}

# zone_in AREA GAP MARGIN ZONE: prints the frame of a zone, given as "x y width height" in percent of the
# area.
zone_in() {
    awk -v area="$1" -v gap="$2" -v margin="$3" -v zone="$4" '
        function nearest(value) { return value < 0 ? -int(0.5 - value) : int(value + 0.5) }
        BEGIN {
            split(area, a, " "); split(zone, z, " ")
            rim = margin - gap / 2
            width = a[3] - 2 * rim
            height = a[4] - 2 * rim
            print nearest(a[1] + rim + width * z[1] / 100 + gap / 2),
                  nearest(a[2] + rim + height * z[2] / 100 + gap / 2),
                  nearest(width * z[3] / 100 - gap), nearest(height * z[4] / 100 - gap)
        }'
}

# centred_in AREA FRAME: prints a frame of the same size, centred in the area.
centred_in() {
    awk -v area="$1" -v frame="$2" '
        BEGIN {
            split(area, a, " "); split(frame, f, " ")
            print int(a[1] + (a[3] - f[3]) / 2 + 0.5), int(a[2] + (a[4] - f[4]) / 2 + 0.5), f[3], f[4]
        }'
}

# carried_over FROM TO FRAME: prints the frame with the same relative position and size in the area TO.
carried_over() {
    awk -v from="$1" -v to="$2" -v frame="$3" '
        function nearest(value) { return int(value + 0.5) }
        BEGIN {
            split(from, a, " "); split(to, b, " "); split(frame, f, " ")
            print nearest(b[1] + (f[1] - a[1]) / a[3] * b[3]),
                  nearest(b[2] + (f[2] - a[2]) / a[4] * b[4]),
                  nearest(f[3] / a[3] * b[3]), nearest(f[4] / a[4] * b[4])
        }'
}

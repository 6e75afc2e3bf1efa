# The stage of the demo: a virtual desktop of its own, on a display and in a home folder that nobody else
# uses. Sourced by script/demo, which sets `out` and `tessarel_program`.

stage=
as_nobody=()

# wait_until SECONDS COMMAND...: true as soon as the command succeeds, false when the time is over.
wait_until() {
    local deadline=$((${EPOCHREALTIME/./} + $1 * 1000000))
    shift
    until "$@"; do
        ((${EPOCHREALTIME/./} < deadline)) || return 1
        sleep 0.02
    done
}

# on_stage COMMAND...: becomes the command, with nothing of the caller's surroundings but the path.
on_stage() {
    cd "$stage_home"
    exec env -i PATH="$PATH" HOME="$stage_home" USER=demo SHELL=/bin/bash LANG=C.UTF-8 \
        XDG_CONFIG_HOME="$stage_home/config" XDG_DATA_HOME="$stage_home/data" \
        XDG_CACHE_HOME="$stage_home/cache" XDG_RUNTIME_DIR="$stage_home/run" \
        DBUS_SESSION_BUS_ADDRESS="unix:path=$stage_home/run/bus" \
        GSETTINGS_BACKEND=memory NO_AT_BRIDGE=1 QT_QPA_PLATFORM=xcb QT_STYLE_OVERRIDE=fusion \
        ${DISPLAY:+DISPLAY="$DISPLAY"} "${as_nobody[@]}" "$@"
}

# start NAME COMMAND...: runs the command on the stage until the curtain falls; its words go to a log.
start() {
    local name=$1
    shift
    (on_stage "$@") >"$out/log/$name.log" 2>&1 </dev/null &
}

# stop PID: ends what `start` began, by force if it does not listen.
stop() {
    kill "$1" 2>/dev/null || return 0
    wait_until 3 gone "$1" || kill -KILL "$1" 2>/dev/null || true
    wait "$1" 2>/dev/null || true
}

gone() { ! kill -0 "$1" 2>/dev/null; }

fail() {
    echo "demo: $*" >&2
    exit 1
}

open_stage() {
    stage=$(mktemp -d /tmp/demo.XXXXXX)
    stage_home=$stage/home
    mkdir -p "$stage_home"/{run,cache,tessarel}
    cp -r demo/config demo/data demo/landscape.svg demo/keys.sh "$stage_home/"
    cp -r ./*.md CMake* docs script src tests "$stage_home/tessarel/"
    chmod 700 "$stage_home/run"
    [ "$EUID" != 0 ] || become_nobody

    unset DISPLAY XAUTHORITY WAYLAND_DISPLAY
    (on_stage Xvfb -displayfd 3 -screen 0 3200x1080x24 -dpi 96 -noreset -nolisten tcp) \
        3>"$stage/display" >"$out/log/xvfb.log" 2>&1 </dev/null &
    wait_until 10 test -s "$stage/display" || fail "no X server, see $out/log/xvfb.log"
    DISPLAY=:$(<"$stage/display")
    export DISPLAY

    xrandr --setmonitor '*left' 1920/508x1080/286+0+0 screen >/dev/null
    paint_wallpaper
    xdotool mousemove 1910 10
    start dbus dbus-daemon --session --nofork --nopidfile --address="unix:path=$stage_home/run/bus"
    start openbox openbox
    wait_until 10 has_window_manager || fail "openbox does not come up, see $out/log/openbox.log"
    start_compositor
    start tint2 tint2
    wait_until 10 has_panel || fail "tint2 does not come up, see $out/log/tint2.log"
}

start_compositor() {
    start picom picom --config "$stage_home/config/picom.conf"
    picom=$!
}

# The programs warn a super-user in their windows; so, where the machine lets it, nobody plays.
become_nobody() {
    local as_nobody_here=(setpriv --reuid=65534 --regid=65534 --clear-groups)
    "${as_nobody_here[@]}" true 2>/dev/null || return 0
    cp "$tessarel_program" "$stage/"
    tessarel_program=$stage/tessarel
    chown -R 65534:65534 "$stage"
    as_nobody=("${as_nobody_here[@]}")
}

# Each monitor its own gradient.
paint_wallpaper() { hsetroot -add '#24406b' -add '#3f7d9e' -add '#8fc1b5' -gradient 160 >/dev/null; }

has_window_manager() { xprop -root -notype _NET_SUPPORTING_WM_CHECK | grep -q 'window id'; }
has_panel() { xprop -root -notype _NET_WORKAREA | grep -q ', 1040$'; }

# Ends everything in the reverse order of its start; the X server, the first to come, leaves last.
close_stage() {
    local pid
    trap '' INT TERM HUP
    for pid in $(jobs -rp | tac); do
        stop "$pid"
    done
    [ -z "$stage" ] || rm -rf "$stage"
}

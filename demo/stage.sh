# SPDX-License-Identifier: MIT
# Sets up the private virtual desktop of the demo, with a display and a home folder of its own. Sourced by
# script/demo, which sets `out` and `tessarel_program`.

stage=
as_nobody=()

# wait_until SECONDS COMMAND...: retries the command until it succeeds; false after that many seconds.
wait_until() {
    local deadline=$((${EPOCHREALTIME/./} + $1 * 1000000))
    shift
    until "$@"; do
        ((${EPOCHREALTIME/./} < deadline)) || return 1
        sleep 0.02
    done
}

# on_stage COMMAND...: execs the command in the private home, with only PATH and DISPLAY of the caller's
# environment.
on_stage() {
    cd "$stage_home"
    exec env -i PATH="$PATH" HOME="$stage_home" USER=demo SHELL=/bin/bash LANG=C.UTF-8 \
        XDG_CONFIG_HOME="$stage_home/config" XDG_DATA_HOME="$stage_home/data" \
        XDG_CACHE_HOME="$stage_home/cache" XDG_RUNTIME_DIR="$stage_home/run" \
        DBUS_SESSION_BUS_ADDRESS="unix:path=$stage_home/run/bus" \
        GSETTINGS_BACKEND=memory NO_AT_BRIDGE=1 QT_QPA_PLATFORM=xcb QT_STYLE_OVERRIDE=fusion \
        ${DISPLAY:+DISPLAY="$DISPLAY"} "${as_nobody[@]}" "$@"
}

# start NAME COMMAND...: runs the command in the background until close_stage; its output goes to
# log/NAME.log.
start() {
    local name=$1
    shift
    (on_stage "$@") >"$out/log/$name.log" 2>&1 </dev/null &
}

# stop PID: terminates a process that `start` started; kills it if it is still running after 3 s.
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

# become_nobody: runs the programs as the user nobody, where permitted, because some show a warning to root.
become_nobody() {
    local as_nobody_here=(setpriv --reuid=65534 --regid=65534 --clear-groups)
    "${as_nobody_here[@]}" true 2>/dev/null || return 0
    cp "$tessarel_program" "$stage/"
    tessarel_program=$stage/tessarel
    chown -R 65534:65534 "$stage"
    as_nobody=("${as_nobody_here[@]}")
}

# Paints one gradient per monitor.
paint_wallpaper() { hsetroot -add '#24406b' -add '#3f7d9e' -add '#8fc1b5' -gradient 160 >/dev/null; }

has_window_manager() { xprop -root -notype _NET_SUPPORTING_WM_CHECK | grep -q 'window id'; }
has_panel() { xprop -root -notype _NET_WORKAREA | grep -q ', 1040$'; }

# Stops all processes in reverse order of their start, so that the X server is last.
close_stage() {
    local pid
    trap '' INT TERM HUP
    for pid in $(jobs -rp | tac); do
        stop "$pid"
    done
    [ -z "$stage" ] || rm -rf "$stage"
}

#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Starts the program in a Wayland session without KWin and without an X server: from a menu it shows a window,
# from a terminal it does not. Both exit with 1.
#   unserved_wayland_test.sh PROGRAM
set -euo pipefail
program=$1
scratch=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null || true; wait; rm -rf "$scratch"' EXIT
failed=0
fail() {
    echo "FAILED: $1"
    failed=1
}

# until_true COMMAND...: waits until the command succeeds.
until_true() {
    for ((i = 0; i < 300; ++i)); do
        ! "$@" 2>/dev/null || return 0
        sleep 0.1
    done
    return 1
}

export HOME=$scratch XDG_RUNTIME_DIR=$scratch/run XDG_SESSION_TYPE=wayland WAYLAND_DISPLAY=wayland-test
export DBUS_SESSION_BUS_ADDRESS=disabled:
unset DISPLAY XDG_CONFIG_HOME
mkdir -m 700 "$XDG_RUNTIME_DIR"
weston --backend=headless-backend.so --socket="$WAYLAND_DISPLAY" --debug --no-config &>"$scratch/weston" &
until_true test -S "$XDG_RUNTIME_DIR/$WAYLAND_DISPLAY" || { cat "$scratch/weston"; exit 1; }

shows_window() { timeout 5 weston-debug scene-graph | grep -q "window 'Tessarel' of org.example.Tessarel"; }
sentence="Log in to an X11 session or to KDE Plasma."

"$program" 2>"$scratch/errors" </dev/null &
until_true shows_window || fail "no window appears"
kill $! || true
code=0
wait $! || code=$?
[ "$code" = 1 ] || fail "started from a menu, it exits with $code"
grep -qF "$sentence" "$scratch/errors" || fail "the standard error does not say what to do"

code=0
script --quiet --return --command "timeout 30 '$program'" /dev/null >"$scratch/terminal" </dev/null || code=$?
[ "$code" = 1 ] || fail "started from a terminal, it exits with $code"
grep -qF "$sentence" "$scratch/terminal" || fail "the terminal does not say what to do"
exit "$failed"

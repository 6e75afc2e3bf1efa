#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Runs every command that the documents name, in a session with a window manager and a terminal.
#   commands_test.sh ROOT PROGRAM
set -euo pipefail
root=$1
program=$2
scratch=$(mktemp -d)
leave() {
    kill $(jobs -p) 2>/dev/null || true
    wait
    rm -rf "$scratch"
}
trap leave EXIT

export HOME=$scratch XDG_CONFIG_HOME=$scratch/config XDG_RUNTIME_DIR=$scratch/run LC_ALL=C.UTF-8
unset WAYLAND_DISPLAY XAUTHORITY DBUS_SESSION_BUS_ADDRESS XDG_SESSION_TYPE
mkdir -p "$XDG_CONFIG_HOME/tessarel"
mkdir -m 700 "$XDG_RUNTIME_DIR"
echo '{"hasOnboarded": true, "lastUpdateCheck": 4102444800}' >"$XDG_CONFIG_HOME/tessarel/tessarel.settings.v1.json"

mkfifo "$scratch/display"
Xvfb -displayfd 3 -screen 0 1280x800x24 -noreset -nolisten tcp 3>"$scratch/display" 2>/dev/null &
DISPLAY=:$(head -n 1 "$scratch/display")
export DISPLAY
openbox >/dev/null 2>&1 &
# Windows from before the window manager do not get the focus. A time limit ends the loops.
until xprop -root -notype _NET_SUPPORTING_WM_CHECK 2>/dev/null | grep -q 'window id'; do sleep 0.1; done
xterm -e cat >/dev/null 2>&1 &
"$program" &
until "$program" center 2>/dev/null; do sleep 0.1; done

failed=0
# run COMMAND: fails unless the command is carried out. Some zones of the default layout are off, and there is
# one display.
run() {
    local words code=0
    read -ra words <<<"$1"
    "$program" "${words[@]:1}" >/dev/null 2>"$scratch/errors" || code=$?
    case $1/$code in
    */0 | *' zone-'[3-9]/4 | *-display/4) ;;
    *) echo "FAILED: $1 exits with $code: $(cat "$scratch/errors")"; failed=1 ;;
    esac
}

count=0
while read -r command; do
    [ "$command" = "tessarel quit" ] || run "$command"
    count=$((count + 1))
done < <("$root/tests/docs/check_docs.py" commands "$root")
run "tessarel quit"
[ "$count" -ge 25 ] || { echo "FAILED: only $count commands found"; failed=1; }
exit "$failed"

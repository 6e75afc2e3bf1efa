#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs a package into a new minimal Debian system, starts the program there on a virtual display with a
# window manager, snaps the window of an editor, removes the package, and checks that nothing is left but
# the user's settings. Needs root and debootstrap. Logs are kept beside ROOT, and printed when a step fails.
#   package_trial.sh PACKAGE ROOT
set -euo pipefail
package=$1
root=$2
fail() {
    echo "FAILED: $1" >&2
    exit 1
}
within() { chroot "$root" /usr/bin/env -i HOME=/root PATH=/usr/sbin:/usr/bin:/sbin:/bin DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 "$@"; }
unmount() { umount "$root/proc" 2>/dev/null || true; }
trap unmount EXIT

rm -rf "$root"
debootstrap --variant=minbase bookworm "$root" >"$root.log" 2>&1 || { tail "$root.log"; fail "no minimal system"; }
mount -t proc proc "$root/proc"
within apt-get install -y -q --no-install-recommends xvfb openbox x11-apps xdotool >>"$root.log" 2>&1
within find / -xdev -not -path "/proc/*" -not -path "/var/*" -not -path "/tmp/*" -not -path "/root/*" | sort >"$root.before"

cp "$package" "$root/tmp/tessarel.deb"
within apt-get install -y -q --no-install-recommends /tmp/tessarel.deb >>"$root.log" 2>&1 || { tail "$root.log"; fail "cannot be installed"; }

# In namespaces of its own, so that its display is nobody else's and all its processes end with it. The window is
# that of a program that takes the keyboard, as not every small program for X11 does.
session='
    mkdir -p ~/.config/tessarel
    echo "{\"hasOnboarded\": true}" >~/.config/tessarel/tessarel.settings.v1.json
    Xvfb :1 -screen 0 1280x800x24 -noreset >/dev/null 2>&1 &
    export DISPLAY=:1
    until xdotool getdisplaygeometry >/dev/null 2>&1; do sleep 0.1; done
    openbox &
    until xdotool get_num_desktops >/dev/null 2>&1; do sleep 0.1; done
    xedit & tessarel &
    until tessarel list zones >/dev/null 2>&1; do sleep 0.1; done
    xdotool search --sync --onlyvisible --class xedit windowactivate --sync
    tessarel right-half
    xdotool getactivewindow getwindowname getwindowgeometry
    tessarel quit
'
timeout --signal=KILL 120 unshare --mount --pid --net --fork --kill-child --mount-proc="$root/proc" \
    chroot "$root" /usr/bin/env -i HOME=/root PATH=/usr/bin:/bin LC_ALL=C.UTF-8 sh -euc "$session" \
    >"$root.trial" 2>&1 || { cat "$root.trial"; fail "cannot snap a window"; }
grep -q "Position: 64[0-9]," "$root.trial" || { cat "$root.trial"; fail "the window is not in the right half"; }

within apt-get purge -y -q --auto-remove tessarel >>"$root.log" 2>&1
within find / -xdev -not -path "/proc/*" -not -path "/var/*" -not -path "/tmp/*" -not -path "/root/*" | sort >"$root.after"
diff "$root.before" "$root.after" >"$root.diff" || { cat "$root.diff"; fail "the package leaves files behind"; }
[ -f "$root/root/.config/tessarel/tessarel.settings.v1.json" ] || fail "the user's settings are gone"
echo "The package can be installed, used and removed."

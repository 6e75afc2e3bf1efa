#!/usr/bin/env bash
# Installs a package into a new minimal Debian system, starts the program there on a virtual display with a
# window manager, snaps the window of a clock, removes the package, and checks that nothing is left but
# the user's settings. Needs root and debootstrap.
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
within apt-get install -y -q --no-install-recommends /tmp/tessarel.deb >>"$root.log" 2>&1 || fail "cannot be installed"
within sh -euc '
    Xvfb :4712 -screen 0 1280x800x24 >/dev/null 2>&1 & server=$!
    export DISPLAY=:4712 # the names of displays are shared with the host
    mkdir -p ~/.config/tessarel
    echo "{\"hasOnboarded\": true}" >~/.config/tessarel/tessarel.settings.v1.json
    until xdotool getdisplaygeometry >/dev/null 2>&1; do sleep 0.1; done
    openbox & xclock & tessarel &
    until tessarel list zones >/dev/null 2>&1; do sleep 0.1; done
    xdotool search --sync --onlyvisible --class xclock windowactivate --sync
    tessarel right-half
    xdotool getactivewindow getwindowgeometry
    tessarel quit
    kill $server
' >"$root.trial" 2>&1 || { cat "$root.trial"; fail "cannot snap a window"; }
grep -q "Position: 64[0-9]," "$root.trial" || { cat "$root.trial"; fail "the window is not in the right half"; }

within apt-get purge -y -q --auto-remove tessarel >>"$root.log" 2>&1
within find / -xdev -not -path "/proc/*" -not -path "/var/*" -not -path "/tmp/*" -not -path "/root/*" | sort >"$root.after"
diff "$root.before" "$root.after" >"$root.diff" || { cat "$root.diff"; fail "the package leaves files behind"; }
[ -f "$root/root/.config/tessarel/tessarel.settings.v1.json" ] || fail "the user's settings are gone"
echo "The package can be installed, used and removed."

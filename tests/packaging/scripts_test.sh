#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks that every script parses, that the scripts call the right tools on macOS, and that script/bootstrap
# waits for the lock of another package manager on Debian. Fakes stand in for the tools of both systems.
#   scripts_test.sh ROOT
set -euo pipefail
cd "$1"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failed=0

while IFS= read -r script; do
    bash -n "$script" || { echo "FAILED: $script does not parse"; failed=1; }
done < <(find script tests demo .ci -type f \( -name '*.sh' -o -path 'script/*' -o -path '.ci/*' \))

# macOS ships bash 3.2, without associative arrays, mapfile and the newer expansions.
for script in script/bootstrap_macos script/run script/test; do
    ! grep -nE 'declare -A|mapfile|readarray|\+\+\}|,,\}|@Q\}' "$script" || {
        echo "FAILED: $script uses what bash 3.2 does not support"
        failed=1
    }
done

# play NAME LINE...: creates a fake tool that logs its arguments to $scratch/calls and then runs the lines.
play() {
    printf '%s\n' '#!/bin/sh' "echo ${1} \"\$@\" >>$scratch/calls" "${@:2}" >"$scratch/bin/$1"
    chmod +x "$scratch/bin/$1"
}
mkdir "$scratch/bin"
play uname 'echo Darwin'
play xcode-select
play cmake
play ctest
play open
play pkill 'exit 1'
play sleep
# brew_has PACKAGE...: creates a fake brew that offers these packages and has only ninja installed.
brew_has() {
    play brew "case \$1 in list) test \"\$3\" = ninja ;; --prefix) echo /opt/homebrew ;; info) echo \" $* \" | grep -q \" \$3 \" ;; esac"
}
brew_has qt

# on_mac SCRIPT ARGUMENT...: runs the script with the fakes and prints their calls, without those that only
# query.
on_mac() {
    : >"$scratch/calls"
    PATH=$scratch/bin:$PATH "$@" >"$scratch/said" 2>&1 || return
    grep -v -e '^uname' -e '^xcode-select' -e '^brew list' -e '^brew --prefix' -e '^brew info' "$scratch/calls" || true
}

# expect WHAT EXPECTED GOT: fails unless the two texts are equal.
expect() {
    [ "$2" = "$3" ] || { printf 'FAILED: %s:\n%s\ninstead of:\n%s\n' "$1" "$3" "$2"; failed=1; }
}
expect "bootstrap" "brew install cmake nlohmann-json qt" "$(on_mac script/bootstrap)"
brew_has qt qtbase
expect "bootstrap where Qt's base is a package" "brew install cmake nlohmann-json qtbase" "$(on_mac script/bootstrap)"
play brew 'case $1 in list) test "$3" = qt ;; esac'
expect "bootstrap where Qt is installed" "brew install cmake ninja nlohmann-json" "$(on_mac script/bootstrap)"
brew_has qt
expect "bootstrap for tests" "brew install bash googletest" "$(on_mac script/bootstrap test)"
expect "run" "brew install cmake nlohmann-json qt
cmake --preset release
cmake --build --preset release
pkill -x -U $(id -u) Tessarel
open build/release/Tessarel.app" "$(on_mac script/run)"
play pkill "echo >>$scratch/attempts; test \$(wc -l <$scratch/attempts) -lt 3"
expect "run beside a running copy" "pkill -x -U $(id -u) Tessarel
sleep 0.1
pkill -x -U $(id -u) Tessarel
sleep 0.1
pkill -x -U $(id -u) Tessarel
open build/release/Tessarel.app" "$(on_mac script/run | tail -6)"
play pkill
! on_mac script/run | grep '^open' || { echo "FAILED: a second copy is started"; failed=1; }
expect "test" "brew install cmake nlohmann-json qt bash googletest
cmake --preset debug
cmake --build --preset debug
ctest --preset debug -R engine" "$(on_mac script/test -R engine)"
! on_mac script/bootstrap demo >/dev/null || { echo "FAILED: there is no demo on a Mac"; failed=1; }
play xcode-select 'exit 2'
! on_mac script/bootstrap >/dev/null || { echo "FAILED: a missing compiler is accepted"; failed=1; }

# On Debian and Ubuntu, script/bootstrap waits for the lock of another package manager, for a limited time.
: >"$scratch/locks"
play uname 'echo Linux'
play id 'echo 0'
play dpkg-query 'exit 1'
play sleep "sed -i 1d $scratch/locks"
play apt-get "[ ! -s $scratch/locks ] || { echo 'E: Could not get lock /var/lib/dpkg/lock-frontend.' >&2; exit 100; }" \
    "case \"\$*\" in *--assume-no*) echo 'Need to get 12.3 MB/45.6 MB of archives.'; exit 1 ;; esac"
on_debian() {
    : >"$scratch/calls"
    PATH=$scratch/bin:$PATH "$@" >"$scratch/said" 2>&1
}
# times WHAT: prints how many logged calls start with WHAT.
times() { grep -c -e "^$1" "$scratch/calls" || true; }

printf 'held\n%.0s' 1 2 3 >"$scratch/locks"
on_debian script/bootstrap format || { echo "FAILED: the lock is not waited for"; failed=1; }
expect "waits for the lock" "3 sleep 5, 1 installed" "$(times 'sleep 5') sleep 5, $(times 'apt-get -q install -y') installed"
expect "says what it waits for and does" \
    "bootstrap: another package manager is at work; waiting up to 5 minutes for it
bootstrap: installing 2 packages and what they need (12.3 MB/45.6 MB to download): clang-format clang-tidy" \
    "$(cat "$scratch/said")"
printf 'held\n%.0s' {1..100} >"$scratch/locks"
! on_debian script/bootstrap format || { echo "FAILED: a lock that is never released is ignored"; failed=1; }
expect "gives up after five minutes" "60 sleep 5, 0 installed" \
    "$(times 'sleep 5') sleep 5, $(times 'apt-get -q install') installed"
: >"$scratch/locks"
play apt-get "echo 'E: Unable to locate package' >&2; exit 100"
! on_debian script/bootstrap format || { echo "FAILED: an unknown package is ignored"; failed=1; }
expect "does not wait for an unknown package" "0" "$(times 'sleep')"

exit "$failed"

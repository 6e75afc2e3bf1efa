#!/usr/bin/env bash
# Every script of the project is one for the shell, and on a Mac, whose tools are played here, they set up what
# they should.
#   scripts_test.sh ROOT
set -euo pipefail
cd "$1"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failed=0

while IFS= read -r script; do
    bash -n "$script" || { echo "FAILED: $script does not parse"; failed=1; }
done < <(find script tests -type f \( -name '*.sh' -o -path 'script/*' \))

# A Mac's own shell is so old that it knows no lists by name.
for script in script/bootstrap_macos script/run script/test; do
    ! grep -nE 'declare -A|mapfile|readarray|\+\+\}|,,\}|@Q\}' "$script" || {
        echo "FAILED: $script is beyond the shell of a Mac"
        failed=1
    }
done

# play NAME LINE...: a tool of a Mac's, which writes down how it was called.
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
play brew 'case $1 in list) test "$3" = ninja ;; --prefix) echo /opt/homebrew ;; esac'

# on_mac SCRIPT ARGUMENT...: what a Mac's tools are asked to do by it, but for looking around.
on_mac() {
    : >"$scratch/calls"
    PATH=$scratch/bin:$PATH "$@" >"$scratch/said" 2>&1 || return
    grep -v -e '^uname' -e '^xcode-select' -e '^brew list' -e '^brew --prefix' "$scratch/calls" || true
}

# expect WHAT EXPECTED GOT
expect() {
    [ "$2" = "$3" ] || { printf 'FAILED: %s:\n%s\ninstead of:\n%s\n' "$1" "$3" "$2"; failed=1; }
}
expect "bootstrap" "brew install cmake nlohmann-json qt" "$(on_mac script/bootstrap)"
expect "bootstrap for tests" "brew install bash googletest" "$(on_mac script/bootstrap test)"
expect "run" "brew install cmake nlohmann-json qt
cmake --preset release
cmake --build --preset release
open build/release/Tessarel.app" "$(on_mac script/run)"
expect "test" "brew install cmake nlohmann-json qt bash googletest
cmake --preset debug
cmake --build --preset debug
ctest --preset debug -R engine" "$(on_mac script/test -R engine)"
! on_mac script/bootstrap demo >/dev/null || { echo "FAILED: there is no demo on a Mac"; failed=1; }
play xcode-select 'exit 2'
! on_mac script/bootstrap >/dev/null || { echo "FAILED: the compiler is not missed"; failed=1; }

exit "$failed"

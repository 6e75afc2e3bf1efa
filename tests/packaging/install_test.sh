#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Installs the program below a scratch folder and checks what lies there: the list of files, and each file by
# the tool that reads it.
#   install_test.sh BUILD CMAKE
set -euo pipefail
build=$1
cmake=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failed=0

fail() {
    echo "FAILED: $1"
    failed=1
}

# check DESCRIPTION COMMAND...: fails unless the command succeeds without printing a warning.
check() {
    local what=$1 said
    shift
    said=$("$@" 2>&1 >/dev/null) || fail "$what: $* failed: $said"
    [ -z "$said" ] || fail "$what: $said"
}

DESTDIR=$scratch "$cmake" --install "$build" --prefix /opt/tessarel >/dev/null
id=org.example.Tessarel
share=$scratch/opt/tessarel/share

diff - <(cd "$scratch" && find . -type f | LC_ALL=C sort) <<EOF || fail "other files than expected"
./opt/tessarel/bin/tessarel
./opt/tessarel/libexec/tessarel/tessarel
./opt/tessarel/libexec/tessarel/tessarel-update-check
./opt/tessarel/share/applications/$id.desktop
./opt/tessarel/share/bash-completion/completions/tessarel
./opt/tessarel/share/doc/tessarel/CHANGELOG.md
./opt/tessarel/share/doc/tessarel/README.md
./opt/tessarel/share/doc/tessarel/changelog.gz
./opt/tessarel/share/doc/tessarel/copyright
./opt/tessarel/share/fish/vendor_completions.d/tessarel.fish
./opt/tessarel/share/icons/hicolor/128x128/apps/$id.png
./opt/tessarel/share/icons/hicolor/16x16/apps/$id.png
./opt/tessarel/share/icons/hicolor/22x22/apps/$id.png
./opt/tessarel/share/icons/hicolor/24x24/apps/$id.png
./opt/tessarel/share/icons/hicolor/256x256/apps/$id.png
./opt/tessarel/share/icons/hicolor/32x32/apps/$id.png
./opt/tessarel/share/icons/hicolor/48x48/apps/$id.png
./opt/tessarel/share/icons/hicolor/64x64/apps/$id.png
./opt/tessarel/share/icons/hicolor/scalable/apps/$id.svg
./opt/tessarel/share/man/man1/tessarel.1.gz
./opt/tessarel/share/metainfo/$id.metainfo.xml
./opt/tessarel/share/zsh/vendor-completions/_tessarel
EOF

check "desktop entry" desktop-file-validate "$share/applications/$id.desktop"
check "metadata" appstreamcli validate --no-net "$share/metainfo/$id.metainfo.xml"
gunzip "$share/man/man1/tessarel.1.gz"
check "manual page" groff -man -ww -z -Tutf8 "$share/man/man1/tessarel.1"
check "completion for zsh" zsh -n "$share/zsh/vendor-completions/_tessarel"
check "completion for fish" fish --no-config --no-execute "$share/fish/vendor_completions.d/tessarel.fish"

# completed WORD...: prints what bash offers for the last word.
completed() {
    bash --norc -c 'source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _tessarel; echo "${COMPREPLY[*]}"' \
        "$share/bash-completion/completions/tessarel" "$@"
}
expect_completed() {
    local expected=$1
    shift
    [ "$(completed "$@")" = "$expected" ] || fail "bash offers \"$(completed "$@")\" for $*"
}
expect_completed "left-half layout list" tessarel l
expect_completed "on off" tessarel pause o
expect_completed "zones" tessarel list z
expect_completed "--json" tessarel list zones ""
# Names of layouts that mean something else to a shell.
mkdir "$scratch/bin"
printf '#!/bin/sh\nprintf "%%s\\n" "My desk" "\$(exit)*"\n' >"$scratch/bin/tessarel"
chmod +x "$scratch/bin/tessarel"
PATH=$scratch/bin:$PATH expect_completed 'My\ desk \$\(exit\)\*' tessarel layout ""
PATH=$scratch/bin:$PATH expect_completed 'My\ desk' tessarel layout 'My\ d'
[ "$(fish --no-config -c "source $share/fish/vendor_completions.d/tessarel.fish; complete -C 'tessarel pause o'" | cut -f1 | tr '\n' ' ')" = "off on " ] ||
    fail "fish completes pause wrongly"

[ "$("$scratch/opt/tessarel/bin/tessarel" --version)" = "$("$build/tessarel" --version)" ] || fail "the installed program is another one"
[ "$(env -u DISPLAY "$scratch/opt/tessarel/bin/tessarel" zone-1 2>&1)" = "$(env -u DISPLAY "$build/tessarel" zone-1 2>&1)" ] ||
    fail "launcher and program answer differently"
grep -qF "$("$build/tessarel" --version | cut -d' ' -f2)" "$share/man/man1/tessarel.1" || fail "the manual page has another version"
exit "$failed"

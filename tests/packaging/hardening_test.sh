#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks that programs of the release build are hardened.
#   hardening_test.sh ROOT BUILD PROGRAM...
set -euo pipefail
shopt -s lastpipe # so that `has` can set `failed`
export LC_ALL=C
root=$1
build=$2
shift 2
failed=0

# has WHAT PATTERN: fails unless the standard input has a line that matches.
has() {
    local text
    text=$(cat)
    grep -qE -e "$2" <<<"$text" || { echo "FAILED: $program: $1"; failed=1; }
}

for program in "$@"; do
    readelf --wide --file-header "$program" | has "position-independent" 'Type: +DYN'
    readelf --wide --segments "$program" | has "relocations read-only" 'GNU_RELRO'
    readelf --wide --segments "$program" | has "no executable stack" 'GNU_STACK.* RW +0x'
    readelf --wide --dynamic "$program" | has "all symbols bound at the start" 'FLAGS.*BIND_NOW'
    # With --syms also of a launcher that is linked statically.
    readelf --wide --syms "$program" | has "stack protector" '__stack_chk_fail'
    case $program in
    */tessarel) readelf --wide --syms "$program" | has "checked library functions" '__[a-z]+_chk(@|$)' ;;
    esac
    if [ "$(uname -m)" = x86_64 ]; then
        objdump --disassemble=main "$program" | has "landing pads of indirect branches" 'endbr64'
    fi
done

# Programs do not show every option.
own() { grep -F '"command"' "$build/compile_commands.json" | grep -F -e " -c $root/src/" -e " -c $build/src/"; }
[ -n "$(own)" ] || { echo "FAILED: no source of the program in $build/compile_commands.json"; failed=1; }
while IFS= read -r option; do
    ! own | grep -v -F -e " $option " || { echo "FAILED: these sources are compiled without $option"; failed=1; }
done <<'OPTIONS'
-fstack-protector-strong
-fstack-clash-protection
-D_FORTIFY_SOURCE=2
OPTIONS
exit "$failed"

#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Checks the sources of the macOS back end for Apple's targets, on Linux and without Apple's headers.
#   check.sh compile SOURCE...    compiles for both processors without a warning, and compares the undefined
#                                 symbols with symbols.txt, which lists each after the library that exports it
#   check.sh analyze SOURCE...    runs clang's analyser, mainly for mistakes in ownership
set -euo pipefail
export LC_ALL=C # the order of symbols.txt
here=$(cd "$(dirname "$0")" && pwd)
mode=$1
shift

libcxx=$(llvm-config --includedir)/c++/v1
[ -f "$libcxx/vector" ] || { echo "$0: no libc++ headers in $libcxx; see script/bootstrap" >&2; exit 2; }
mapfile -t c_headers < <(clang -E -v -x c /dev/null 2>&1 | grep -v -e clang -e /gcc/ | sed -n 's/^ \//-isystem\n\//p')
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# One translation unit for all sources, which is faster. The tests compile each source separately.
for source; do
    printf '#line 1 "%s"\n' "$source"
    cat "$source"
done >"$scratch/macos.mm"

# for_target TARGET OPTION...: runs clang on the sources and leaves the output in $scratch.
for_target() {
    (cd "$scratch" && clang++ -target "$1" -x objective-c++ -std=c++20 -fblocks -fno-objc-arc -nostdinc++ -nostdlibinc \
        -U__nonnull -U__nullable -U__null_unspecified -D_GNU_SOURCE `# the C headers use these names differently` \
        -isystem "$libcxx" "${c_headers[@]}" -isystem "$here/sdk" -I"$here/../../src" \
        -Wall -Wextra -Wshadow -Wconversion -Wunguarded-availability -Wundeclared-selector -Werror "${@:2}" macos.mm)
}

case $mode in
compile)
    # The C headers are those of this machine. On x86-64 they accept the ARM target only with this macro.
    for_target arm64-apple-macos13 -fsyntax-only -D__x86_64__=1
    for_target x86_64-apple-macos13 -c -O1
    # Symbols of the C++ library and runtime are left out.
    llvm-nm --undefined-only --just-symbol-name "$scratch/macos.o" |
        sed '/:$/d; /^$/d' | grep -v -e '^__Z' -e '^___cxa' -e '^___gxx' -e '^__Unwind' |
        sort -u >"$scratch/symbols.txt"
    diff <(cut -d ' ' -f 2 "$here/symbols.txt" | sort -u) "$scratch/symbols.txt"
    ;;
analyze)
    for_target x86_64-apple-macos13 --analyze -Xclang -analyzer-output=text -Xclang -analyzer-werror \
        -Xclang -analyzer-checker=core,cplusplus,nullability,osx.cocoa,osx.coreFoundation
    ;;
esac

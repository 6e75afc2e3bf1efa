#!/usr/bin/env bash
# Looks at the sources of the macOS back end with Apple's targets, from Linux and without Apple's headers.
#   check.sh compile SOURCE...    they compile for both kinds of Mac, without a warning, and need of the system
#                                 exactly what symbols.txt lists, each name after the library that has it
#   check.sh analyze SOURCE...    clang's analyser finds no mistake, of ownership above all
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

# All sources as one, for the sake of speed: each by itself is compiled for the tests.
for source; do
    printf '#line 1 "%s"\n' "$source"
    cat "$source"
done >"$scratch/macos.mm"

# for_target TARGET OPTION...: runs clang on the sources; its result is left in $scratch.
for_target() {
    (cd "$scratch" && clang++ -target "$1" -x objective-c++ -std=c++20 -fblocks -fno-objc-arc -nostdinc++ -nostdlibinc \
        -U__nonnull -U__nullable -U__null_unspecified -D_GNU_SOURCE `# names that the C headers use otherwise` \
        -isystem "$libcxx" "${c_headers[@]}" -isystem "$here/sdk" -I"$here/../../src" \
        -Wall -Wextra -Wshadow -Wconversion -Wunguarded-availability -Wundeclared-selector -Werror "${@:2}" macos.mm)
}

case $mode in
compile)
    # The macro lets the C headers of this machine, where it is no ARM, through.
    for_target arm64-apple-macos13 -fsyntax-only -D__x86_64__=1
    for_target x86_64-apple-macos13 -c -O1
    # Apart from C++'s own names.
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

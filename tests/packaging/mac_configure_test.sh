#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Configures the project for macOS with stand-ins for the packages, and builds it with stand-ins for the
# tools. Checks what is compiled and linked, and that the bundle is complete and signed again after each
# change of one of its parts.
#   mac_configure_test.sh ROOT CMAKE
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failed=0

fail() {
    echo "FAILED: $1"
    failed=1
}

# configure FOLDER OPTION...: runs CMake for macOS into FOLDER, with the stand-ins of mac_tools and
# mac_packages.
configure() {
    local folder=$1
    shift
    "$cmake" -S "$root" -B "$folder" -G Ninja -DCMAKE_SYSTEM_NAME=Darwin -DCMAKE_OSX_SYSROOT= \
        -DCMAKE_CXX_COMPILER="$(command -v clang++)" -DCMAKE_CXX_COMPILER_WORKS=ON \
        -DCMAKE_OBJCXX_COMPILER="$(command -v clang++)" -DCMAKE_OBJCXX_COMPILER_WORKS=ON \
        -DCMAKE_TRY_COMPILE_TARGET_TYPE=STATIC_LIBRARY -DCMAKE_INSTALL_NAME_TOOL="$(command -v true)" \
        -DCMAKE_CXX_COMPILER_LAUNCHER="$here/mac_tools/compiler" -DCMAKE_OBJCXX_COMPILER_LAUNCHER="$here/mac_tools/compiler" \
        -DCMAKE_CXX_LINKER_LAUNCHER="$here/mac_tools/compiler" -DCMAKE_OBJCXX_LINKER_LAUNCHER="$here/mac_tools/compiler" \
        -DCMAKE_AR="$here/mac_tools/ar" -DCMAKE_RANLIB="$(command -v true)" -DCMAKE_CROSSCOMPILING_EMULATOR="$(command -v env)" \
        -DCMAKE_PREFIX_PATH="$here/mac_packages" -DCMAKE_DISABLE_FIND_PACKAGE_PkgConfig=ON \
        -DCMAKE_DISABLE_FIND_PACKAGE_X11=ON "$@" >"$scratch/log" 2>&1 || {
        cat "$scratch/log"
        exit 1
    }
}

# expect TEXT: fails unless the build files of the program contain TEXT.
expect() {
    grep -qF -e "$1" "$scratch/program/build.ninja" || fail "missing in build.ninja: $1"
}

root=$1
cmake=$2
configure "$scratch/program" -DCMAKE_BUILD_TYPE=Release -DTESSAREL_BUILD_TESTS=OFF
configure "$scratch/tests" -DCMAKE_BUILD_TYPE=Debug

bundle=$scratch/program/Tessarel.app
parts=$scratch/program/packaging/macos
expect "build Tessarel.app/Contents/MacOS/Tessarel:"
expect "-fno-objc-arc"
for framework in AppKit ApplicationServices Carbon CoreFoundation CoreGraphics Foundation ServiceManagement \
    UniformTypeIdentifiers; do
    expect "-framework $framework"
done
! grep -q -e xcb -e X11 -e x11 "$scratch/program/build.ninja" || fail "the build for macOS uses X11"
for mine in main_macos mac_program; do
    expect "$root/src/program/$mine.cpp"
done
for test in engine_test settings_ui_test sim_contract_test qt_test bundle_test; do
    grep -q "build $test:" "$scratch/tests/build.ninja" || fail "no $test on a Mac"
done

# build: builds the program; writes the arguments of each call of codesign to $scratch/signed.
build() {
    : >"$scratch/signed"
    SIGNED=$scratch/signed PATH=$here/mac_tools:$PATH "$cmake" --build "$scratch/program" >"$scratch/log" 2>&1 || {
        cat "$scratch/log"
        exit 1
    }
}

# expect_bundle CHANGE: fails unless the bundle has the current parts, and the helper program was signed before
# the bundle.
expect_bundle() {
    cmp "$bundle/Contents/MacOS/tessarel-update-check" "$scratch/program/tessarel-update-check" || fail "$1: old helper"
    cmp "$bundle/Contents/Resources/Tessarel.icns" "$parts/Tessarel.icns" || fail "$1: old icon"
    cmp "$bundle/Contents/Info.plist" "$parts/Info.plist" || fail "$1: old property list"
    cmp - "$scratch/signed" <<EOF || fail "$1: not signed"
--force --sign - $bundle/Contents/MacOS/tessarel-update-check
--force --sign - $bundle
EOF
}

build
expect_bundle "the first build"
build
[ ! -s "$scratch/signed" ] || fail "signed again without a change"
for part in tessarel-update-check draw_icon Tessarel.app/Contents/MacOS/Tessarel; do
    rm "$scratch/program/$part"
    build
    expect_bundle "$part has changed"
done
echo "another icon" >"$parts/Tessarel.icns"
build
expect_bundle "the icon alone has changed"
touch "$parts/Info.plist"
build
expect_bundle "the property list is newer"
configure "$scratch/program" -DTESSAREL_BUNDLE_ID=org.example.Other
build
expect_bundle "the property list has changed"
grep -q org.example.Other "$bundle/Contents/Info.plist" || fail "the bundle has the old identifier"

exit "$failed"

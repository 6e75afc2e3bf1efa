#!/usr/bin/env bash
# The build for a Mac can be set up: CMake takes its branch for that system to the end, from here, with
# stand-ins for the packages, and what it would run is what makes a bundle. Nothing is compiled.
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

# configure FOLDER OPTION...: as on a Mac, whose compiler and tools are not here to be tried.
configure() {
    local folder=$1
    shift
    "$cmake" -S "$root" -B "$folder" -G Ninja -DCMAKE_SYSTEM_NAME=Darwin -DCMAKE_OSX_SYSROOT= \
        -DCMAKE_CXX_COMPILER="$(command -v clang++)" -DCMAKE_CXX_COMPILER_WORKS=ON \
        -DCMAKE_OBJCXX_COMPILER="$(command -v clang++)" -DCMAKE_OBJCXX_COMPILER_WORKS=ON \
        -DCMAKE_TRY_COMPILE_TARGET_TYPE=STATIC_LIBRARY -DCMAKE_INSTALL_NAME_TOOL="$(command -v true)" \
        -DCMAKE_PREFIX_PATH="$here/mac_packages" -DCMAKE_DISABLE_FIND_PACKAGE_PkgConfig=ON \
        -DCMAKE_DISABLE_FIND_PACKAGE_X11=ON "$@" >"$scratch/log" 2>&1 || {
        cat "$scratch/log"
        exit 1
    }
}

# expect TEXT: somewhere among what would be run.
expect() {
    grep -qF -e "$1" "$scratch/program/build.ninja" || fail "nothing would run: $1"
}

root=$1
cmake=$2
configure "$scratch/program" -DCMAKE_BUILD_TYPE=Release -DTESSAREL_BUILD_TESTS=OFF
configure "$scratch/tests" -DCMAKE_BUILD_TYPE=Debug

bundle=$scratch/program/Tessarel.app
parts=$scratch/program/packaging/macos
sign="codesign --force --sign -"
expect "build Tessarel.app/Contents/MacOS/Tessarel:"
expect "build Tessarel.app/Contents/Resources/Tessarel.icns:"
expect "$scratch/program/draw_icon $parts/Tessarel.iconset && iconutil --convert icns"
expect "$sign $bundle/Contents/PlugIns/tessarel_url_loading.so && $sign $bundle"
expect "-fno-objc-arc"
for framework in AppKit ApplicationServices Carbon CoreFoundation CoreGraphics Foundation ServiceManagement \
    UniformTypeIdentifiers; do
    expect "-framework $framework"
done
cmp "$bundle/Contents/Info.plist" "$parts/Info.plist" || fail "the bundle has another property list"
! grep -q -e xcb -e X11 -e x11 "$scratch/program/build.ninja" || fail "X11 is asked for"
for mine in main_macos mac_program; do
    expect "$root/src/$mine.cpp"
done
for test in engine_test settings_ui_test sim_contract_test qt_test bundle_test; do
    grep -q "build $test:" "$scratch/tests/build.ninja" || fail "no $test on a Mac"
done

exit "$failed"

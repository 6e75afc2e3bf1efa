# SPDX-License-Identifier: MIT
# Plays the demo in a private session of KDE Plasma on Wayland, which demo/plasma has. Sourced by script/demo.

# play_plasma: leaves pictures and frames.txt in build/demo/plasma; false unless every window reached its target.
play_plasma() {
    local played=true picture
    cmake --preset release-tests >/dev/null
    cmake --build --preset release-tests --target plasma_demo
    mkdir -p "$out/plasma"
    build/release-tests/plasma_demo "$out/plasma" || played=false
    for picture in "$out"/plasma/*.ppm; do
        convert "$picture" "${picture%.ppm}.png"
        rm "$picture"
    done
    "$played"
}

# make_plasma_pictures: makes the documents' pictures of Plasma.
make_plasma_pictures() {
    local title
    for title in zones drag settings; do
        make_picture "plasma-$title" "$out/plasma/$title.png"
    done
}

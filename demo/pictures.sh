# SPDX-License-Identifier: MIT
# Makes the pictures of the documents from the screenshots of the demo. Sourced by script/demo.

# picture NAME TITLE [CROP]: makes docs/screenshots/NAME.png from the screenshot TITLE.
picture() { make_picture "$1" "$(ls "$out"/[0-9][0-9]-"$2".png)" "${@:3}"; }

# make_picture NAME FILE [CROP]: makes docs/screenshots/NAME.png from a picture.
make_picture() {
    convert "$2" ${3:+-crop "$3" +repage} -resize '1200x>' +dither -colors 128 -strip \
        -define png:exclude-chunks=date,time "docs/screenshots/$1.png"
}

# make_pictures: makes all of them, and notes the hash of what they show.
make_pictures() {
    mkdir -p docs/screenshots
    picture zones zones
    picture halves halves-side-by-side
    picture drag drag
    picture drag-outlined drag-without-compositor
    picture menu menu 960x1080+960+0
    picture displays second-display
    picture settings settings "$settings_place"
    for page in shortcuts general about; do
        picture "settings-$page" "settings-$page" "$settings_place"
    done
    cp "$out/film.gif" docs/screenshots/film.gif
    make_plasma_pictures
    demo/inputs.sh >docs/screenshots/inputs.sha256
    ls -l docs/screenshots
}

#!/bin/sh
# Makes the pictures of docs/media.md from a media folder: docs/pictures/media.sh DIR
set -eu
set_folder=$1
pictures=$(dirname "$0")
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT

# The sprites, each pixel enlarged, and beside them as the scene shows them: 31 pixels wide, at half
# opacity, over water.
for name in fish0 bubble; do
    sprite=$set_folder/data/$name.png
    convert -size 320x320 pattern:checkerboard -auto-level +level-colors '#8a8a8a,#b4b4b4' \
        \( "$sprite" -filter point -resize 320x320 \) -composite "$work/$name-large.png"
    convert \( "$set_folder/data/underwater.jpg" -gravity center -crop 96x320+0+0 +repage \
        -evaluate multiply 0.5 \) \
        \( "$sprite" -filter box -resize 31x31 -channel A -evaluate multiply 0.5 +channel \) \
        -gravity center -composite "$work/$name-shown.png"
done
convert "$work/fish0-large.png" "$work/fish0-shown.png" "$work/bubble-large.png" \
    "$work/bubble-shown.png" +append +dither -colors 128 -strip "$pictures/sprites.png"

# The fish as a graphics card enlarges it, colors and opacity mixed apart, with transparent pixels
# that are colored and that are black.
enlarged() { # FROM TO
    convert "$1" -alpha off -filter triangle -resize 500% "$work/color.png"
    convert "$1" -alpha extract -filter triangle -resize 500% "$work/alpha.png"
    convert "$work/color.png" "$work/alpha.png" -compose CopyOpacity -composite -compose Over \
        -background '#3aa0b0' -flatten "$2"
}
convert "$set_folder/data/fish0.png" -background black -alpha background "$work/black.png"
enlarged "$set_folder/data/fish0.png" "$work/good.png"
enlarged "$work/black.png" "$work/bad.png"
convert "$work/good.png" "$work/bad.png" +append -colors 255 -strip "$pictures/fringe.png"

# The stage: the world around the picture at 400 pixels a unit, the water, the places where the
# figures rest, and the way of each in the fourth phrase of the song.
awk -v record=1100 -v last=1400 '
    function px(x) { return (x + 0.2) * 400 }
    function py(y) { return (1.05 - y) * 400 }
    NR > record && NR <= last && NR % 5 == 0 {
        for (k = 0; k < 3; ++k)
            way[k] = way[k] sprintf(" %.1f,%.1f", px(0.45 * $(2 + 6 * k) + 0.60 - 0.05 * k),
                                    py(0.45 * $(3 + 6 * k) - 0.1))
    }
    END {
        split("#ffb040 #ffffff #ff80c0", color, " ")
        for (k = 0; k < 3; ++k) {
            x = px(0.60 - 0.05 * k); y = py(-0.1)
            printf "fill none stroke %s stroke-width 3 polyline%s\n", color[k + 1], way[k]
            printf "fill %s stroke none circle %.1f,%.1f %.1f,%.1f\n", color[k + 1], x, y, x + 6, y
            printf "fill %s stroke none text %.1f,%.1f \"%d\"\n", color[k + 1], x - 4, y + 22, k
        }
        print "fill none stroke #ffffff stroke-width 1 stroke-dasharray 4 4"
        printf "rectangle %.1f,%.1f %.1f,%.1f\n", px(0.0189), py(0.9811), px(0.9811), py(0.0189)
        print "fill #ffffff stroke none"
        printf "text %.1f,%.1f \"0 0\"\n", px(0) - 30, py(0) + 16
        printf "text %.1f,%.1f \"1 0\"\n", px(1) + 4, py(0) + 16
        printf "text %.1f,%.1f \"0 1\"\n", px(0) - 30, py(1) - 4
        printf "text %.1f,%.1f \"1 1\"\n", px(1) + 4, py(1) - 4
    }' "$set_folder/data/dance.txt" > "$work/stage.mvg"
convert -size 560x500 'xc:#051a26' \
    \( "$set_folder/data/underwater.jpg" -resize 400x400 -evaluate multiply 0.5 \) \
    -geometry +80+20 -composite -font "$set_folder/fonts/ChalkboardBold.ttf" -pointsize 16 \
    -draw "$(cat "$work/stage.mvg")" +dither -colors 48 -strip "$pictures/stage.png"

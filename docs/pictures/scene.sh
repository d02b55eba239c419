#!/bin/sh
# Makes the pictures of README.md: docs/pictures/scene.sh KELPIX-RECORD MEDIA
set -eu
record=$1
media=$2
pictures=$(dirname "$0")

"$record" --force --media "$media" --seed 7 --at 48 --png "$pictures/scene.png"
"$record" --force --media "$media" --seed 7 --at 44 --seconds 6 --fps 20 --out "$pictures/film.webp" -- \
    -vf scale=370:370:flags=area -c:v libwebp_anim -quality 30 -compression_level 6 -loop 0
"$record" --force --media "$media" --sheet "$pictures/sheet.png"
convert "$pictures/sheet.png" -resize 1000x +dither -colors 255 -strip "$pictures/sheet.png"

#!/bin/sh
# Makes the pictures of the documents anew, all but frames.svg, which is drawn by hand:
#     cmake --build --preset release && docs/pictures/make.sh
# make.sh [BUILD]: of the media and programs in a build folder. Needs ImageMagick, ffmpeg, Xvfb and xdotool,
# and takes some minutes. Look at what it makes, and see that docs/scene.md still tells it.
set -eu
pictures=$(cd "$(dirname "$0")" && pwd)
root=$(cd "$pictures/../.." && pwd)
build=$(cd "${1-$root/build/release}" && pwd)

# shot NAME SECONDS SIZE: a moment of the scene.
shot() {
    "$build/tools/record/kelpix-record" --force --media "$build/scene" --seed 7 \
        --at "$2" --size "$3" --png "$pictures/$1.png"
}

# fewer_colors NAME [option of convert...]: makes a picture smaller.
fewer_colors() {
    name=$1
    shift
    convert "$pictures/$name.png" "$@" +dither -colors 255 -strip "$pictures/$name.png"
}

shot scene 48 740x740
shot dance 100 740x740
fewer_colors dance
shot wide 30 1280x720
fewer_colors wide

# The set for wide windows, as one shows it that is zoomed in by three steps.
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT
"$build/media/kelpix-media" --out "$work" --wide
echo '0 wheel up 3' >"$work/zoom"
"$build/tools/record/kelpix-record" --force --media "$work" --script "$work/zoom" --seed 7 \
    --at 48 --size 1280x720 --png "$pictures/band.png"
fewer_colors band

"$build/tools/record/kelpix-record" --force --media "$build/scene" --sheet "$pictures/sheet.png"
fewer_colors sheet -resize 1000x

# Six seconds, and into the last of them the second before the first is faded in, so that the film goes
# on from its end to its beginning without a jump.
film=$pictures/film.webp
"$build/tools/record/kelpix-record" --force --media "$build/scene" --seed 7 \
    --at 43 --seconds 7 --fps 20 --out "$film" -- -vf "scale=370:370:flags=area,split[a][b];
        [a]trim=start=1,setpts=PTS-STARTPTS[whole];
        [b]trim=end=1,setpts=PTS-STARTPTS[before];
        [whole][before]xfade=duration=1:offset=5" \
    -f webp -c:v libwebp_anim -quality 42 -compression_level 6 -loop 0
if [ "$(wc -c <"$film")" -gt 1000000 ]; then
    echo "film.webp is larger than a page should load: lower its quality in this script." >&2
    exit 1
fi

"$pictures/media.sh" "$build/scene"
"$root/cmake/with-display.sh" "$pictures/examples.sh" "$build"

#!/bin/sh
# take-picture.sh PROGRAM PICTURE: starts the scene in the current folder, waits until fish and
# figures are in its window, saves a picture of that window, and ends the scene with its own Q key.
# Needs an X server without a window manager.
set -eu
program=$1
picture=$2
seconds=90

"$program" &
scene=$!
trap 'kill "$scene" 2>/dev/null || true' EXIT

# Counts the pixels of a quarter-size copy of the picture for which a condition holds.
count() {
    convert "$picture" -resize 25% -fx "$1" -format '%[fx:round(mean*w*h)]' info:
}

until window=$(xdotool search --onlyvisible --name '^kelpix \(' 2>/dev/null); do
    kill -0 "$scene" 2>/dev/null || { wait "$scene"; exit; }
    sleep 0.2
done

started=$(date +%s)
while :; do
    sleep 1
    kill -0 "$scene" 2>/dev/null || { wait "$scene"; exit; }
    import -window "$window" "$picture"
    fish=$(count 'u.r > u.g + 0.08 && u.r > u.b + 0.1')
    figures=$(count 'u.b > u.g + 0.1 && u.b > u.r + 0.1 && u.r > 0.25')
    [ "$fish" -gt 60 ] && [ "$figures" -gt 60 ] && break
    if [ $(($(date +%s) - started)) -gt "$seconds" ]; then
        echo "After $seconds s there are no fish and figures in the window: see $picture" >&2
        exit 1
    fi
done

xdotool windowfocus --sync "$window" key q
trap - EXIT
wait "$scene"
echo "A picture of the window: $picture"

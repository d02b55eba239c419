#!/bin/sh
# take-picture.sh PROGRAM PICTURE: starts the scene in the current folder, waits until fish and
# figures are in its window, saves a picture of that window, and ends the scene with its own Q key.
# Needs an X server without a window manager.
set -eu
program=$1
picture=$2
seconds=300

"$program" &
scene=$!
trap 'kill "$scene" 2>/dev/null || true' EXIT

# Counts the pixels of a quarter-size copy of the picture for which a condition holds. The lowest tenth
# is left out: there are corals in the color of figures, and figures that still rise into the picture.
count() {
    convert "$picture" -crop 100%x90%+0+0 +repage -resize 25% -fx "$1" \
        -format '%[fx:round(mean*w*h)]' info:
}

# Ends this script unless the scene still runs and there is time left.
check_scene() {
    if ! kill -0 "$scene" 2>/dev/null; then
        status=0
        wait "$scene" || status=$?
        echo "The scene ended, with status $status, before there was a picture." >&2
        exit 1
    fi
    if [ $(($(date +%s) - started)) -gt "$seconds" ]; then
        echo "After $seconds s there is no window with fish and figures: see $picture" >&2
        exit 1
    fi
}

started=$(date +%s)
until window=$(xdotool search --onlyvisible --name '^kelpix \(' 2>/dev/null); do
    check_scene
    sleep 0.2
done

# Three figures that are wholly in the picture cover about 400 pixels of the copy.
while :; do
    sleep 1
    check_scene
    import -window "$window" "$picture"
    fish=$(count 'u.r > u.g + 0.08 && u.r > u.b + 0.1')
    figures=$(count 'u.b > u.g + 0.1 && u.b > u.r + 0.1 && u.r > 0.25')
    [ "$fish" -gt 60 ] && [ "$figures" -gt 330 ] && break
done

# Without a window manager nothing else gives the window the focus, and keys go nowhere.
xdotool windowfocus --sync "$window" key q
trap - EXIT
wait "$scene"
echo "A picture of the window: $picture"

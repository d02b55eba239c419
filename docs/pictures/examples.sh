#!/bin/sh
# Makes the pictures of docs/framework.md: cmake/with-display.sh docs/pictures/examples.sh BUILD
set -eu
pictures=$(dirname "$0")
build=$1
export ALSOFT_DRIVERS=null ALSOFT_CONF="$pictures/../../packaging/alsoft.conf"

program=
trap '[ -z "$program" ] || kill "$program" 2>/dev/null || true' EXIT

# start EXAMPLE [argument...]: and waits for its first frame.
start() {
    example=$1
    shift
    "$build/examples/$example" "$@" >/dev/null &
    program=$!
    until window=$(xdotool search --onlyvisible --name '^kelpix \('); do
        kill -0 "$program" || exit 1 # it has ended
        sleep 0.2
    done
    xdotool windowfocus --sync "$window"
}

# take NAME: saves the picture of the window, and ends the program.
take() {
    import -silent -window "$window" "$pictures/$1.png"
    convert "$pictures/$1.png" -resize 480x480 +dither -colors 255 -strip "$pictures/$1.png"
    xdotool key --window "$window" q
    wait "$program"
}

start hello-node
for place in '300 220' '185 300' '565 270'; do
    # shellcheck disable=SC2086 # x and y
    xdotool mousemove --window "$window" $place click 3
    sleep 0.2
done
take hello-node

start creature
sleep 25 # of the voice: the figures have come up
take creature

start obj-viewer "$build/scene/data/cube.obj"
xdotool key a
sleep 1
take obj-viewer

start shader
sleep 2
take shader

#!/bin/sh
# with-display.sh COMMAND...: runs the command on an X server of its own, without a screen.
# The exit status is the command's; 99 when no X server could be started.
# KELPIX_SCREEN sets the size of that screen (default 1280x1024).
dir=$(mktemp -d) || exit 99
# -noreset: the server outlives its first client; -displayfd: it picks a free display itself.
Xvfb -displayfd 3 -screen 0 "${KELPIX_SCREEN:-1280x1024}x24" -noreset -nolisten tcp \
    3>"$dir/display" 2>"$dir/log" &
server=$!
trap 'kill "$server" 2>/dev/null; wait "$server" 2>/dev/null; rm -rf "$dir"' EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM
tries=0
while ! [ -s "$dir/display" ]; do
    tries=$((tries + 1))
    if [ "$tries" -gt 1200 ] || ! kill -0 "$server" 2>/dev/null; then
        echo "with-display: Xvfb did not start:" >&2
        cat "$dir/log" >&2
        exit 99
    fi
    sleep 0.1
done
DISPLAY=:$(cat "$dir/display")
export DISPLAY
"$@"

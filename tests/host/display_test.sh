#!/bin/sh
# Clicks and turns the wheel on the probe's window on a virtual display, and checks what reached its views.
# usage: display_test.sh PROBE
set -eu

probe=$1
if [ -z "${INSIDE_DISPLAY-}" ]; then
    command -v xvfb-run >/dev/null && command -v xdotool >/dev/null || exit 77
    INSIDE_DISPLAY=1 exec xvfb-run --auto-servernum --server-args="-screen 0 800x700x24" "$0" "$probe"
fi

unset QT_QPA_PLATFORM WAYLAND_DISPLAY
output=$(mktemp)
trap 'rm -f "$output"' EXIT
"$probe" --appearance light >"$output" &
running=$!

window=$(xdotool search --sync --onlyvisible --name '^Sela$')
sleep 0.5
xdotool mousemove --window "$window" 70 40 click 1
xdotool mousemove --window "$window" 50 160 click 1
xdotool mousemove --window "$window" 180 400 click 5 click 5
sleep 0.3
xdotool mousemove --window "$window" 180 210 click 1
sleep 0.3
xdotool windowfocus --sync "$window" key Escape

status=0
wait "$running" || status=$?
expected='addButton
button7
row 0 2
cancelButton
offset 96'
if [ "$status" -ne 3 ] || [ "$(cat "$output")" != "$expected" ]; then
    echo "status $status, and the window saw:"
    cat "$output"
    exit 1
fi

#!/usr/bin/env bash
# Starts Zephlin on a virtual desktop (virtual-desktop.sh), uses it, and saves pictures of it.
#
#   take-pictures.sh FOLDER
set -euo pipefail
folder=$1
mkdir -p "$folder"

picture() {
    import -window root "$folder/$1.png"
    echo "$folder/$1.png: $2"
}

# Waits until a command succeeds, for half a minute at most.
wait_for() {
    local tries=0
    until "$@" >/dev/null 2>&1; do
        tries=$((tries + 1))
        if [ "$tries" -gt 150 ]; then
            echo "take-pictures.sh: gave up waiting for: $*" >&2
            exit 1
        fi
        sleep 0.2
    done
}

tray_has_an_item() {
    gdbus call --session --dest org.kde.StatusNotifierWatcher --object-path /StatusNotifierWatcher \
        --method org.freedesktop.DBus.Properties.Get org.kde.StatusNotifierWatcher \
        RegisteredStatusNotifierItems | grep -q "/"
}

# Holds the key for as long as a light tap does.
tap_caps_lock() {
    xdotool keydown Caps_Lock
    sleep 0.04
    xdotool keyup Caps_Lock
    sleep 0.2
}

Zephlin &
application=$!
trap 'kill "$application" 2>/dev/null || true' EXIT
wait_for tray_has_an_item
sleep 2
picture tray "the symbol in the panel"

# At the panel's right end.
read -r width _ <<<"$(xdotool getdisplaygeometry)"
xdotool mousemove $((width - 16)) 16 click 3
sleep 1
picture menu "the menu"
xdotool key Escape

# Starting Zephlin again shows the tap test of the running one.
Zephlin
wait_for xdotool search --name '^Tap Test$'
sleep 1
# From the first change of a modifier, the tap test learns the state of Caps Lock.
xdotool key Shift_L
# The X server's own keyboard, which types here, locks at the press, but unlocks at the release. So the
# last tap locks.
for _ in 1 2 3; do
    tap_caps_lock
done
picture tap-test "the tap test after three quick taps"

kill "$application"
wait "$application"

#!/usr/bin/env bash
# Runs a command on a private desktop: an X server in memory, a bus, a window manager, and a panel with
# a tray at its right end. The user's session and settings are neither used nor changed.
#
#   virtual-desktop.sh COMMAND [ARGUMENT...]
set -euo pipefail

if [ "${1-}" = --inside ]; then
    shift
    # It fails also after it has drawn the background.
    display -size 832x468 -window root 'gradient:#a5d8ff-#6d5df6' || true
    openbox 2>/dev/null &
    xfce4-panel 2>/dev/null &
    "$@"
    exit
fi

home=$(mktemp -d)
trap 'rm -rf "$home"' EXIT
export HOME=$home XDG_RUNTIME_DIR=$home/run XDG_CONFIG_HOME=$home/.config \
    XDG_CACHE_HOME=$home/.cache XDG_DATA_HOME=$home/.local/share NO_AT_BRIDGE=1
unset WAYLAND_DISPLAY DBUS_SESSION_BUS_ADDRESS
mkdir -m 700 "$XDG_RUNTIME_DIR"
panel=$XDG_CONFIG_HOME/xfce4/xfconf/xfce-perchannel-xml
mkdir -p "$panel"
cp "$(dirname "$0")/xfce4-panel.xml" "$panel/"
xvfb-run --auto-servernum --server-args="-screen 0 832x468x24" \
    dbus-run-session -- "$(realpath "$0")" --inside "$@" 2>/dev/null

#!/bin/sh
# Runs a display server in the virtual machine, and a client that prints the text that it gets:
# displayServer.sh SERVER [XKB OPTIONS]. Both end with it, at SIGTERM.
server=$1
options=$2
export XDG_RUNTIME_DIR=/run/display
rm -rf $XDG_RUNTIME_DIR
mkdir -m 700 $XDG_RUNTIME_DIR
cd $XDG_RUNTIME_DIR || exit
[ -d /dev/shm ] || mkdir -m 1777 /dev/shm
pids=
trap 'kill $pids; wait; exit' TERM

# Runs the server, and its client when the server's socket is there: serve SOCKET CLIENT COMMAND...
serve() {
    socket=$1
    client=$2
    shift 2
    "$@" >/tmp/server.log 2>&1 &
    pids="$pids $!"
    until [ -S "$socket" ]; do
        kill -0 $! || exit
        sleep 0.1
    done
    "$client" &
    pids="$pids $!"
}

case $server in
Console)
    ConsoleMode unicode
    ConsoleClient &
    pids=$!
    ;;
Sway)
    # It does not run as root, and so gets the keyboards from a daemon.
    seatd -u zephlin >/tmp/seatd.log 2>&1 &
    pids=$!
    echo "xwayland disable" >sway
    echo "input * xkb_options \"$options\"" >>sway
    chown -R zephlin .
    export LIBSEAT_BACKEND=seatd WLR_BACKENDS=headless,libinput WLR_RENDERER=pixman
    export WAYLAND_DISPLAY=wayland-1
    serve wayland-1 WaylandClient su -m zephlin -c "exec sway --config $PWD/sway"
    ;;
Weston)
    lsmod | grep -q ^bochs || modprobe bochs
    printf '[keyboard]\nkeymap_options=%s\n[libinput]\n' "$options" >weston.ini
    export WAYLAND_DISPLAY=wayland-1
    serve wayland-1 WaylandClient weston --backend=drm-backend.so --use-pixman \
        --shell=kiosk-shell.so --tty=1 --socket=wayland-1 --config="$PWD/weston.ini"
    ;;
Xorg | XorgWithoutConsole)
    # Its driver without a screen leaves the text console as it is, which follows the keys too.
    if [ "$server" = Xorg ]; then ConsoleMode unicode; else ConsoleMode off; fi
    cat >xorg.conf <<END
Section "Device"
    Identifier "dummy"
    Driver "dummy"
EndSection
Section "InputClass"
    Identifier "keyboards"
    MatchIsKeyboard "on"
    Driver "libinput"
    Option "XkbOptions" "$options"
EndSection
END
    rm -rf /tmp/.X*
    export DISPLAY=:0
    serve /tmp/.X11-unix/X0 XClient \
        /usr/lib/xorg/Xorg :0 -config "$PWD/xorg.conf" -noreset -logfile /tmp/Xorg.log
    ;;
esac
wait

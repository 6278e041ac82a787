#!/bin/sh
# Replaces systemctl, udevadm and modprobe (machine.sh): records the calls and remembers whether the
# socket is active. If there is /run/keyboards, it has the service behind it. Questions are answered
# without a record, and systemctl --root or --no-reload, which only changes files, is carried out.
set -eu
tool=${0##*/}

stop() {
    rm -f /run/active
    [ -e /run/service ] || return 0
    kill "$(cat /run/service)" 2>/dev/null || true
    while kill -0 "$(cat /run/service)" 2>/dev/null; do
        sleep 0.05
    done
    rm /run/service
}

start() {
    touch /run/active
    [ -e /run/keyboards ] && [ ! -e /run/service ] || return 0
    mkdir -p /run/zephlin-hidd
    setsid zephlin-hidd --virtual-keyboards 3 --state /run/zephlin-hidd/properties \
        </dev/null >/run/log 2>&1 &
    echo $! >/run/service
    until [ -S /run/zephlin/hidd.sock ]; do
        kill -0 $! && sleep 0.05
    done
}

case "$tool $*" in
"systemctl --root="*) exec systemctl.real "$@" ;;
"systemctl --no-reload"*) exec systemctl.real --root=/ "$@" ;;
"systemctl "*is-active*)
    [ -e /run/active ]
    exit
    ;;
"systemctl "*is-enabled*) exec systemctl.real --root=/ "$@" ;;
"systemctl "*restart*)
    stop
    start
    ;;
"systemctl "*start*) start ;;
"systemctl stop"*) stop ;;
esac
echo "$tool $*" >>/run/calls

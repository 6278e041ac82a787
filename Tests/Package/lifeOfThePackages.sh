#!/usr/bin/env bash
# Installs, upgrades and removes the packages: lifeOfThePackages.sh PACKAGES, run as root in a mount
# namespace of its own (InstallationTest.sh).
# shellcheck source=Tests/Package/support.sh
. "$(dirname "$0")/support.sh"
packages=$1

# The changes to the machine, and the machine with these changes.
changes=/mnt/changes
machine=/mnt/machine
socket=zephlin-hidd.socket

make_machine() {
    # In memory, because not every file system can be an overlay's upper one.
    mount -t tmpfs -o mode=755 none /mnt
    mkdir "$changes" /mnt/work "$machine"
    mount -t overlay -o "lowerdir=/,upperdir=$changes,workdir=/mnt/work" none "$machine"
    mount -t proc none "$machine/proc"
    mount --bind /dev "$machine/dev"
    mount -t tmpfs -o mode=755 none "$machine/run"
    mount -t tmpfs none "$machine/tmp"
    cp "$packages"/*.deb "$machine/tmp/"

    # What ./run may have left.
    on_machine dpkg --purge zephlin-desktop zephlin 2>/dev/null
    on_machine userdel zephlin 2>/dev/null || true

    # A user with settings.
    mkdir -p "$machine/home/somebody/.config/zephlin"
    echo '{"isEnabled": false}' >"$machine/home/somebody/.config/zephlin/defaults.json"

    # The first forbids services in a container; the second updates the index of manual pages, which
    # takes longer than everything else.
    rm -f "$machine/usr/sbin/policy-rc.d" "$machine/var/lib/man-db/auto-update"

    # systemd does not run in there, and the kernel is the real machine's.
    mv "$machine/usr/bin/systemctl" "$machine/usr/bin/systemctl.real"
    for tool in systemctl udevadm modprobe; do
        rm -f "$machine/usr/bin/$tool" "$machine/usr/sbin/$tool"
        cp "$source_folder/Tests/Package/recordCall.sh" "$machine/usr/bin/$tool"
    done
}

on_machine() {
    chroot "$machine" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 \
        DEBIAN_FRONTEND=noninteractive "$@"
}

# Runs dpkg, and forgets earlier calls.
dpkg_does() {
    rm -f "$machine/run/calls"
    check "dpkg can do this: $*" on_machine dpkg --force-unsafe-io "$@"
}
install_both() {
    dpkg_does --install "/tmp/zephlin$1.deb" "/tmp/zephlin-desktop$1.deb"
}

calls() {
    [ ! -e "$machine/run/calls" ] || cat "$machine/run/calls"
}

# Makes a package like the present one with a lower version.
age_package() {
    local name=$1 folder=/mnt/older-$1
    dpkg-deb --raw-extract "$packages/$name.deb" "$folder"
    sed -i -E -e 's/^Version: .*/Version: 0.0.1/' -e 's/zephlin \(= [^)]*\)/zephlin (= 0.0.1)/' \
        "$folder/DEBIAN/control"
    echo "of the older version" >"$folder/usr/share/doc/$name/OLDER"
    dpkg-deb -Zgzip -z1 --build --root-owner-group "$folder" "$machine/tmp/$name-older.deb" >/dev/null
    rm -rf "$folder"
}

# Describes a file, a link or a folder in one line.
describe() {
    if [ -h "$1" ]; then
        echo "-> $(readlink "$1")"
    elif [ -d "$1" ]; then
        stat --format='folder %a %U:%G' "$1"
    elif [ -e "$1" ]; then
        echo "$(stat --format='%F %a %U:%G' "$1") $(sha256sum <"$1")"
    else
        echo "absent"
    fi
}

# Prints how the machine differs from the real one. Logs, caches and dpkg's records do not count; users
# are checked separately.
differences() {
    local path before after
    (cd "$changes" && find . -mindepth 1 \
        \( -path ./var/lib/dpkg -o -path ./var/log -o -path ./var/cache \
        -o -path ./usr/share/applications/mimeinfo.cache \
        -o -path './usr/share/icons/*/icon-theme.cache' \
        -o -path './etc/passwd*' -o -path './etc/group*' -o -path './etc/shadow*' \
        -o -path './etc/gshadow*' -o -path ./etc/.pwd.lock -o -path './etc/sub[ug]id*' \) -prune \
        -o -print) | sort | while read -r path; do
        before=$(describe "/$path")
        after=$(describe "$machine/$path")
        [ "$before" = "$after" ] || printf '%s: %s, was %s\n' "$path" "$after" "$before"
    done
}

is_enabled() {
    on_machine systemctl.real --root=/ is-enabled "$socket" || true
}

version_of() {
    dpkg-deb --field "$packages/$1.deb" Version
}
installed_versions() {
    # shellcheck disable=SC2016
    on_machine dpkg-query --show --showformat='${Package} ${Version} ${db:Status-Status}\n' \
        zephlin zephlin-desktop
}
present_versions="zephlin $(version_of zephlin) installed
zephlin-desktop $(version_of zephlin-desktop) installed"

users() {
    (cd "$machine/etc" && cat passwd group)
}

make_machine
age_package zephlin
age_package zephlin-desktop
without_packages=$(differences)
users_without_packages=$(users)

printf '\n== Where systemd does not run\n'
dpkg_does --install /tmp/zephlin.deb
check_same "nothing is asked of systemd, udev and the kernel" "" "$(calls)"
check_same "the service has its user" "zephlin:/usr/sbin/nologin" \
    "$(on_machine getent passwd zephlin | cut -d : -f 1,7)"
check_same "the service's user can read keyboards" "zephlin input" \
    "$(on_machine id --groups --name zephlin)"
check_same "the socket is there when systemd runs" "enabled" "$(is_enabled)"
check_same "hidutil is found" "hidutil (Zephlin) $(version_of zephlin)" \
    "$(on_machine hidutil --version)"
check "systemd finds no fault with the units" \
    on_machine systemd-analyze verify --man=no /usr/lib/systemd/system/zephlin-hidd.{socket,service}
check "systemd finds the service well confined" on_machine systemd-analyze security \
    --offline=yes --threshold=14 /usr/lib/systemd/system/zephlin-hidd.service
dpkg_does --purge zephlin
check_same "nothing is left of the package" "$without_packages" "$(differences)"
check_same "nothing is left but the user in its group" $'input\nzephlin' \
    "$(diff <(echo "$users_without_packages") <(users) | sed -n 's/^> \([^:]*\):.*/\1/p' | sort -u)"

printf '\n== Where systemd runs\n'
mkdir -p "$machine/run/systemd/system"
device_calls="udevadm control --reload
modprobe uinput
udevadm trigger --subsystem-match=misc --sysname-match=uinput
udevadm settle --timeout=5
systemctl --system daemon-reload"

install_both -older
check_same "the device is made and the socket started" "$device_calls
systemctl --quiet --system start $socket" "$(calls)"

install_both ""
check_same "both packages are upgraded" "$present_versions" "$(installed_versions)"
check_same "the service restarts with its socket at the end, and not before" "$device_calls
systemctl --quiet --system restart $socket" "$(calls)"
check_same "the older version's files are gone" "" \
    "$(cd "$machine/usr/share/doc" && find zephlin zephlin-desktop -name OLDER)"
check_same "the user's settings are kept" '{"isEnabled": false}' \
    "$(cat "$machine/home/somebody/.config/zephlin/defaults.json")"

printf '\n== What the administrator decides\n'
on_machine systemctl.real --root=/ --quiet disable "$socket"
rm "$machine/run/active"
install_both ""
check_same "a socket that is disabled stays so" "disabled" "$(is_enabled)"
check_same "a socket that is disabled is not started" "$device_calls" "$(calls)"
on_machine systemctl.real --root=/ --quiet mask "$socket"
install_both ""
check_same "a socket that is masked stays so" "masked" "$(is_enabled)"
check_same "a socket that is masked is not started" "$device_calls" "$(calls)"
on_machine systemctl.real --root=/ --quiet unmask "$socket"
on_machine systemctl.real --root=/ --quiet enable "$socket"
install_both ""
check_same "a socket that is enabled again starts" "$device_calls
systemctl --quiet --system restart $socket" "$(calls)"

printf '\n== Removing and coming back\n'
mkdir "$machine/run/zephlin" "$machine/run/zephlin-hidd"
touch "$machine/run/zephlin/hidd.sock"
dpkg_does --remove zephlin-desktop zephlin
check_same "the service and its socket are stopped, and the device is taken back" \
    "systemctl stop $socket zephlin-hidd.service
systemctl --system daemon-reload
udevadm control --reload
udevadm trigger --subsystem-match=misc --sysname-match=uinput" "$(calls)"
check "the socket's folder is gone" [ ! -e "$machine/run/zephlin" ]
check "what the service kept is gone" [ ! -e "$machine/run/zephlin-hidd" ]
install_both ""
check_same "both packages are there again" "$present_versions" "$(installed_versions)"
check "the socket is active again" [ -e "$machine/run/active" ]

dpkg_does --purge zephlin-desktop zephlin
check_same "nothing is left of the packages" "$without_packages" "$(differences)"
check_same "nothing is left in /run" "calls
systemd" "$(ls "$machine/run")"

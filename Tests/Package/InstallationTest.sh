#!/usr/bin/env bash
# Installs, upgrades and removes the packages with dpkg: InstallationTest.sh PACKAGES
# shellcheck source=Tests/Package/machine.sh
. "$(dirname "$0")/machine.sh"
packages=$1

# Runs dpkg, forgets earlier calls, and sets `said` to what the packages say.
dpkg_does() {
    local output
    rm -f "$machine/run/calls"
    printf 'dpkg can do this: %s\n' "$*"
    output=$(on_machine dpkg --force-unsafe-io "$@" 2>&1) || fail "$output"
    said=$(grep '^zephlin' <<<"$output" || true)
}
install_both() {
    dpkg_does --install "/tmp/zephlin$1.deb" "/tmp/zephlin-desktop$1.deb"
}

present_versions="zephlin $(version_of "$packages/zephlin.deb") installed
zephlin-desktop $(version_of "$packages/zephlin-desktop.deb") installed"

make_machine /
cp "$packages"/*.deb "$machine/tmp/"
for package in zephlin zephlin-desktop; do
    age_package "$packages/$package.deb" "$machine/tmp/$package-older.deb"
done
without_packages=$(differences)
users_without_packages=$(users)

printf '\n== Where systemd does not run\n'
dpkg_does --install /tmp/zephlin.deb
check_same "it says what to do next" \
    'zephlin: systemd does not run here. Start zephlin-hidd as root, then run "Zephlin apply".' "$said"
check_same "nothing is asked of systemd, udev and the kernel" "" "$(calls)"
check_same "the service has its user" "zephlin:/usr/sbin/nologin" \
    "$(on_machine getent passwd zephlin | cut -d : -f 1,7)"
check_same "the service's user can read keyboards" "zephlin input" \
    "$(on_machine id --groups --name zephlin)"
check_same "the socket is there when systemd runs" "enabled" "$(is_enabled)"
check_same "hidutil is found" "hidutil (Zephlin) $(version_of "$packages/zephlin.deb")" \
    "$(on_machine hidutil --version)"
check "systemd finds no fault with the units" \
    on_machine systemd-analyze verify --man=no /usr/lib/systemd/system/zephlin-hidd.{socket,service}
check "systemd finds the service well confined" on_machine systemd-analyze security \
    --offline=yes --threshold=14 /usr/lib/systemd/system/zephlin-hidd.service
dpkg_does --purge zephlin
check_same "nothing is left of the package" "$without_packages" "$(differences)"
check_same "the user and its group are gone" "$users_without_packages" "$(users)"

printf '\n== Where systemd runs\n'
mkdir -p "$machine/run/systemd/system"
device_calls="udevadm control --reload
modprobe uinput
udevadm trigger --subsystem-match=misc --sysname-match=uinput
udevadm settle --timeout=5
systemctl --system daemon-reload"

install_both -older
check_same "both say what to do next" \
    'zephlin: run "Zephlin apply" to make Caps Lock instant on all keyboards.
zephlin-desktop: start Zephlin from your desktop'"'s menu." "$said"
check_same "the device is made and the socket started" "$device_calls
systemctl --quiet --system start $socket" "$(calls)"

install_both ""
check_same "both packages are upgraded" "$present_versions" "$(installed_versions)"
check_same "an upgrade has nothing to say" "" "$said"
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
udevadm trigger --subsystem-match=misc --sysname-match=uinput
udevadm settle --timeout=5" "$(calls)"
check "the user stays until the package is purged" on_machine getent passwd zephlin
check "the socket's folder is gone" [ ! -e "$machine/run/zephlin" ]
check "what the service kept is gone" [ ! -e "$machine/run/zephlin-hidd" ]
install_both ""
check_same "both packages are there again" "$present_versions" "$(installed_versions)"
check "the socket is active again" [ -e "$machine/run/active" ]

dpkg_does --purge zephlin-desktop zephlin
check_same "nothing is left of the packages" "$without_packages" "$(differences)"
check_same "no user is left" "$users_without_packages" "$(users)"
check_same "nothing is left in /run" "calls
systemd" "$(ls "$machine/run")"

printf '\n== The device\n'
mount -t tmpfs none "$machine/dev"
mknod "$machine/dev/null" c 1 3
dpkg_does --install /tmp/zephlin.deb
# As the package's rule does.
give_device() {
    touch "$machine/dev/uinput"
    chmod 660 "$machine/dev/uinput"
    on_machine chgrp zephlin /dev/uinput
}
give_device
dpkg_does --remove zephlin
check_same "the device is root's again" "600 root:root" \
    "$(on_machine stat --format="%a %U:%G" /dev/uinput)"
give_device
dpkg_does --purge zephlin
check_same "the user stays while its group owns the device" \
    "zephlin: the user zephlin stays, because its group still owns /dev/uinput." "$said"
check "the user is there" on_machine getent passwd zephlin

printf '\n== A user of the same name\n'
on_machine userdel zephlin
on_machine useradd zephlin
dpkg_does --install /tmp/zephlin.deb
dpkg_does --purge zephlin
check "an administrator's own user of the name stays" on_machine getent passwd zephlin

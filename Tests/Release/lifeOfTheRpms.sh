#!/usr/bin/env bash
# Installs, upgrades and removes the RPMs: lifeOfTheRpms.sh RELEASE_FILES, run as root in a mount
# namespace of its own (RpmInstallationTest.sh).
# shellcheck source=Tests/Package/support.sh
. "$(dirname "$0")/../Package/support.sh"
# shellcheck source=Tests/Release/rpmMachine.sh
. "$source_folder/Tests/Release/rpmMachine.sh"
# shellcheck source=Tests/Release/ageRpms.sh
. "$source_folder/Tests/Release/ageRpms.sh"
release=$1
machine=/mnt/machine
socket=zephlin-hidd.socket

mount -t tmpfs -o mode=755 none /mnt
mkdir -p /mnt/{older,packages} "$machine"

on_machine() {
    chroot "$machine" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 "$@"
}

machine_rpm() {
    rpm --root "$machine" --dbpath /var/lib/rpm "$@"
}

# Runs rpm on the machine, with its check of dependencies, and forgets earlier calls. Sets `said` to what
# the scriptlets print.
rpm_does() {
    printf 'checking that rpm can do this: %s\n' "$*"
    rm -f "$machine/run/calls"
    said=$(machine_rpm "$@" 2>&1) || fail "rpm says: $said"
    # Debian's rpm begins with a warning of its own.
    said=$(sed '/^rpm: /d' <<<"$said")
}
refuses() {
    ! machine_rpm "$@"
}
calls() {
    [ ! -e "$machine/run/calls" ] || cat "$machine/run/calls"
}
is_enabled() {
    on_machine systemctl.real --root=/ is-enabled "$socket" 2>/dev/null || true
}
# The files on the machine. rpm's records and users do not count.
files() {
    (cd "$machine" && find . \( -path ./proc -o -path ./dev -o -path ./var/lib/rpm -o -path ./run/calls \
        -o -path ./run/systemd -o -path './etc/*passwd*' -o -path './etc/*group*' \
        -o -path './etc/*shadow*' -o -path ./etc/.pwd.lock \) -prune -o ! -type d -print) | sort
}
installed() {
    machine_rpm --query --queryformat '%{name} %{version}\n' \
        zephlin zephlin-desktop
}

version=$(rpm --query --package --queryformat '%{version}' "$release"/zephlin-desktop-*.x86_64.rpm)
both=("$release"/zephlin-"$version"-*.x86_64.rpm "$release"/zephlin-desktop-"$version"-*.x86_64.rpm)
one=${both[0]}
present="zephlin $version
zephlin-desktop $version"

make_machine_packages /mnt/packages
machine_rpm --initdb
check "the dependencies are checked" refuses --install "$one"
mkdir -p "$machine"/{dev,proc,run,tmp,root,usr/bin,usr/sbin,usr/lib,usr/lib64,var/lib}
ln -s ../run "$machine/var/run"
mount -t proc none "$machine/proc"
mount --bind /dev "$machine/dev"
rpm_does --install /mnt/packages/machine.rpm
without_packages=$(files)

printf '\n== Where systemd does not run\n'
rpm_does --install "$one"
check_same "its last line says what to do next" \
    'zephlin: systemd does not run here. Start zephlin-hidd as root, then run "Zephlin apply".' "$(tail -n 1 <<<"$said")"
check_same "nothing is asked of systemd, udev and the kernel" "" "$(calls)"
check_same "the service has its user" "zephlin:/usr/sbin/nologin" \
    "$(on_machine getent passwd zephlin | cut -d : -f 1,7)"
check_same "the service's user can read keyboards" "zephlin input" \
    "$(on_machine id --groups --name zephlin)"
check_same "the socket is there when systemd runs" "enabled" "$(is_enabled)"
check "all files are as rpm installed them" machine_rpm --verify zephlin

chroot "$machine" /usr/sbin/zephlin-hidd --virtual-keyboards 3 2>"$machine/tmp/log" &
service=$!
trap 'kill "$service"' EXIT
until grep -q ready "$machine/tmp/log"; do
    [ -d "/proc/$service" ] || fail "the keyboard service has ended: $(cat "$machine/tmp/log")"
    sleep 0.05
done
check_same "the override is applied and verified" \
    "Caps Lock delay override applied and verified (0 ms on 3 keyboard services)." \
    "$(on_machine Zephlin apply)"
trap - EXIT
kill "$service"
wait "$service" || true
rm "$machine/tmp/log"

rpm_does --erase zephlin
check_same "nothing is left of the package" "$without_packages" "$(files)"
check_same "the user stays" zephlin "$(on_machine getent passwd zephlin | cut -d : -f 1)"

printf '\n== Where systemd runs\n'
mkdir -p "$machine/run/systemd/system"
device_calls="udevadm control --reload
modprobe uinput
udevadm trigger --subsystem-match=misc --sysname-match=uinput
udevadm settle --timeout=5
systemctl daemon-reload"

check "the application needs Qt" refuses --install "${both[@]}"
mapfile -t provided < <(rpm --query --package --provides /mnt/packages/qt.rpm | sed '/^qt6-qtbase(/d')
make_machine_package other-qt /mnt/older /mnt/packages "${provided[@]}" "qt6-qtbase(x86-64) = 99"
check_same "it needs the version of Qt that it was built with" \
    "qt6-qtbase(x86-64) = $(pkg-config --modversion Qt6Gui)" \
    "$(machine_rpm --test --install /mnt/packages/other-qt.rpm "${both[@]}" 2>&1 |
        sed -n 's/^\t\(.*\) is needed by zephlin.*/\1/p')"
rm /mnt/packages/other-qt.rpm
rpm_does --install /mnt/packages/qt.rpm
without_packages=$(files)

age_rpms "$release" /mnt/older
# What has been released is upgraded too.
shopt -s nullglob
for older in /mnt/older "$source_folder"/Tests/Package/Released/*; do
    packages=("$older"/*.x86_64.rpm)
    [ ${#packages[@]} -gt 0 ] || continue
    rpm_does --install "${packages[@]}"
    check_same "its last lines say what to do next" \
        'zephlin: run "Zephlin apply" to make Caps Lock instant on all keyboards.
zephlin-desktop: start Zephlin from your desktop'"'"'s menu.' "$(tail -n 2 <<<"$said")"
    check_same "the device is made and the socket started" "$device_calls
systemctl restart $socket" "$(calls)"

    rpm_does --upgrade --replacepkgs "${both[@]}"
    check_same "both packages are upgraded" "$present" "$(installed)"
    check_same "an upgrade says nothing" "" "$said"
    check_same "the service restarts with its socket" "$device_calls
systemctl restart $socket" "$(calls)"
    check_same "it stays enabled" "enabled" "$(is_enabled)"
    rpm_does --erase zephlin-desktop zephlin
done
rpm_does --install "${both[@]}"

printf '\n== What the administrator decides\n'
on_machine systemctl.real --root=/ --quiet disable "$socket"
rm "$machine/run/active"
rpm_does --upgrade --replacepkgs "${both[@]}"
check_same "a socket that is disabled stays so" "disabled" "$(is_enabled)"
check_same "a socket that is disabled is not started" "$device_calls" "$(calls)"
on_machine systemctl.real --root=/ --quiet mask "$socket"
rpm_does --upgrade --replacepkgs "${both[@]}"
check_same "a socket that is masked is not started" "masked
$device_calls" "$(is_enabled)
$(calls)"
on_machine systemctl.real --root=/ --quiet unmask "$socket"

printf '\n== The application\n'
# It draws a picture of its tap test and quits.
check "it starts with the Qt that rpm found" on_machine HOME=/tmp QT_QPA_PLATFORM=offscreen \
    ZEPHLIN_PREVIEW=taptest ZEPHLIN_PREVIEW_OUT=/tmp/picture.png Zephlin
check "it has drawn the picture" [ -s "$machine/tmp/picture.png" ]
rm -r "$machine"/tmp/{picture.png,.config}

printf '\n== Removing\n'
mkdir -p "$machine"/run/zephlin{,-hidd}
touch "$machine/run/zephlin/hidd.sock"
mount -t tmpfs none "$machine/dev"
touch "$machine/dev/null" "$machine/dev/uinput"
on_machine chgrp zephlin /dev/uinput
rpm_does --erase zephlin-desktop zephlin
check_same "/dev/uinput belongs to root again" "600 root:root" \
    "$(stat --format='%a %U:%G' "$machine/dev/uinput")"
umount "$machine/dev"
check_same "the service and its socket are stopped, and the device is taken back" \
    "systemctl stop $socket zephlin-hidd.service
systemctl daemon-reload
udevadm control --reload
udevadm trigger --subsystem-match=misc --sysname-match=uinput" "$(calls)"
check_same "nothing is left of the packages" "$without_packages" "$(files)"
check_same "nothing is left in /run" "calls
systemd" "$(ls "$machine/run")"
check_same "no folder of its own is left" "" "$(find "$machine" -xdev -iname '*zephlin*')"

printf '\n== With dnf\n'
cp "${both[@]}" /mnt/packages
check "createrepo_c makes a repository" createrepo_c /mnt/packages
check "dnf finds everything that the application needs" dnf --assumeyes --installroot=/mnt/installed \
    --releasever=1 --setopt=reposdir=/nowhere --repofrompath=zephlin,file:///mnt/packages \
    --repo=zephlin --nogpgcheck install zephlin-desktop
check_same "it has installed both" "hidutil (Zephlin) $version" \
    "$(chroot /mnt/installed /usr/bin/hidutil --version)"
check_same "the scriptlets have enabled the socket" enabled \
    "$(chroot /mnt/installed /usr/bin/systemctl.real --root=/ is-enabled "$socket")"

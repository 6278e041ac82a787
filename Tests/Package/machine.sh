# shellcheck shell=bash
# Sourced by the tests that install packages. They run on a machine of their own: this one behind an
# overlay, which keeps all changes in memory and ends with the test, as do the programs started there.
# There is no network, so that servers and displays do not meet others, unless the test sets
# `needs_network`.
# This needs root; ./test uses sudo.
# shellcheck source=Tests/Package/support.sh
. "$(dirname "${BASH_SOURCE[0]}")/support.sh"

if [ -z "${ZEPHLIN_TEST_MACHINE-}" ]; then
    # shellcheck source=Packaging/Scripts/packages.sh
    . "$source_folder/Packaging/Scripts/packages.sh"
    isolation=(--net)
    [ -z "${needs_network-}" ] || isolation=()
    exec "${as_root[@]}" env ZEPHLIN_TEST_MACHINE=yes unshare --mount --propagation private \
        --pid --fork --kill-child --mount-proc "${isolation[@]}" "$0" "$@"
fi
[ -n "${needs_network-}" ] || ip link set lo up

# The changes to the original, and the machine with these changes.
changes=/mnt/changes
machine=/mnt/machine
socket=zephlin-hidd.socket

# Makes the machine: make_machine ROOT_FOLDER_OF_THE_ORIGINAL
make_machine() {
    original=$1
    # In memory, because not every file system can be an overlay's upper one.
    mount -t tmpfs -o mode=755 none /mnt
    mkdir "$changes" /mnt/work "$machine"
    mount -t overlay -o "lowerdir=$original,upperdir=$changes,workdir=/mnt/work" none "$machine"
    mount -t proc none "$machine/proc"
    mount --bind /dev "$machine/dev"
    mount -t tmpfs -o mode=755 none "$machine/run"
    mount -t tmpfs none "$machine/tmp"

    # What ./run may have left.
    on_machine dpkg --purge zephlin-desktop zephlin >/dev/null 2>&1
    on_machine userdel zephlin 2>/dev/null || true

    # A user with settings.
    mkdir -p "$machine/home/somebody/.config/zephlin"
    echo '{"isEnabled": false}' >"$machine/home/somebody/.config/zephlin/defaults.json"

    # The first forbids services in a container; the second updates the index of manual pages, which
    # takes longer than everything else.
    rm -f "$machine/usr/sbin/policy-rc.d" "$machine/var/lib/man-db/auto-update"

    # systemd does not run in there, and the kernel is the real machine's.
    local tool
    mv "$machine/usr/bin/systemctl" "$machine/usr/bin/systemctl.real"
    for tool in systemctl udevadm modprobe; do
        rm -f "$machine/usr/bin/$tool" "$machine/usr/sbin/$tool"
        cp "$source_folder/Tests/Package/recordCall.sh" "$machine/usr/bin/$tool"
    done
}

# From now on systemd seems to run, and its socket starts the keyboard service with three virtual
# keyboards.
start_systemd() {
    mkdir -p "$machine/run/systemd/system"
    touch "$machine/run/keyboards"
}

# Puts this clone on the machine, which may not see it yet, as it can be on another file system.
put_clone_on_machine() {
    mkdir -p /mnt/clone /mnt/clone-work "$machine$source_folder"
    mount -t overlay -o "lowerdir=$source_folder,upperdir=/mnt/clone,workdir=/mnt/clone-work" none \
        "$machine$source_folder"
}

# Runs a line of commands there: in_clone LINE
in_clone() {
    # What a compiler keeps for its next run does not count as left over, and git must not mind that
    # the clone belongs to another user.
    # shellcheck disable=SC2016
    on_machine env CCACHE_DIR=/tmp/ccache GIT_CONFIG_COUNT=1 GIT_CONFIG_KEY_0=safe.directory \
        GIT_CONFIG_VALUE_0="$source_folder" bash -c 'cd "$1" && eval "$2"' - "$source_folder" "$1"
}

on_machine() {
    chroot "$machine" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 \
        HOME=/home/somebody DEBIAN_FRONTEND=noninteractive "$@"
}

# The recorded calls of systemctl, udevadm and modprobe.
calls() {
    [ ! -e "$machine/run/calls" ] || cat "$machine/run/calls"
}

is_enabled() {
    on_machine systemctl.real --root=/ is-enabled "$socket" || true
}

version_of() {
    dpkg-deb --field "$1" Version
}

# The versions of zephlin and zephlin-desktop.
installed_versions() {
    # shellcheck disable=SC2016
    on_machine dpkg-query --show --showformat='${Package} ${Version} ${db:Status-Status}\n' \
        zephlin zephlin-desktop
}

# Makes a package like another with a lower version: age_package OTHER RESULT
age_package() {
    local folder=/mnt/older name
    name=$(dpkg-deb --field "$1" Package)
    dpkg-deb --raw-extract "$1" "$folder"
    sed -i -E -e 's/^Version: .*/Version: 0.0.1/' -e 's/zephlin \(= [^)]*\)/zephlin (= 0.0.1)/' \
        "$folder/DEBIAN/control"
    echo "of the older version" >"$folder/usr/share/doc/$name/OLDER"
    dpkg-deb -Zgzip -z1 --build --root-owner-group "$folder" "$2" >/dev/null
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

# Prints how the machine differs from the real one. Logs, caches and the records of dpkg, ucf
# and apt do not count; users are checked separately.
differences() {
    local path before after
    (cd "$changes" && find . -mindepth 1 \
        \( -path ./var/lib/dpkg -o -path ./var/lib/apt -o -path ./var/lib/ucf \
        -o -path ./etc/ld.so.cache -o -path ./var/log -o -path ./var/cache \
        -o -path ./usr/share/applications/mimeinfo.cache \
        -o -path './usr/share/icons/*/icon-theme.cache' \
        -o -path './etc/passwd*' -o -path './etc/group*' -o -path './etc/shadow*' \
        -o -path './etc/gshadow*' -o -path ./etc/.pwd.lock -o -path './etc/sub[ug]id*' \) -prune \
        -o -print) | sort | while read -r path; do
        before=$(describe "$original/$path")
        after=$(describe "$machine/$path")
        [ "$before" = "$after" ] || printf '%s: %s, was %s\n' "$path" "$after" "$before"
    done
}

users() {
    (cd "$machine/etc" && sort passwd group)
}

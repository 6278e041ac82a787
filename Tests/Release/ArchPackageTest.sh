#!/usr/bin/env bash
# The PKGBUILD: makepkg builds the packages from the source package, and pacman installs them into an
# empty folder: ArchPackageTest.sh RELEASE_FILES
# shellcheck source=Tests/Package/support.sh
. "$(dirname "$0")/../Package/support.sh"
release=$(realpath "$1")
make_temporary_folder

# makepkg refuses to run as root. It finds the source beside the PKGBUILD, and downloads nothing.
build=$temporary/build
mkdir "$build"
cp "$release"/{PKGBUILD,zephlin.install,zephlin-*.tar.gz} "$build"
as_user=()
if [ "$(id -u)" -eq 0 ]; then
    chmod 755 "$temporary"
    chown -R nobody "$build"
    as_user=(setpriv --reuid=nobody --regid=nogroup --clear-groups)
fi
make_packages() {
    cd "$build"
    HOME=$build LC_ALL=C.UTF-8 "${as_user[@]}" makepkg --nodeps
}
check "makepkg builds the packages" make_packages

root=$temporary/root
mkdir -p "$root/var/lib/pacman"
use_pacman() {
    fakeroot pacman --root "$root" --dbpath "$root/var/lib/pacman" --cachedir "$temporary" \
        --config /dev/null --logfile "$temporary/log" --noconfirm "$@"
}
# Neither Arch's other packages nor its shell are there.
check "pacman installs them" use_pacman --upgrade --nodeps --nodeps --noscriptlet "$build"/*.pkg.tar*
check "all files are as pacman installed them" use_pacman --query --check --check zephlin zephlin-desktop
check_same "the files are in Arch's places" "usr/bin/Zephlin
usr/bin/hidutil
usr/bin/zephlin-hidd
usr/lib/modules-load.d/zephlin.conf
usr/lib/systemd/system/zephlin-hidd.service
usr/lib/systemd/system/zephlin-hidd.socket
usr/lib/sysusers.d/zephlin.conf
usr/lib/udev/rules.d/60-zephlin-uinput.rules
usr/lib/zephlin/Zephlin.app/Zephlin
usr/lib/zephlin/Zephlin.app/libzephlin-desktop.so
usr/share/applications/com.quorvenel.zephlin.desktop
usr/share/bash-completion/completions/Zephlin
usr/share/bash-completion/completions/hidutil
usr/share/bash-completion/completions/zephlin-hidd
usr/share/doc/zephlin-desktop/troubleshooting.md
usr/share/fish/vendor_completions.d/Zephlin.fish
usr/share/fish/vendor_completions.d/hidutil.fish
usr/share/fish/vendor_completions.d/zephlin-hidd.fish
usr/share/icons/hicolor/scalable/apps/com.quorvenel.zephlin.svg
usr/share/icons/hicolor/scalable/status/zephlin-capslock-fill-symbolic.svg
usr/share/icons/hicolor/scalable/status/zephlin-capslock-symbolic.svg
usr/share/icons/hicolor/scalable/status/zephlin-warning-symbolic.svg
usr/share/licenses/zephlin-desktop/LICENSE
usr/share/licenses/zephlin/LICENSE
usr/share/man/man1/Zephlin.1.gz
usr/share/man/man1/hidutil.1.gz
usr/share/man/man8/zephlin-hidd.8.gz
usr/share/metainfo/com.quorvenel.zephlin.metainfo.xml
usr/share/zsh/site-functions/_zephlin" "$(cd "$root" && find usr ! -type d | LC_ALL=C sort)"
check_same "the service is started from where it is" \
    "ExecStart=/usr/bin/zephlin-hidd --state %t/zephlin-hidd/properties" \
    "$(grep ^ExecStart "$root/usr/lib/systemd/system/zephlin-hidd.service")"

check "hidutil runs" "$root/usr/bin/hidutil" --version
check "zephlin-hidd runs" "$root/usr/bin/zephlin-hidd" --version
check "the application draws its tap test" env HOME="$temporary/home" QT_QPA_PLATFORM=offscreen \
    ZEPHLIN_PREVIEW=taptest ZEPHLIN_PREVIEW_OUT="$temporary/picture.png" "$root/usr/bin/Zephlin"
check "it has drawn the picture" [ -s "$temporary/picture.png" ]

# What pacman runs around this, with a record in place of the tools.
calls_of() {
    bash -c ". '$release/zephlin.install'
        systemctl() { echo \"systemctl \$*\"; }
        modprobe() { echo \"modprobe \$*\"; }
        rm() { echo \"rm \$*\"; }
        [() { true; }
        $1"
}
check_same "an installation says what to do next" "modprobe uinput
zephlin: run \"sudo systemctl enable --now zephlin-hidd.socket\", then \"Zephlin apply\" to make Caps Lock \
instant on all keyboards." "$(calls_of post_install)"
check_same "an upgrade restarts a service that runs" "systemctl daemon-reload
systemctl try-restart zephlin-hidd.socket" "$(calls_of post_upgrade)"
check_same "a removal stops it and leaves nothing in /run" \
    "systemctl --no-reload --quiet disable zephlin-hidd.socket
systemctl stop zephlin-hidd.socket zephlin-hidd.service
rm -rf /run/zephlin /run/zephlin-hidd" "$(calls_of pre_remove && calls_of post_remove)"

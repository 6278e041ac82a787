# shellcheck shell=bash
# Sourced by ./run, ./test, .devcontainer/Dockerfile and Packaging/Release: which packages they need,
# and how to install them.

# Runs a command as root: "${as_root[@]}" COMMAND
as_root=()
[ "$(id -u)" -eq 0 ] || as_root=(sudo)

# Announces a long step.
step() {
    printf '\n==> %s\n' "$*"
}

# Runs a command, and shows its output only if it fails.
quietly() {
    local output status=0
    output=$("$@" 2>&1) || status=$?
    [ "$status" -eq 0 ] || printf '%s\n' "$output" >&2
    return "$status"
}

# Prints the version in a CMakeLists.txt: project_version <CMakeLists.txt
project_version() {
    sed -n 's/^project(Zephlin VERSION \([0-9.]*\).*/\1/p'
}

is_installed() {
    [ "$(dpkg-query --show --showformat='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

# Installs those of the packages that are missing.
need_packages() {
    local package missing=()
    for package in "$@"; do
        is_installed "$package" || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    if [ ${#as_root[@]} -gt 0 ] && ! command -v sudo >/dev/null; then
        echo "This needs ${missing[*]}: run it as root, or install sudo." >&2
        exit 1
    fi
    step "Installing ${missing[*]}"
    quietly "${as_root[@]}" apt-get update
    quietly "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y --no-install-recommends "${missing[@]}"
}

# To build Zephlin; further packages may follow.
need_build_packages() {
    need_packages g++ cmake ninja-build pkg-config nlohmann-json3-dev libsystemd-dev libudev-dev \
        libevdev-dev "$@"
}

# To build it with its application for desktops; further packages may follow.
need_desktop_build_packages() {
    need_build_packages qt6-base-dev qt6-base-private-dev qt6-svg-dev libwayland-dev libxcb1-dev \
        libxcb-xinput-dev libxcb-xkb-dev "$@"
}

# A desktop without a display: an X server in memory, a window manager and a panel.
need_virtual_desktop_packages() {
    need_packages xvfb xauth openbox xfce4-panel xfconf dbus-daemon libglib2.0-bin xdotool \
        imagemagick adwaita-icon-theme librsvg2-common fonts-dejavu-core
}

# A virtual machine with Debian's kernel, and what is compiled for it; and display servers that run
# in it.
need_virtual_machine_packages() {
    need_packages busybox-static cpio libxkbcommon-dev qemu-system-x86 systemd udev xkb-data \
        libwayland-dev libx11-dev seatd sway wayland-protocols weston x11-xkb-utils \
        xserver-xorg-core xserver-xorg-input-libinput xserver-xorg-video-dummy
}

# GNOME Shell with an extension for tray icons, for the label gnome.
need_gnome_packages() {
    need_packages gjs gnome-shell gnome-shell-extension-appindicator
}

# Plasma for Wayland and for X11, for the label kde.
need_kde_packages() {
    need_packages kactivitymanagerd kwin-wayland kwin-x11 plasma-desktop plasma-workspace qtwayland5
}

# To build for macOS: a compiler and a linker, LLVM's libc++ for its symbols, and npm, which downloads
# what replaces Apple's SDK.
need_macos_packages() {
    need_packages clang-16 cmake git libc++1-14 lld-16 llvm-16 ninja-build python3
    command -v npm >/dev/null || need_packages ca-certificates npm
}

# To make a release's files: both builds, the tools of RPM and Arch, and Node.js and bsdtar for the bill
# of materials.
need_release_packages() {
    need_desktop_build_packages apt-utils dpkg-dev file git gnupg libarchive-tools makepkg rpm
    command -v node >/dev/null || need_packages nodejs
    need_macos_packages
}

# For the label release.
need_release_test_packages() {
    need_release_packages
    need_packages createrepo-c diffoscope-minimal dnf faketime mmdebstrap pacman-package-manager rpmlint
}

# To build, run and check everything except for the labels gnome, kde, macos, release and vm, which
# need more.
need_test_packages() {
    need_desktop_build_packages libgtest-dev clang libclang-rt-14-dev clang-format clang-tidy \
        shellcheck git mandoc python3 python3-yaml
    need_virtual_desktop_packages
    need_packages at-spi2-core libumockdev-dev libxcb-xtest0-dev locales python3-dbusmock qt6-qpa-plugins \
        strace trayer umockdev x11-xkb-utils
    need_packages qt6-wayland sway swaybg waybar weston
    need_packages appstream appstream-compose apt-utils bash-completion desktop-file-utils dpkg-dev file \
        fish gnupg iproute2 jq lintian makepkg rpm rpmlint rubocop systemd wget zsh
}

# The rest for the label macos: GNUstep, on which the macOS body runs.
need_macos_test_packages() {
    need_packages gnustep-back0.29-cairo gobjc++ googletest libblocksruntime-dev \
        libgnustep-gui-dev python3-clang-16
    need_macos_packages
}

# Makes the replacement of Apple's SDK, unless it exists.
make_macos_sdk() {
    step "Making the replacement of Apple's SDK from two npm packages (80 MB)"
    /usr/bin/python3 -B Packaging/macOS/Toolchain/make_sdk.py
}

# shellcheck shell=bash
# Sourced by ./run and ./test: what they need on the machine, and how it gets there.

# What runs a command as root: "${as_root[@]}" COMMAND
as_root=()
if [ "$(id -u)" -ne 0 ]; then
    as_root=(sudo)
    if ! command -v sudo >/dev/null; then
        echo "This needs root: run it as root, or install sudo." >&2
        exit 1
    fi
fi

# Says which long step begins.
step() {
    printf '\n==> %s\n' "$*"
}

# Runs a command whose output matters only if it fails.
quietly() {
    local output status=0
    output=$("$@" 2>&1) || status=$?
    [ "$status" -eq 0 ] || printf '%s\n' "$output" >&2
    return "$status"
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
    step "Installing ${missing[*]}"
    quietly "${as_root[@]}" apt-get update
    quietly "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y --no-install-recommends "${missing[@]}"
}

# What building Zephlin takes; the rest of what is needed follows.
need_build_packages() {
    need_packages g++ cmake ninja-build pkg-config nlohmann-json3-dev libsystemd-dev libudev-dev \
        libevdev-dev "$@"
}

# What building its application for the desktop takes besides; the rest of what is needed follows.
need_desktop_build_packages() {
    need_build_packages qt6-base-dev qt6-svg-dev libxcb1-dev libxcb-xinput-dev libxcb-xkb-dev \
        "$@"
}

# A desktop without a display: an X server in memory, a window manager and a panel.
need_virtual_desktop_packages() {
    need_packages xvfb xauth openbox xfce4-panel xfconf dbus-daemon libglib2.0-bin xdotool \
        imagemagick adwaita-icon-theme librsvg2-common fonts-dejavu-core
}

# A virtual machine with a Debian kernel of its own, and what is compiled for it.
need_virtual_machine_packages() {
    need_packages busybox-static cpio libxkbcommon-dev qemu-system-x86 systemd udev xkb-data
}

# What builds for macOS: a compiler and a linker, LLVM's libc++ for its symbols, and npm, which brings
# what takes the place of Apple's SDK.
need_macos_packages() {
    need_packages clang-16 cmake git libc++1-14 lld-16 llvm-16 ninja-build python3
    command -v npm >/dev/null || need_packages ca-certificates npm
}

# Makes what takes the place of Apple's SDK, unless it is there already.
make_macos_sdk() {
    step "Making what takes the place of Apple's SDK, of two npm packages (80 MB)"
    /usr/bin/python3 -B Packaging/macOS/Toolchain/make_sdk.py
}

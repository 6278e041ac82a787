#!/usr/bin/env bash
# Makes what the virtual machine boots: buildImage.sh FOLDER FILE...
#
# Puts "kernel" and "initramfs" into FOLDER: Debian's kernel with the modules for USB keyboards and
# QEMU's displays, its udev, a shell, and the files with the libraries that they need. Files of the
# system keep their place; all others go into /usr/bin. The kernel's package is downloaded once, by
# apt-get, and only unpacked, in a folder beside FOLDER.
set -euo pipefail

folder=$1
shift
here=$(cd "$(dirname "$0")" && pwd)
mkdir -p "$folder" "$folder/../packages"
cd "$folder"
packages=$PWD/../packages

for program in qemu-system-x86_64 busybox cpio apt-get dpkg-deb udevadm systemd-socket-activate; do
    if ! command -v "$program" >/dev/null; then
        echo "$program is missing; install qemu-system-x86, busybox-static, cpio, udev and systemd" >&2
        exit 1
    fi
done

# Downloads and unpacks a package, unless that is done.
fetch() {
    [ -d "$packages/$1" ] && return
    (cd "$packages" && apt-get download -q -o APT::Sandbox::User="$(id -un)" "$1")
    dpkg-deb --extract "$packages/$1"_*.deb "$packages/$1.part"
    rm "$packages/$1"_*.deb
    mv "$packages/$1.part" "$packages/$1"
}

# The metapackage names the kernel that is current.
kernel=$(apt-cache depends linux-image-amd64 | sed -n 's/^ *Depends: //p' | head -n 1)
if [ -z "$kernel" ]; then
    echo "apt-get knows no linux-image-amd64; run apt-get update" >&2
    exit 1
fi
fetch "$kernel"
version=${kernel#linux-image-}

rm -rf root
mkdir -p root/{bin,dev,etc,lib,proc,run,sys,tmp,usr/bin,usr/sbin,usr/share/X11,var}
ln -s ../bin/busybox root/bin/sh
cp "$(command -v busybox)" root/bin/busybox
cp "$here/init.sh" root/init
chmod +x root/init

modules=lib/modules/$version
mkdir -p "root/$modules/kernel/drivers"
cp "$packages/$kernel/$modules"/modules.{builtin,order} "root/$modules"
(
    cd "$packages/$kernel"
    cp -r --parents "$modules"/kernel/drivers/{hid,input,usb/{common,core,host}} \
        "$modules"/kernel/drivers/{gpu/drm/{*.ko,tiny,ttm},video/fbdev/core} "$OLDPWD/root"
)
busybox depmod -b root "$version"

# Copies a file to the same place, and the libraries that it needs with it.
with_libraries() {
    local library
    for library in "$1" $(ldd "$1" 2>/dev/null | grep -o '/[^ ]*'); do
        mkdir -p "root$(dirname "$library")"
        cp -L "$library" "root$library"
    done
}

mkdir -p root/usr/lib/udev/rules.d
for tool in /usr/bin/udevadm /usr/bin/systemd-socket-activate; do
    with_libraries "$(readlink -f "$tool")"
done
cp /usr/lib/udev/rules.d/{50-udev-default,60-evdev,60-input-id}.rules root/usr/lib/udev/rules.d/
cp "$here/../../Packaging/Udev/"*.rules root/usr/lib/udev/rules.d/
cp -r /usr/share/X11/xkb root/usr/share/X11/
[ ! -d /usr/share/libinput ] || cp -r /usr/share/libinput root/usr/share/
cat >root/etc/passwd <<'END'
root:x:0:0::/:/bin/sh
zephlin:x:900:900::/:/bin/sh
END
cat >root/etc/group <<'END'
root:x:0:
input:x:104:zephlin
zephlin:x:900:
END

for file in "$@"; do
    with_libraries "$file"
    case $file in
    /usr/bin/* | /usr/sbin/* | /usr/lib/* | /usr/share/*) ;;
    *) mv "root$file" root/usr/bin/ ;;
    esac
done

# Not compressed, as unpacking takes longer than loading.
(cd root && find . | cpio --quiet --create --format=newc) >initramfs
cp "$packages/$kernel/boot/vmlinuz-$version" kernel

#!/bin/sh
# The first process of the virtual machine: carries out the lines that come over the second serial
# port, and says after each one how it ended.
export PATH=/usr/sbin:/usr/bin:/sbin:/bin
/bin/busybox --install -s /bin
mount -t proc proc /proc
mount -t sysfs sysfs /sys
mount -t devtmpfs dev /dev
mount -t tmpfs run /run
mkdir -p /run/udev /run/zephlin /dev/pts
ln -sf /proc/self/fd /dev/fd
for module in evdev uinput xhci_pci usbhid hid_generic; do
    modprobe "$module"
done
ln -sf /usr/bin/udevadm /usr/sbin/systemd-udevd
systemd-udevd --daemon
udevadm trigger --action=add --subsystem-match=input --subsystem-match=misc
udevadm settle
# Whole lines: when a child ends, the shell forgets the part of a line that it has read so far.
stty -F /dev/ttyS1 raw icanon -echo
exec </dev/ttyS1 >/dev/ttyS1 2>&1
echo "@@ready"
while IFS= read -r line; do
    [ -n "$line" ] || continue
    eval "$line"
    echo "@@$?"
done

#!/bin/sh
# Packs a Debian package of cpack's again, as Debian's tools do: finish-package.sh PACKAGE.deb
#
# cpack adds up what the file system says of its folders, and the umask is in the archive.
set -eu
umask 022
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
dpkg-deb --raw-extract "$1" "$folder/package"

# In KiB: files rounded up, and one for anything else.
size=$(cd "$folder/package" && find . -path ./DEBIAN -prune -o -type f -printf '%s\n' -o -printf '1\n' |
    awk '{ total += int(($1 + 1023) / 1024) } END { print total }')
sed -i "s/^Installed-Size: .*/Installed-Size: $size/" "$folder/package/DEBIAN/control"
dpkg-deb --root-owner-group -Zgzip --build "$folder/package" "$1" >/dev/null

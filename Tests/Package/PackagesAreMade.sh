#!/usr/bin/env bash
# Makes the Debian packages for the other tests here, and unpacks them: PackagesAreMade.sh BUILD RESULT
#
# RESULT gets zephlin.deb, zephlin-desktop.deb, and the folder "root" with the files of both.
# shellcheck source=Tests/Package/support.sh
. "$(dirname "$0")/support.sh"
build=$1
result=$2

rm -rf "$result"
mkdir -p "$result"
check "cpack makes the packages" \
    cpack --config "$build/CPackConfig.cmake" -G DEB -B "$result/cpack"
for package in zephlin zephlin-desktop; do
    mv "$result/cpack/${package}_"*.deb "$result/$package.deb"
    dpkg-deb --extract "$result/$package.deb" "$result/root"
done

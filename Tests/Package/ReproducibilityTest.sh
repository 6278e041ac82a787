#!/usr/bin/env bash
# The same programs give the same packages for everybody: ReproducibilityTest.sh PACKAGES BUILD
# shellcheck source=Tests/Package/support.sh
. "$(dirname "$0")/support.sh"
packages=$1
build=$2
# In memory, folders have other sizes than on a disk.
TMPDIR=/dev/shm make_temporary_folder

# A user who keeps files private and lives elsewhere.
umask 077
export LC_ALL=C TZ=Pacific/Chatham HOME=$temporary
check "cpack makes the packages again" \
    cpack --config "$build/CPackConfig.cmake" -G DEB -B "$temporary"
for package in zephlin zephlin-desktop; do
    check "both times, $package is the same" \
        cmp "$packages/$package.deb" "$temporary/${package}_"*.deb
done

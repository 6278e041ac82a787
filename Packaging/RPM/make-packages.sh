#!/usr/bin/env bash
# Makes the RPMs zephlin and zephlin-desktop and their source RPM of a source package, with Debian's
# rpmbuild: make-packages.sh TARBALL RESULT_FOLDER
#
# The same TARBALL and SOURCE_DATE_EPOCH, which is the time that the packages bear, give the same bytes.
set -euo pipefail
tarball=$(realpath "$1")
result=$(realpath "$2")
here=$(realpath "$(dirname "$0")")
: "${SOURCE_DATE_EPOCH:?is the time of the last change, in seconds since 1970}"
version=${tarball##*/zephlin-}
version=${version%.tar.gz}

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder"
# The user's own ~/.rpmmacros shall not count.
export SOURCE_DATE_EPOCH HOME=$folder LC_ALL=C.UTF-8
unset XDG_CONFIG_HOME

mkdir SOURCES
cp "$tarball" SOURCES
date=$(date --utc --date="@$SOURCE_DATE_EPOCH" '+%a %b %d %Y')
sed -e "s/@VERSION@/$version/" -e "s/@DATE@/$date/" "$here/zephlin.spec.in" >zephlin.spec

# Debian knows the build's requirements under other names.
build() {
    rpmbuild --nodeps --load "$here/debian.macros" "$@" >log 2>&1 || {
        cat log >&2
        exit 1
    }
}
# The source RPM holds the paths of the folders, which are therefore relative; a build needs full ones.
build -bs --define '_topdir .' zephlin.spec
# As whoever has another Qt does.
build --rebuild --define "_topdir $folder" SRPMS/*.src.rpm
install --mode 644 RPMS/*/*.rpm SRPMS/*.rpm "$result"

#!/usr/bin/env bash
# Makes the RPMs zephlin and zephlin-desktop and their source RPM of a source package, with Debian's
# rpmbuild: make-packages.sh TARBALL RESULT_FOLDER
#
# The same TARBALL and SOURCE_DATE_EPOCH, which is the time that the packages bear, give the same bytes.
set -euo pipefail
tarball=$(realpath "$1")
result=$(realpath "$2")
cd "$(dirname "$0")"
: "${SOURCE_DATE_EPOCH:?is the time of the last change, in seconds since 1970}"
version=${tarball##*/zephlin-}
version=${version%.tar.gz}

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
# The user's own ~/.rpmmacros shall not count.
export SOURCE_DATE_EPOCH HOME=$folder LC_ALL=C.UTF-8
unset XDG_CONFIG_HOME

mkdir "$folder/SOURCES"
cp "$tarball" "$folder/SOURCES"
date=$(date --utc --date="@$SOURCE_DATE_EPOCH" '+%a %b %d %Y')
sed -e "s/@VERSION@/$version/" -e "s/@DATE@/$date/" zephlin.spec.in >"$folder/zephlin.spec"

# Debian knows the build's requirements under other names.
rpmbuild -ba --nodeps --load "$PWD/debian.macros" --define "_topdir $folder" \
    "$folder/zephlin.spec" >"$folder/log" 2>&1 || {
    cat "$folder/log" >&2
    exit 1
}
install --mode 644 "$folder"/{RPMS/*,SRPMS}/*.rpm "$result"

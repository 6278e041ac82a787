#!/usr/bin/env bash
# The RPMs, as rpmlint and rpmbuild see them: RpmPackagesTest.sh RELEASE_FILES
# shellcheck source=Tests/Package/support.sh
. "$(dirname "$0")/../Package/support.sh"
release=$(realpath "$1")
make_temporary_folder

lint() {
    rpmlint --strict --config "$source_folder/Packaging/RPM/rpmlint.toml" "$release"/*.rpm
}
check "rpmlint finds nothing in the packages" lint

query() {
    rpm --query --package "$@" | LC_ALL=C sort
}
version=$(rpm --query --package --queryformat '%{version}' "$release"/zephlin-*.src.rpm)
for package in "$release"/zephlin-"$version"-*.x86_64.rpm; do
    check_same "zephlin needs nothing of the desktop" "" \
        "$(query --requires "$package" | grep -iE 'qt|xcb|wayland' || true)"
    check_same "it needs no newer C library than Debian 12's" "" \
        "$(query --requires "$package" | sed -n 's/^libc.so.6(GLIBC_\(.*\))(64bit)$/\1/p' |
            sort --version-sort | sed -n '/^2.36$/,$p' | sed 1d)"
    check_same "nothing is in Debian's folders" "" \
        "$(query --list "$package" | grep -E 'vendor-completions|lintian|x86_64-linux-gnu' || true)"
done

# Whoever has another Qt rebuilds the source package.
mkdir "$temporary/home"
check "the source package can be rebuilt" env HOME="$temporary/home" \
    SOURCE_DATE_EPOCH="$(rpm --query --package --queryformat '%{buildtime}' "$release"/zephlin-*.src.rpm)" \
    rpmbuild --rebuild --nodeps --load "$source_folder/Packaging/RPM/debian.macros" \
    --define "_topdir $temporary" "$release"/zephlin-*.src.rpm
for package in "$release"/*.x86_64.rpm; do
    check "it gives the same ${package##*/}" cmp "$package" "$temporary/RPMS/x86_64/${package##*/}"
done

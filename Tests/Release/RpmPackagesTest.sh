#!/usr/bin/env bash
# What is in the RPMs: RpmPackagesTest.sh RELEASE_FILES
# shellcheck source=Tests/Package/support.sh
. "$(dirname "$0")/../Package/support.sh"
release=$(realpath "$1")

lint() {
    rpmlint --strict --config "$source_folder/Packaging/RPM/rpmlint.toml" "$release"/*.rpm
}
check "rpmlint finds nothing in the packages" lint

requirements() {
    rpm --query --package --requires "$1"
}
# At least 2.36, so that an older one counts as that.
newest_c_library() {
    { echo 2.36 && requirements "$1" | sed -n 's/^libc.so.6(GLIBC_\(.*\))(64bit)$/\1/p'; } |
        sort --version-sort | tail -n 1
}
for package in "$release"/*.x86_64.rpm; do
    name=$(rpm --query --package --queryformat '%{name}' "$package")
    check_same "$name needs no newer C library than Debian 12's" 2.36 "$(newest_c_library "$package")"
    check_same "$name has nothing in Debian's folders" "" \
        "$(rpm --query --package --list "$package" |
            grep -E 'vendor-completions|lintian|x86_64-linux-gnu' || true)"
    [ "$name" = zephlin ] || continue
    check_same "$name needs nothing of the desktop" "" \
        "$(requirements "$package" | grep -iE 'qt|xcb|wayland' || true)"
done

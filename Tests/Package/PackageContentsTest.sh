#!/usr/bin/env bash
# What is in the Debian packages, as Debian's own checkers see it: PackageContentsTest.sh PACKAGES
# shellcheck source=Tests/Package/support.sh
. "$(dirname "$0")/support.sh"
packages=$1
root=$packages/root

# Packaging/Debian/*.lintian-overrides explain the exceptions; lintian reports unused ones too.
lint() {
    lintian --allow-root --fail-on error,warning,info,pedantic --display-info --pedantic \
        --tag-display-limit 0 "$packages"/*.deb
}
check "lintian finds nothing in the packages" lint

check "the desktop file is valid" \
    desktop-file-validate "$root/usr/share/applications/com.quorvenel.zephlin.desktop"
check "the software centre's description is valid" \
    appstreamcli validate --no-net "$root/usr/share/metainfo/com.quorvenel.zephlin.metainfo.xml"

version() {
    dpkg-deb --field "$packages/$1.deb" Version
}
newest_change() {
    zcat "$root/usr/share/doc/$1/changelog.gz" | dpkg-parsechangelog --file - --show-field Version
}
for package in zephlin zephlin-desktop; do
    check_same "the changelog of $package is that of its version" \
        "$(version "$package")" "$(newest_change "$package")"
done
check_same "zephlin needs nothing of the desktop" "" \
    "$(dpkg-deb --field "$packages/zephlin.deb" Depends | tr , '\n' | grep -E 'qt|xcb' || true)"
check_same "zephlin-desktop needs no network" "" \
    "$(dpkg-deb --field "$packages/zephlin-desktop.deb" Depends | tr , '\n' | grep network || true)"

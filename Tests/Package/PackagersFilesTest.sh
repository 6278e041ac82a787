#!/usr/bin/env bash
# What rpmbuild and makepkg read, without building anything: PackagersFilesTest.sh VERSION
# shellcheck source=Tests/Package/support.sh
. "$(dirname "$0")/support.sh"
version=$1
make_temporary_folder
recipe=$temporary/zephlin.spec
sed -e "s/@VERSION@/$version/" \
    -e "s/@DATE@/$(LC_ALL=C date --utc '+%a %b %d %Y')/" \
    "$source_folder/Packaging/RPM/zephlin.spec.in" >"$recipe"

check_same "rpmlint finds nothing in the recipe for rpmbuild" "0 packages and 1 specfiles checked; 0 errors, 0 warnings" \
    "$(rpmlint --config "$source_folder/Packaging/RPM/rpmlint.toml" "$recipe" |
        sed -n 's/^ *\([0-9]* packages.* warnings\).*/\1/p')"

# What rpm makes of it for another distribution: recipe_for OPTION...
recipe_for() {
    rpmspec --parse --load "$source_folder/Packaging/RPM/debian.macros" "$@" "$recipe"
}
check_same "Fedora's package of Qt is required in the version of the build" \
    "Requires:       qt6-qtbase(x86-64) = $(pkg-config --modversion Qt6Gui)" \
    "$(recipe_for | grep '^Requires: *qt6-qtbase(')"
check_same "so is openSUSE's" \
    "Requires:       libQt6Gui6(x86-64) = $(pkg-config --modversion Qt6Gui)" \
    "$(recipe_for --define 'suse_version 1600' | grep '^Requires: *libQt6Gui6(')"
check_same "the build's requirements can be read where there is no Qt yet" \
    "Requires:       qt6-qtbase(x86-64) = 0" \
    "$(PKG_CONFIG_LIBDIR=$temporary recipe_for | grep '^Requires: *qt6-qtbase(')"

tarball=$temporary/zephlin-$version.tar.gz
echo "not looked at" >"$tarball"
mkdir "$temporary/arch"
check "the PKGBUILD is made" "$source_folder/Packaging/Arch/make-pkgbuild.sh" "$tarball" "$temporary/arch"
check "it is shell code" bash -n "$temporary/arch/PKGBUILD"
source_of_arch() {
    sed -n "s/^\t$1 = //p" "$temporary/arch/SRCINFO"
}
check_same "its version is the project's" "$version" "$(source_of_arch pkgver)"
check_same "its source is that of the version" \
    "https://quorvenel.example/zephlin/releases/$version/zephlin-$version.tar.gz" "$(source_of_arch source)"
check_same "its hash is that of the source" "$(sha256sum <"$tarball" | cut -d ' ' -f 1)" \
    "$(source_of_arch sha256sums)"

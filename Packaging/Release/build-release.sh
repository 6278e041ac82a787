#!/usr/bin/env bash
# Makes a release's files from its sources, beside their tarball: build-release.sh TARBALL
#
# make-release.sh calls it in the unpacked tarball, with an environment that is the same everywhere.
set -euo pipefail
tarball=$(realpath "$1")
files=$(dirname "$tarball")
cd "$(dirname "$0")/../.."
# shellcheck source=Packaging/Scripts/packages.sh
. Packaging/Scripts/packages.sh
version=$(project_version <CMakeLists.txt)
archive=$files/Zephlin-$version-macos.zip

step "Building the Debian packages"
quietly cmake --preset release -DBUILD_TESTING=OFF
cmake --build --preset release
(cd build/release && quietly cpack -G DEB)
mv build/release/zephlin*.deb "$files/"

step "Building Zephlin.app"
Packaging/macOS/build-archive.sh "$archive"

step "Making the Homebrew cask"
Packaging/macOS/make-cask.sh "$archive" "$version" "$files/zephlin.rb"

step "Building the RPM packages"
Packaging/RPM/make-packages.sh "$tarball" "$files"

step "Making the PKGBUILD"
Packaging/Arch/make-pkgbuild.sh "$tarball" "$files"

step "Writing the bill of materials, the release notes and the checksums"
# Beside the folder, whose files they list.
unlisted=$(mktemp -d)
trap 'rm -rf "$unlisted"' EXIT
node Packaging/Release/BillOfMaterials/make.mjs "$files" "$version" \
    "$unlisted/zephlin-$version.cdx.json"
mv "$unlisted"/*.json "$files/"
Packaging/Release/make-release-notes.sh "$version" >"$files/release-notes.md"
(cd "$files" && sha256sum -- * >"$unlisted/SHA256SUMS")
mv "$unlisted/SHA256SUMS" "$files/"

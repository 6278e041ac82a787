#!/usr/bin/env bash
# Makes the files of a release from the last commit: make-release.sh RESULT_FOLDER
#
# Nothing comes from the working copy, except what was downloaded. RESULT_FOLDER is replaced at the end,
# when all files are there. The same commit gives the same bytes wherever, whenever and by whomever they
# are made, with the same versions of the compilers and tools.
set -euo pipefail
result=$(realpath --canonicalize-missing "$1")
cd "$(dirname "$0")/../.."
# shellcheck source=Packaging/Scripts/packages.sh
. Packaging/Scripts/packages.sh

umask 022
[ -z "$(git status --porcelain)" ] ||
    echo "Warning: there are uncommitted changes; the release is made without them." >&2
mkdir -p "$(dirname "$result")"
work=$(mktemp -d "$result.XXXXXX")
trap 'rm -rf "$work"' EXIT
mkdir "$work/files" "$work/home"

make_macos_sdk
step "Fetching the tool that writes the bill of materials"
Packaging/Release/fetch-tools.sh build/release-tools

step "Packing the sources"
version=$(git show HEAD:CMakeLists.txt | project_version)
tarball=$(Packaging/Scripts/make-source-package.sh "$version" "$work/files")
tar --extract --file "$tarball" --directory "$work"
sources=$work/zephlin-$version
mkdir -p "$sources/build/macos-sdk/packages"
cp build/macos-sdk/packages/*.tgz "$sources/build/macos-sdk/packages/"
cp -r build/release-tools "$sources/build/"

# The user's settings must not change the files.
env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME="$work/home" LC_ALL=C.UTF-8 TZ=UTC \
    SOURCE_DATE_EPOCH="$(git log -1 --format=%ct)" \
    "$sources/Packaging/Release/build-release.sh" "$tarball"

rm -rf "$result"
mv "$work/files" "$result"

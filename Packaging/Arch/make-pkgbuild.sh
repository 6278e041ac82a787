#!/usr/bin/env bash
# Writes PKGBUILD, zephlin.install and SRCINFO (to be published as .SRCINFO) for a source package, with
# Debian's makepkg: make-pkgbuild.sh TARBALL RESULT_FOLDER
set -euo pipefail
tarball=$(realpath "$1")
result=$(realpath "$2")
cd "$(dirname "$0")"
version=${tarball##*/zephlin-}
version=${version%.tar.gz}
hash=$(sha256sum <"$tarball" | cut -d ' ' -f 1)

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
sed -e "s/@VERSION@/$version/" -e "s/@SHA256@/$hash/" PKGBUILD.in >"$folder/PKGBUILD"
cp zephlin.install "$folder"

# makepkg refuses to run as root, also to print.
as_user=()
if [ "$(id -u)" -eq 0 ]; then
    chmod -R a+rX,a+w "$folder"
    as_user=(setpriv --reuid=nobody --regid=nogroup --clear-groups)
fi
(cd "$folder" && HOME=$folder "${as_user[@]}" makepkg --printsrcinfo >"$folder/SRCINFO")
install --mode 644 "$folder"/{PKGBUILD,SRCINFO,zephlin.install} "$result"

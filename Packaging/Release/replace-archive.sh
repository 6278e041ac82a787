#!/usr/bin/env bash
# Puts a signed archive of Zephlin.app into a release, instead of the one that was built on Linux, and
# renews what describes it: the cask, the bill of materials and the checksums.
#
#   replace-archive.sh FOLDER Zephlin-VERSION-macos.zip
set -euo pipefail
folder=$1
archive=$2
name=$(basename "$archive")
version=${name#Zephlin-}
version=${version%-macos.zip}
here=$(dirname "$0")

cp "$archive" "$folder/"
"$here/../macOS/make-cask.sh" "$archive" "$version" "$folder/zephlin.rb"

# The bill describes the archive that was built on Linux. SHA256SUMS has the hashes.
bill=$folder/zephlin-$version.cdx.json
renewed=$(jq --arg archive "$name" '
    (.components[] | select(.name == $archive)) |= del(.components, .hashes)
    | (.components[] | select(.name == "zephlin.rb")) |= del(.hashes)
    | .dependencies |= map(select(.ref | startswith($archive + "#") | not))' "$bill")
printf '%s\n' "$renewed" >"$bill"

cd "$folder"
rm SHA256SUMS
checksums=$(LC_ALL=C.UTF-8 sha256sum -- *)
printf '%s\n' "$checksums" >SHA256SUMS

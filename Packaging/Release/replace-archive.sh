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

hash_of() {
    sha256sum <"$folder/$1" | cut -d ' ' -f 1
}

cp "$archive" "$folder/"
"$here/../macOS/make-cask.sh" "$archive" "$version" "$folder/zephlin.rb"

# What is known of the programs in the archive describes those that were built on Linux.
bill=$folder/zephlin-$version.cdx.json
renewed=$(jq --arg archive "$name" --arg hash "$(hash_of "$name")" --arg cask_hash "$(hash_of zephlin.rb)" '
    (.components[] | select(.name == $archive)) |= (del(.components) | .hashes[0].content = $hash)
    | (.components[] | select(.name == "zephlin.rb")).hashes[0].content = $cask_hash
    | .dependencies |= map(select(.ref | startswith($archive + "#") | not))' "$bill")
printf '%s\n' "$renewed" >"$bill"

cd "$folder"
rm SHA256SUMS
checksums=$(LC_ALL=C.UTF-8 sha256sum -- *)
printf '%s\n' "$checksums" >SHA256SUMS

#!/usr/bin/env bash
# Makes the Homebrew cask that installs an archive of Zephlin.app.
#
#   make-cask.sh ARCHIVE.zip VERSION RESULT
set -euo pipefail
archive=$1
version=$2
result=$3

# Homebrew must know which applications update themselves.
if python3 -m zipfile --list "$archive" | grep -q Sparkle.framework; then
    echo "make-cask.sh: $archive has an updater, so the cask needs \"auto_updates true\"" >&2
    exit 1
fi
hash=$(sha256sum "$archive")
sed -e "s/@VERSION@/$version/" -e "s/@SHA256@/${hash%% *}/" "$(dirname "$0")/zephlin.rb.in" >"$result"

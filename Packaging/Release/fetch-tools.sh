#!/usr/bin/env bash
# Fetches the npm packages in BillOfMaterials/package-lock.json, which has their versions and hashes,
# into a folder, unless they are there: fetch-tools.sh FOLDER
set -euo pipefail
lists=$(cd "$(dirname "$0")/BillOfMaterials" && pwd)
mkdir -p "$1"
cd "$1"
# npm puts its own list into node_modules at the end.
if [ node_modules/.package-lock.json -nt "$lists/package-lock.json" ] &&
    cmp --quiet "$lists/package-lock.json" package-lock.json; then
    exit
fi
cp "$lists/package.json" "$lists/package-lock.json" .
npm ci --ignore-scripts --no-audit --no-fund --silent

#!/usr/bin/env bash
# Builds Zephlin.app on Linux and packs it: build-archive.sh ARCHIVE.zip
#
# It needs build/macos-sdk, or npm to make it. SOURCE_DATE_EPOCH is the time of the files in it.
set -euo pipefail
archive=$(realpath "$1")
cd "$(dirname "$0")/../.."
cmake --preset macos-cross -DBUILD_TESTING=OFF >/dev/null
cmake --build --preset macos-cross --target Zephlin
/usr/bin/python3 -B Packaging/macOS/make-archive.py build/macos-cross/bin/Zephlin.app "$archive"

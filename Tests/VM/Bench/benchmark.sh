#!/usr/bin/env bash
# Runs the benchmark of keys: benchmark.sh IMAGES BENCHMARK FILE...
#
# Makes the images again, with the files and those of the other programs that are installed, and
# names those that are not.
set -euo pipefail

images=$1
benchmark=$2
shift 2
files=("$@")

# Adds the programs of a Debian package: add PACKAGE PROGRAM...
add() {
    local package=$1
    shift
    if [ -x "$1" ]; then
        files+=("$@")
    elif [ -n "$(apt-cache policy "$package")" ]; then
        echo "$package: not installed; to compare with it, run apt-get install $package"
    else
        echo "$package: not packaged here"
    fi
}

add interception-tools /usr/bin/interception /usr/bin/uinput /usr/bin/nice
add interception-caps2esc /usr/bin/caps2esc
add keyd /usr/bin/keyd
"$(dirname "$0")/../buildImage.sh" "$images" "${files[@]}"
exec "$benchmark"

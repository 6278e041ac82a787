#!/usr/bin/env bash
# Installs into an empty folder, without a package, and runs the programs from there:
# InstallTreeTest.sh PACKAGES BUILD
# shellcheck source=Tests/Package/support.sh
. "$(dirname "$0")/support.sh"
packages=$1
build=$2
make_temporary_folder
folder=$temporary/zephlin
export HOME=$temporary/home XDG_RUNTIME_DIR=$temporary/run
mkdir -p "$HOME" "$XDG_RUNTIME_DIR"
unset XDG_CONFIG_HOME XDG_DATA_HOME DISPLAY WAYLAND_DISPLAY
# There must be no bus of another session.
export DBUS_SESSION_BUS_ADDRESS=unix:path=/nowhere

cmake --install "$build" --prefix "$folder" >"$temporary/log"
check_same "everything goes into the folder" "" \
    "$(sed -n 's/^-- \(Installing\|Up-to-date\): //p' "$temporary/log" | grep -v "^$folder/" || true)"
files() {
    (cd "$1" && find . ! -type d | sort)
}
check_same "the folder holds what the packages hold" \
    "$(files "$packages/root/usr")" "$(files "$folder")"

version=$(dpkg-deb --field "$packages/zephlin.deb" Version)
check_programs() {
    check_same "hidutil runs from $1" "hidutil (Zephlin) $version" "$("$1/bin/hidutil" --version)"
    check_same "zephlin-hidd runs from $1" "zephlin-hidd (Zephlin) $version" \
        "$("$1/sbin/zephlin-hidd" --version)"
    check "Zephlin runs from $1" "$1/bin/Zephlin" help

    # The application draws a picture of its tap test and quits.
    rm -f "$temporary"/picture.png "$temporary"/loader.*
    check "the application runs from $1" env QT_QPA_PLATFORM=offscreen \
        ZEPHLIN_PREVIEW=taptest ZEPHLIN_PREVIEW_OUT="$temporary/picture.png" \
        LD_DEBUG=files LD_DEBUG_OUTPUT="$temporary/loader" "$1/bin/Zephlin"
    check "it has drawn the picture" [ -s "$temporary/picture.png" ]
    check_same "its module is the one in $1" "$(realpath "$1"/lib/*/zephlin/Zephlin.app)" \
        "$(sed -n 's/^.*calling init: \(.*\)\/libzephlin-desktop\.so$/\1/p' "$temporary"/loader.*)"
}
check_programs "$folder"
mv "$folder" "$temporary/elsewhere"
check_programs "$temporary/elsewhere"

#!/usr/bin/env bash
# Types everything that README.md tells a user of Linux to type, in its order: ReadmeTest.sh PACKAGES
#
# The release is served from this machine, and the clone is this one.
# shellcheck source=Tests/Package/readme.sh
. "$(dirname "$0")/readme.sh"

make_machine /
prepare_apt
use_no_other_repository
make_key "Zephlin archive <zephlin@quorvenel.example>"
serve_release "$1/zephlin.deb" "$1/zephlin-desktop.deb"
type_readme ""
check_nothing_is_left

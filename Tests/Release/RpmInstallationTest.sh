#!/usr/bin/env bash
# The life of the RPMs in a root of rpm's own making: RpmInstallationTest.sh RELEASE_FILES
#
# This needs root; ./test uses sudo.
# shellcheck source=Tests/Package/support.sh
. "$(dirname "$0")/../Package/support.sh"
# shellcheck source=Packaging/Scripts/packages.sh
. "$source_folder/Packaging/Scripts/packages.sh"

exec "${as_root[@]}" unshare --mount --propagation private \
    "$source_folder/Tests/Release/lifeOfTheRpms.sh" "$(realpath "$1")"

#!/usr/bin/env bash
# The life of the packages on a machine: InstallationTest.sh PACKAGES
#
# The machine is this one behind an overlay, which keeps all changes in memory and ends with the test.
# This needs root; ./test uses sudo.
# shellcheck source=Tests/Package/support.sh
. "$(dirname "$0")/support.sh"
# shellcheck source=Packaging/Scripts/packages.sh
. "$source_folder/Packaging/Scripts/packages.sh"

exec "${as_root[@]}" unshare --mount --propagation private \
    "$source_folder/Tests/Package/lifeOfThePackages.sh" "$1"

#!/usr/bin/env bash
# Another user elsewhere, next year, makes the same release: ReleaseIsReproducible.sh RELEASE_FILES
#
# The other user's machine is this one with an overlay over /etc, which ends with the test. This needs
# root; ./test uses sudo.
# shellcheck source=Tests/Package/support.sh
. "$(dirname "$0")/../Package/support.sh"
# shellcheck source=Packaging/Scripts/packages.sh
. "$source_folder/Packaging/Scripts/packages.sh"

make_temporary_folder
chmod 755 "$temporary"
"${as_root[@]}" unshare --mount --propagation private \
    "$source_folder/Tests/Release/releaseOfAnotherUser.sh" "$temporary" "$(realpath "$1")"

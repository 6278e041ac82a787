#!/usr/bin/env bash
# The source package: what is in it, and that it builds: SourcePackageTest.sh VERSION
# shellcheck source=Tests/Package/support.sh
. "$(dirname "$0")/support.sh"
name=zephlin-$1
make_temporary_folder
make_package=$source_folder/Packaging/Scripts/make-source-package.sh

mkdir "$temporary/once" "$temporary/again"
check "the source package is made" "$make_package" "$1" "$temporary/once"
check "it is made again" "$make_package" "$1" "$temporary/again"
check "both are the same" cmp "$temporary/once/$name.tar.gz" "$temporary/again/$name.tar.gz"

tar --extract --file "$temporary/once/$name.tar.gz" --directory "$temporary"
check_same "it holds what git tracks except for released packages, and nothing else" \
    "$(git -C "$source_folder" ls-tree -r --name-only HEAD |
        grep -v '^Tests/Package/Released/' | LC_ALL=C sort)" \
    "$(cd "$temporary/$name" && find . ! -type d | sed 's|^\./||' | LC_ALL=C sort)"

# Building it must not need git.
mkdir "$temporary/bin"
printf '#!/bin/sh\necho "git is called" >&2\nexit 1\n' >"$temporary/bin/git"
chmod +x "$temporary/bin/git"
export PATH=$temporary/bin:$PATH
check "it is configured without git" \
    cmake -S "$temporary/$name" -B "$temporary/build" -G Ninja -DCMAKE_BUILD_TYPE=Release
check "it builds without git" \
    cmake --build "$temporary/build" --target Zephlin
check "what it has built runs" "$temporary/build/bin/Zephlin" help

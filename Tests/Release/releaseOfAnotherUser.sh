#!/usr/bin/env bash
# Makes a release as another user would, and compares it: releaseOfAnotherUser.sh FOLDER RELEASE_FILES,
# run as root in a mount namespace of its own (ReleaseIsReproducible.sh).
# shellcheck source=Tests/Package/support.sh
. "$(dirname "$0")/../Package/support.sh"
folder=$1
release_files=$2

# In memory, where folders list their files in another order than on a disk.
mount -t tmpfs -o mode=755 none "$folder"
clone=$folder/far/away/from/home/clone
mkdir -p "$folder/etc" "$folder/work" "$folder/home" "$folder/far/away/from/home"

# The user exists, and may change the clock of every program.
mount -t overlay -o "lowerdir=/etc,upperdir=$folder/etc,workdir=$folder/work" none /etc
mount -t tmpfs -o mode=1777 none /dev/shm
echo "another:x:12345:12345::$folder/home:/bin/sh" >>/etc/passwd
echo "another:x:12345:" >>/etc/group
echo "+400d" >/etc/faketimerc
touch /etc/ld.so.preload
chown another /etc/ld.so.preload

check "the sources are cloned" git -c safe.directory='*' clone --no-local "$source_folder" "$clone"
# What was downloaded and checked once.
mkdir -p "$clone/build/macos-sdk/packages"
cp "$source_folder"/build/macos-sdk/packages/*.tgz "$clone/build/macos-sdk/packages/"
cp -r "$source_folder/build/release-tools" "$clone/build/"
chown -R another:another "$clone" "$folder/home"

# shellcheck disable=SC2016
setpriv --reuid=another --regid=another --clear-groups \
    env -i HOME="$folder/home" PATH="$PATH" LC_ALL=C TZ=Pacific/Chatham CFLAGS=-O0 \
    bash -euc '
        umask 077
        cd "$1"
        echo /usr/lib/*/faketime/libfaketimeMT.so.1 >/etc/ld.so.preload
        printf "It is now %s\n" "$(date)"
        Packaging/Release/make-release.sh build/release-files' bash "$clone"
echo -n >/etc/ld.so.preload

check_same "both releases have the same files" "$(ls "$release_files")" \
    "$(ls "$clone/build/release-files")"
different=()
for file in "$release_files"/*; do
    name=$(basename "$file")
    printf 'comparing %s\n' "$name"
    cmp --quiet "$file" "$clone/build/release-files/$name" && continue
    different+=("$name")
    [ "$name" = SHA256SUMS ] ||
        diffoscope --max-report-size 20000 "$file" "$clone/build/release-files/$name" || true
done
[ ${#different[@]} -eq 0 ] || fail "these files differ: ${different[*]}"

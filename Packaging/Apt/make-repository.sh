#!/usr/bin/env bash
# Makes or extends the signed apt repository: make-repository.sh FOLDER KEY_ID DEB...
#
# FOLDER holds what https://quorvenel.example/zephlin serves: the repository "apt" with every package
# that was ever added, the public key zephlin-archive-keyring.asc, and zephlin.sources, which tells apt
# about both. GNUPGHOME has the key.
#
# The same packages, key and SOURCE_DATE_EPOCH give the same bytes, if the key signs like RSA and
# Ed25519 without random numbers.
set -euo pipefail
umask 022
export LC_ALL=C.UTF-8

if [ $# -lt 3 ]; then
    sed -n '2s/^# //p' "$0" >&2
    exit 64
fi
folder=$1
key=$2
shift 2
here=$(cd "$(dirname "$0")" && pwd)

if ! gpg --batch --quiet --list-secret-keys "$key" >/dev/null 2>&1; then
    cat >&2 <<TEXT
There is no secret key $key in ${GNUPGHOME:-$HOME/.gnupg}. This makes one that signs for five years:
    gpg --quick-generate-key 'Zephlin archive <zephlin@quorvenel.example>' ed25519 sign 5y
TEXT
    exit 1
fi

# A signature cannot be older than its key.
key_time=$(gpg --batch --with-colons --list-secret-keys "$key" |
    awk -F : '$1 == "sec" { print $6 }')
now=${SOURCE_DATE_EPOCH:-$(date +%s)}
now=$((now > key_time ? now : key_time))

# gpg warns of the time that it is given, so its messages are only shown if it fails.
sign() {
    local messages
    messages=$(gpg --batch --local-user "$key" --digest-algo SHA512 --faked-system-time "$now!" \
        "$@" 2>&1) || {
        printf '%s\n' "$messages" >&2
        exit 1
    }
}

# Older packages stay, so that whoever has one can go back to it.
mkdir -p "$folder/apt"
for package in "$@"; do
    name=$(dpkg-deb --field "$package" Package)
    version=$(dpkg-deb --field "$package" Version)
    target=$folder/apt/pool/main/z/zephlin/${name}_${version}_amd64.deb
    if [ ! -e "$target" ]; then
        install -D --mode=644 "$package" "$target"
    elif ! cmp --silent "$package" "$target"; then
        echo "The repository already has another $name $version. What is published does not change:" \
            "give the new package a higher version." >&2
        exit 1
    fi
done

cd "$folder/apt"
lists=dists/stable/main/binary-amd64
rm -rf dists
mkdir -p "$lists"
index() {
    apt-ftparchive -o APT::FTPArchive::MD5=false -o APT::FTPArchive::SHA1=false "$@"
}
index --arch amd64 packages pool >"$lists/Packages"
gzip --best --no-name --keep "$lists/Packages"
index \
    -o APT::FTPArchive::Release::Origin=Zephlin \
    -o APT::FTPArchive::Release::Label=Zephlin \
    -o APT::FTPArchive::Release::Suite=stable \
    -o APT::FTPArchive::Release::Codename=stable \
    -o APT::FTPArchive::Release::Components=main \
    -o APT::FTPArchive::Release::Architectures=amd64 \
    -o "APT::FTPArchive::Release::Date=$(date --utc --rfc-email --date="@$now")" \
    release dists/stable >Release
mv Release dists/stable/
sign --output dists/stable/InRelease --clear-sign dists/stable/Release
sign --output dists/stable/Release.gpg --armor --detach-sign dists/stable/Release

gpg --batch --armor --export-options export-minimal --export "$key" >../zephlin-archive-keyring.asc
cp "$here/zephlin.sources" ../

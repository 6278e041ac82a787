#!/usr/bin/env bash
# The apt repository, and that apt trusts only what its key signed: AptRepositoryTest.sh PACKAGES
# shellcheck source=Tests/Package/repository.sh
. "$(dirname "$0")/repository.sh"
packages=$1

make_machine /
prepare_apt
use_no_other_repository
make_key "Zephlin archive <zephlin@quorvenel.example>"
make_repository=$source_folder/Packaging/Apt/make-repository.sh
age_package "$packages/zephlin.deb" "$machine/tmp/older.deb"
present=$(version_of "$packages/zephlin.deb")

printf '\n== Making it\n'
output=$("$make_repository" "$site" nobody "$packages/zephlin.deb" 2>&1) && fail "no key is needed"
make_one=$(sed -n 's/^ *\(gpg .*\)/\1/p' <<<"$output")
check "a missing key is named, with the command that makes one" grep "no secret key nobody" <<<"$output"
mkdir --mode=700 /mnt/new-keys
check "that command makes one" env GNUPGHOME=/mnt/new-keys \
    bash -c "${make_one/gpg/gpg --batch --passphrase \'\'}"

publish "$machine/tmp/older.deb"
publish "$packages"/*.deb
export SOURCE_DATE_EPOCH=2000000000
publish "$packages/zephlin.deb"
(umask 077 && "$make_repository" /mnt/again zephlin@quorvenel.example \
    "$packages"/zephlin-desktop.deb "$packages/zephlin.deb" "$machine/tmp/older.deb")
check "the same packages, key and time give the same bytes" diff -r "$site" /mnt/again
cp "$packages/zephlin.deb" /mnt/other.deb
echo >>/mnt/other.deb
output=$("$make_repository" "$site" zephlin@quorvenel.example /mnt/other.deb 2>&1) &&
    fail "a published package changes"
check_same "a published package does not change" "The repository already has another zephlin $present. \
What is published does not change: give the new package a higher version." "$output"

printf '\n== Trusting it\n'
add_repository
apt_does update
check_same "it has both versions" "0.0.1
$present" "$(on_machine apt-cache madison zephlin | cut -d '|' -f 2 | tr -d ' ' | sort)"
apt_does install --download-only zephlin

# Changes the repository so that apt must not use it any more: refused WHAT REASON COMMAND...
refused() {
    local what=$1 reason=$2 output
    shift 2
    rm -rf "${site:?}"/*
    cp -a /mnt/again/. "$site"
    rm -rf "$machine"/var/lib/apt/lists/* "$machine"/var/cache/apt/archives/*.deb
    (cd "$site/apt" && "$@")
    printf 'checking that %s is refused\n' "$what"
    if output=$(on_machine apt-get update 2>&1 &&
        on_machine apt-get install --download-only zephlin 2>&1); then
        fail "apt accepts $what"
    fi
    grep --quiet "$reason" <<<"$output" || fail "apt refuses $what with another reason: $output"
}

# Signs the repository with another key.
sign_otherwise() {
    rm dists/stable/InRelease dists/stable/Release.gpg
    GNUPGHOME=/mnt/new-keys gpg --batch --quiet --output dists/stable/InRelease \
        --clear-sign dists/stable/Release
}
alter_packages() {
    sed -i 's/^Section: .*/Section: games/' dists/stable/main/binary-amd64/Packages
    gzip --force --keep dists/stable/main/binary-amd64/Packages
}

refused "a repository without a signature" "is not signed" \
    rm dists/stable/InRelease dists/stable/Release.gpg
refused "a repository signed by somebody else" "NO_PUBKEY" sign_otherwise
refused "an altered list of files" "BADSIG" \
    sed -i 's/^Label: .*/Label: Other/' dists/stable/InRelease
refused "an altered list of packages" "Hash Sum mismatch\|unexpected size" \
    alter_packages
refused "an altered package" "Hash Sum mismatch\|unexpected size" \
    cp /mnt/other.deb "pool/main/z/zephlin/zephlin_${present}_amd64.deb"

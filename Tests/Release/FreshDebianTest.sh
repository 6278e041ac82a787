#!/usr/bin/env bash
# Types README.md's commands on a fresh Debian 12, and looks at what is left: FreshDebianTest.sh
# RELEASE_FILES
#
# Debian and what the packages need are downloaded as this machine's apt does it.
# shellcheck disable=SC2034
needs_network=yes
# shellcheck source=Tests/Package/readme.sh
. "$(dirname "$0")/../Package/readme.sh"

root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
chmod 755 "$root"
sources=()
for file in /etc/apt/sources.list /etc/apt/sources.list.d/debian.sources; do
    [ ! -s "$file" ] || sources+=("$file")
done
apt-config dump --format '%F "%v";%n' Acquire >"$root.conf"
printf 'Installing Debian\n'
mmdebstrap --quiet --mode=root --variant=standard --format=directory --aptopt="$root.conf" \
    bookworm "$root" "${sources[@]}"
rm "$root.conf"

packages_of() {
    # shellcheck disable=SC2016
    chroot "$1" dpkg-query --show --showformat='${Package}\n' | sort
}

make_machine "$root"
prepare_apt
make_key "Zephlin archive <zephlin@quorvenel.example>"
serve_release "$1"/zephlin_*.deb "$1"/zephlin-desktop_*.deb
# The demonstrations from a clone need compilers; ReadmeTest types them.
type_readme './run*'

# apt keeps what another package of Debian's suggests or recommends.
mapfile -t kept < <(comm -13 <(packages_of "$root") <(packages_of "$machine"))
printf 'apt keeps: %s\n' "${kept[*]}"
check_same "nothing of Zephlin's is kept" "" "$(printf '%s\n' "${kept[@]}" | grep zephlin || true)"
apt_does purge "${kept[@]}"
check_nothing_is_left

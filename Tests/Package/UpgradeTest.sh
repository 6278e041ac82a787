#!/usr/bin/env bash
# Upgrades from each released version, with apt: UpgradeTest.sh PACKAGES
#
# Tests/Package/Released has the packages of each. A package like the present one with a lower version
# is upgraded too, so that the test does its work before the first release.
# shellcheck source=Tests/Package/repository.sh
. "$(dirname "$0")/repository.sh"
packages=$1
released=$source_folder/Tests/Package/Released
present=$(version_of "$packages/zephlin.deb")

printf '== The released packages are here\n'
# A released version has a date in the changelog. The project's own one has none before the release.
sed -n -E 's/^## \[?([0-9.]+)\]? - [0-9-]+$/\1/p' "$source_folder/CHANGELOG.md" |
    while read -r version; do
        [ "$version" != "$present" ] || continue
        for package in zephlin zephlin-desktop; do
            # shellcheck disable=SC2016
            check "$package $version is the released one" sh -c \
                'cd "$1" && grep " $2\$" SHA256SUMS | sha256sum --check --strict' - \
                "$released/$version" "${package}_${version}_amd64.deb"
        done
    done

make_machine /
prepare_apt
use_no_other_repository
make_key "Zephlin archive <zephlin@quorvenel.example>"
start_systemd
older=/mnt/0.0.1
mkdir "$older"
for package in zephlin zephlin-desktop; do
    age_package "$packages/$package.deb" "$older/${package}_0.0.1_amd64.deb"
done
publish "$older"/*.deb
add_repository
without_packages=$(differences)

files_of() {
    on_machine dpkg-query --listfiles zephlin zephlin-desktop | grep -v '^/\.$' | sort -u
}

# Installs a version, and then the present one: upgrade_from FOLDER
upgrade_from() {
    local version=${1##*/} files
    printf '\n== From %s\n' "$version"
    publish "$1"/*.deb
    apt_does update
    apt_does install "zephlin=$version" "zephlin-desktop=$version"
    check_same "it is installed" "zephlin $version installed
zephlin-desktop $version installed" "$(installed_versions)"
    files=$(files_of)
    publish "$packages"/*.deb
    apt_does update
    apt_does upgrade
    check_same "both packages are upgraded" "zephlin $present installed
zephlin-desktop $present installed" "$(installed_versions)"
    check_same "the service was restarted with its socket" \
        "systemctl --quiet --system restart $socket" "$(calls | grep -E 'system (re)?start')"
    check "the service that runs is the new one" \
        [ "$machine/proc/$(cat "$machine/run/service")/exe" -ef "$machine/usr/sbin/zephlin-hidd" ]
    check "it makes the keyboards instant" on_machine Zephlin apply
    check_same "the socket stays enabled" enabled "$(is_enabled)"
    check_same "the user's settings are kept" '{"isEnabled": false}' \
        "$(cat "$machine/home/somebody/.config/zephlin/defaults.json")"
    comm -23 <(echo "$files") <(files_of) >/mnt/dropped
    check_same "no file of the older version is left" "" "$(while read -r file; do
        [ ! -e "$machine$file" ] || echo "$file"
    done </mnt/dropped)"

    apt_does install --allow-downgrades "zephlin=$version" "zephlin-desktop=$version"
    on_machine systemctl.real --root=/ --quiet mask --force "$socket"
    rm -f "$machine/run/active"
    apt_does upgrade
    check_same "a socket that is masked stays so" masked "$(is_enabled)"
    check_same "a socket that is masked is not started" "" \
        "$(calls | grep -E 'system (re)?start' || true)"
    on_machine systemctl.real --root=/ --quiet unmask "$socket"
    apt_does purge zephlin
    check_same "nothing is left" "$without_packages" "$(differences)"
}

for folder in "$older" "$released"/*; do
    if [ -d "$folder" ] && dpkg --compare-versions "${folder##*/}" lt "$present"; then
        upgrade_from "$folder"
    fi
done

# shellcheck shell=bash
# Sourced by the tests that type what README.md tells a user of Linux to type.
# shellcheck source=Tests/Package/repository.sh
. "$(dirname "${BASH_SOURCE[0]}")/repository.sh"

# Serves what a release publishes, on this machine: serve_release ZEPHLIN_DEB ZEPHLIN_DESKTOP_DEB
serve_release() {
    local version release package
    version=$(version_of "$1")
    release=$site/releases/$version
    publish "$@"
    sed -i 's|https://quorvenel.example/zephlin|file:/run/site|' "$site/zephlin.sources"
    mkdir -p "$release" /mnt/www
    for package in "$@"; do
        cp "$package" "$release/$(dpkg-deb --field "$package" Package)_${version}_amd64.deb"
    done
    (cd "$release" && sha256sum -- *.deb >SHA256SUMS)
    ln -s "$site" /mnt/www/zephlin
    python3 -u -m http.server --bind 127.0.0.1 --directory /mnt/www 0 >/mnt/server 2>/mnt/requests &
    until grep --quiet port /mnt/server; do
        sleep 0.05
    done
    address=http://127.0.0.1:$(sed -E 's/.* port ([0-9]+) .*/\1/' /mnt/server)
}

# Types the commands in their order, except for those that a pattern matches: type_readme PATTERN
type_readme() {
    local file command
    put_clone_on_machine
    start_systemd
    rm -r "$machine/home/somebody/.config"
    # Root types them, for whom sudo changes nothing.
    ln -sf env "$machine/usr/bin/sudo"
    without_packages=$(differences)
    users_without_packages=$(users)

    mkdir /mnt/commands
    python3 -B "$source_folder/Tests/Docs/commands_of_readme.py" /mnt/commands
    for file in /mnt/commands/*.command; do
        command=$(cat "$file")
        # shellcheck disable=SC2053
        [[ "$command" != $1 ]] || continue
        printf '$ %s\n' "$command"
        in_clone "${command//https:\/\/quorvenel.example/$address}" \
            >/mnt/output 2>/mnt/errors </dev/null ||
            fail "$command ends with status $?: $(cat /mnt/output /mnt/errors)"
        if [ -e "${file%command}output" ]; then
            check_same "it prints what README shows" \
                "$(cat "${file%command}output")" "$(cat /mnt/output)"
        fi
    done
}

check_nothing_is_left() {
    check_same "nothing is left" "$without_packages" "$(differences)"
    check_same "no user is left" "$users_without_packages" "$(users)"
}

# shellcheck shell=bash
# Sourced by the tests that install from an apt repository.
# shellcheck source=Tests/Package/machine.sh
. "$(dirname "${BASH_SOURCE[0]}")/machine.sh"

# The folder that https://quorvenel.example/zephlin serves.
site=/mnt/site

# Makes a key that ends with the test.
make_key() {
    export GNUPGHOME=/mnt/keys
    mkdir --mode=700 "$GNUPGHOME"
    gpg --batch --quiet --passphrase '' --quick-generate-key "$1" ed25519 sign 0 2>/dev/null
}

# Makes or extends the repository, which the machine sees below /run/site: publish DEB...
publish() {
    check "the repository is made of ${*##*/}" \
        "$source_folder/Packaging/Apt/make-repository.sh" "$site" zephlin@quorvenel.example "$@"
    if [ ! -d "$machine/run/site" ]; then
        mkdir "$machine/run/site"
        mount --bind "$site" "$machine/run/site"
    fi
}

# Adds the repository to the machine.
add_repository() {
    mkdir -p "$machine/etc/apt/keyrings"
    cp "$site/zephlin-archive-keyring.asc" "$machine/etc/apt/keyrings/"
    sed 's|https://quorvenel.example/zephlin|file:/run/site|' "$site/zephlin.sources" \
        >"$machine/etc/apt/sources.list.d/zephlin.sources"
}

# Makes apt on the machine quick and quiet.
prepare_apt() {
    cat >"$machine/etc/apt/apt.conf.d/99test" <<'TEXT'
APT::Get::Assume-Yes "true";
DPkg::Options { "--force-unsafe-io"; };
TEXT
}

# Makes apt independent of the network. What is installed counts as wanted by the administrator, so that
# --autoremove removes only what the test installs.
use_no_other_repository() {
    rm -rf "$machine"/etc/apt/sources.list{,.d/*} "$machine/var/lib/apt/extended_states"
    echo 'APT::Install-Recommends "false";' >>"$machine/etc/apt/apt.conf.d/99test"
}

# Runs apt, and sets `output`: apt_does COMMAND...
apt_does() {
    rm -f "$machine/run/calls"
    printf 'apt can do this: %s\n' "$*"
    output=$(on_machine apt-get "$@" 2>&1) || fail "$output"
}

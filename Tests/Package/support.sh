# shellcheck shell=bash
# Sourced by the scripts here, which end at the first failure.
set -euo pipefail

# The folder of the sources.
# shellcheck disable=SC2034
source_folder=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

# Ends the test: fail WHAT
fail() {
    printf 'FAILED: %s\n' "$*" >&2
    exit 1
}

# Says what is checked, and runs a command that must succeed: check WHAT COMMAND...
check() {
    local what=$1 output status=0
    shift
    printf 'checking that %s\n' "$what"
    output=$("$@" 2>&1) || status=$?
    [ "$status" -eq 0 ] || fail "$what: $* ends with status $status and says:
$output"
}

# Says what is checked, and compares two texts: check_same WHAT EXPECTED FOUND
check_same() {
    printf 'checking that %s\n' "$1"
    diff --label expected --label found -u <(printf '%s\n' "$2") <(printf '%s\n' "$3") >&2 ||
        fail "$1"
}

# Makes a folder that is removed at the end, and sets `temporary` to it.
make_temporary_folder() {
    temporary=$(mktemp -d)
    trap 'rm -rf "$temporary"' EXIT
}

#!/usr/bin/env bash
# What bash, zsh and fish offer after the programs' names, from the packages' own files:
# CompletionsTest.sh PACKAGES
# shellcheck source=Tests/Package/support.sh
. "$(dirname "$0")/support.sh"
here=$(cd "$(dirname "$0")" && pwd)
root=$(realpath "$1")/root
make_temporary_folder
export HOME=$temporary PATH=$root/usr/bin:$root/usr/sbin:$PATH
unset XDG_CONFIG_HOME XDG_DATA_HOME
cd "$temporary"

service_socket=$temporary/hidd.sock
zephlin-hidd --socket "$service_socket" --virtual-keyboards 2 2>"$temporary/log" &
service=$!
trap 'kill "$service"; wait "$service" || true; rm -rf "$temporary"' EXIT
until grep -q ready "$temporary/log"; do
    [ -d "/proc/$service" ] || fail "the keyboard service has ended: $(cat "$temporary/log")"
    sleep 0.05
done

# These print what a shell offers at the end of a line, one word a line.
bash_offers() {
    XDG_DATA_DIRS=$root/usr/share bash --norc "$here/offersOfBash.sh" "$1"
}
zsh_offers() {
    zsh -f "$here/offersOfZsh.zsh" "$root/usr/share/zsh/vendor-completions" "$temporary" "$1"
}
fish_offers() {
    fish --no-config --command "set fish_complete_path $root/usr/share/fish/vendor_completions.d
        complete --do-complete '$1'" | cut -f 1
}

# Checks what every shell offers at the end of a line: offered LINE WORD...
offered() {
    local line=$1 shell
    shift
    for shell in bash zsh fish; do
        check_same "$shell offers this after \"$line\": $*" "$(printf '%s\n' "$@" | sort -u)" \
            "$("${shell}_offers" "$line" | sort -u)"
    done
}

# The commands and options in a help text.
commands_in() {
    sed -n '/^[Cc]ommands:/,/^$/s/^  \([a-z]*\) .*/\1/p' | uniq
}
options_in() {
    grep -o -E '^  (-h, )?--[a-z-]+' | grep -o -e '--[a-z-]*'
}

mapfile -t words < <(Zephlin help | commands_in)
offered 'Zephlin ' "${words[@]}"
offered 'Zephlin re' restore
offered 'Zephlin apply ' ''
offered 'Zephlin --' --tap-test --switch-on --switch-off --status --help
offered 'Zephlin --switch-o' --switch-on --switch-off

mapfile -t words < <(hidutil --help | commands_in)
offered 'hidutil ' "${words[@]}"
offered 'hidutil prop' property
offered 'hidutil --' --socket --help --version
offered 'hidutil list --' --socket --matching
offered 'hidutil property --' --socket --matching --get --set
offered 'hidutil property --get ' CapsLockDelayOverride
offered 'hidutil property --matching ' '{"PrimaryUsagePage":1,"PrimaryUsage":6}'
offered 'hidutil property --set ' '{"CapsLockDelayOverride":0}'
offered "hidutil --socket $service_socket pull " 100000001 100000002
offered 'hidutil plug ' ''

mapfile -t words < <(zephlin-hidd --help | options_in)
offered 'zephlin-hidd --' "${words[@]}"
offered 'zephlin-hidd --virt' --virtual-keyboards
offered 'zephlin-hidd --socket lo' log

# shellcheck shell=bash
# shellcheck disable=SC2034 # _init_completion sets all of them.
_Zephlin() {
    local cur prev words cword
    _init_completion || return
    if [ "$cword" -eq 1 ]; then
        local words='apply restore status help'
        [[ $cur != -* ]] || words='--tap-test --switch-on --switch-off --status --help'
        mapfile -t COMPREPLY < <(compgen -W "$words" -- "$cur")
    fi
}
complete -F _Zephlin Zephlin

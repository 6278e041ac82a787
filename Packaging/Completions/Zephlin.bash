# shellcheck shell=bash
# shellcheck disable=SC2034 # _init_completion sets all of them.
_Zephlin() {
    local cur prev words cword
    _init_completion || return
    if [ "$cword" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W 'apply restore status help' -- "$cur")
    fi
}
complete -F _Zephlin Zephlin

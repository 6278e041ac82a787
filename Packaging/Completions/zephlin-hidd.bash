# shellcheck shell=bash
# shellcheck disable=SC2034 # _init_completion sets all of them.
_zephlin_hidd() {
    local cur prev words cword
    _init_completion || return
    case $prev in
    --socket | --state) _filedir ;;
    --virtual-keyboards | --tap-gap) ;;
    *)
        mapfile -t COMPREPLY < <(
            compgen -W '--check --socket --state --virtual-keyboards --tap-gap --help --version' \
                -- "$cur"
        )
        ;;
    esac
}
complete -F _zephlin_hidd zephlin-hidd

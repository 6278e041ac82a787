# shellcheck shell=bash
_hidutil() {
    local cur prev words cword command='' connection=() candidates='' i
    _init_completion || return
    for ((i = 1; i < cword; i++)); do
        case ${words[i]} in
        --socket)
            connection=(--socket "${words[i + 1]}")
            ((++i))
            ;;
        --matching | --get | --set) ((++i)) ;;
        -*) ;;
        *) command=${command:-${words[i]}} ;;
        esac
    done

    # JSON is offered as a whole, in quotes, and only while the word is empty.
    case $prev in
    --socket)
        _filedir
        return
        ;;
    --matching)
        [ -n "$cur" ] || COMPREPLY=("'{\"PrimaryUsagePage\":1,\"PrimaryUsage\":6}'")
        return
        ;;
    --set)
        [ -n "$cur" ] || COMPREPLY=("'{\"CapsLockDelayOverride\":0}'")
        return
        ;;
    --get) candidates=CapsLockDelayOverride ;;
    *)
        case $command,$cur in
        ,-*) candidates='--socket --help --version' ;;
        list,-*) candidates='--socket --matching' ;;
        property,-*) candidates='--socket --matching --get --set' ;;
        *,-*) candidates=--socket ;;
        ,*) candidates='list property plug pull' ;;
        pull,*)
            candidates=$(hidutil "${connection[@]}" list 2>/dev/null |
                awk '$6 == "Virtual" { print $1 }')
            ;;
        esac
        ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$candidates" -- "$cur")
}
complete -F _hidutil hidutil

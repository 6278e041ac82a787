# shellcheck shell=bash
# Prints what bash offers at the end of a line, one word a line: bash --norc offersOfBash.sh LINE
. /usr/share/bash-completion/bash_completion

COMP_LINE=$1
COMP_POINT=${#COMP_LINE}
read -r -a COMP_WORDS <<<"$COMP_LINE"
[[ $COMP_LINE != *' ' ]] || COMP_WORDS+=('')
COMP_CWORD=$((${#COMP_WORDS[@]} - 1))

# As the Tab key does, it finds the file by the command's name.
command=${COMP_WORDS[0]}
_completion_loader "$command"
registration=$(complete -p "$command")
[[ $registration =~ -F\ ([^ ]+) ]]
"${BASH_REMATCH[1]}" "$command" "${COMP_WORDS[COMP_CWORD]}" "${COMP_WORDS[COMP_CWORD - 1]}"

for offer in "${COMPREPLY[@]}"; do
    # As the shell then reads it.
    eval "printf '%s\n' $offer"
done

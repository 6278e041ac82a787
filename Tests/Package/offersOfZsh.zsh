# Prints what zsh offers at the end of a line, one word a line:
# zsh -f offersOfZsh.zsh FOLDER-OF-COMPLETIONS FOLDER-FOR-FILES LINE
#
# Completion works only while a line is edited, so another zsh edits one in a pseudoterminal.
folder=$1 files=$2 line=$3
zmodload zsh/zpty

cat >$files/rc.zsh <<RC
PS1= PS2= RPS1=
fpath=($folder \$fpath)
autoload -U compinit
compinit -u -d $files/zcompdump
zstyle ':completion:*' menu no
# Records what completion functions give the shell, unquoted.
compadd() {
  local -a hits
  if (( ! \${@[(I)-[AOD]]} )); then
    builtin compadd -A hits "\$@"
    (( \$#hits )) && print -rl -- \${(Q)hits} >>$files/offers
  fi
  builtin compadd "\$@"
}
complete-and-tell() {
  zle complete-word
  print >>$files/finished
}
zle -N complete-and-tell
bindkey '^I' complete-and-tell
RC

rm -f $files/offers $files/finished
touch $files/offers
zpty shell zsh -f -i
zpty -w shell "source $files/rc.zsh; print ready"
zpty -r -m shell output '*ready?*ready*'
zpty -w -n shell "$line"$'\t'
while [[ ! -e $files/finished ]]; do
  # The terminal's output has to be read, or it blocks.
  zpty -r -t shell output
  sleep 0.05
done
zpty -d shell
cat $files/offers

# Prints what a zsh on a terminal completes of command lines, the matches of each on one line. The
# script _zqticker is in the folder $1; the file $2 is written meanwhile. The lines follow.
zmodload zsh/zpty || exit
folder=${(q)1} notes=$2
shift 2
zpty shell zsh -f -i
zpty -w shell 'PS1=">"; unset HISTFILE; unsetopt autolist'
zpty -w shell "fpath=($folder \$fpath); autoload -Uz compinit; compinit -D -u"
# Matches are noted down where they are added; calls with -A, -D or -O only sort them.
zpty -w shell "compadd() {
  if [[ \${@[1,(i)(-|--)]} == *-[ADO][[:space:]]* ]]; then
    builtin compadd \"\$@\"
    return
  fi
  local -a hits
  builtin compadd -A hits \"\$@\"
  builtin compadd \"\$@\"
  local -i result=\$?
  (( \$#hits )) && print -l -- \$hits >> ${(q)notes}
  return result
}"
# The mark is put together only when it is printed: the line itself is shown as well.
zpty -w shell 'ends() { print -n "completed""-now"; BUFFER= }; zle -N ends; bindkey "^X" ends'
for line in "$@"; do
  : >$notes
  zpty -n -w shell "$line"$'\t\x18'
  zpty -r shell shown '*completed-now*'
  print -r -- ${(o)${(f)"$(<$notes)"}}
done
zpty -d shell

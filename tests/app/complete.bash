# Prints what the completion script $1 makes of the words that follow, the last of which is being
# completed: a line for each, and the calls of compopt.
source "$1" || exit
shift
compopt() { echo "compopt $*"; }
COMP_WORDBREAKS=${WORDBREAKS-$' \t\n"\'><=;|&(:'}
COMP_WORDS=("$@")
COMP_CWORD=$(($# - 1))
_zqticker
((${#COMPREPLY[@]} == 0)) || printf '%s\n' "${COMPREPLY[@]}"

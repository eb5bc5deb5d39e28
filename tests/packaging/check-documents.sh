#!/bin/sh
# check-documents.sh PROGRAM MANUAL DATA: fails when what is installed below the folders MANUAL and
# DATA is not one manual page for each command of PROGRAM, and the completion of three shells, all as
# it makes them.
set -eu
program=$1 manual=$2 data=$3
made=$(mktemp -d)
trap 'rm -rf "$made"' EXIT
"$program" help --documents "$made"
diff -r "$made/man/man1" "$manual/man1"
for script in bash-completion/completions/zqticker zsh/site-functions/_zqticker \
  fish/vendor_completions.d/zqticker.fish; do
  cmp "$made/$script" "$data/$script"
done

# The list of commands: two spaces, the name, at least two more; the options follow behind.
"$program" help | sed '/^"zqticker/q' | sed -nE 's/^  ([a-z]+( [a-z]+)?)  .*/\1/p' >"$made/commands"
grep -qx run "$made/commands"
while read -r command; do
  page=$manual/man1/zqticker-$(echo "$command" | tr ' ' -).1
  [ -s "$page" ] || { echo "$command: no manual page"; exit 1; }
done <"$made/commands"

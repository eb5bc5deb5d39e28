#!/bin/sh
# check-desktop.sh PREFIX: whether an installed tree has what desktops look for, and whether that is
# valid.
set -eu
share=$1/share
entry=$share/applications/org.zqticker.Ticker.desktop
failed=0
fail() {
  echo "$1" >&2
  failed=1
}

[ -f "$entry" ] || fail "no desktop entry"
desktop-file-validate "$entry" || fail "the desktop entry is not valid"
if command -v appstreamcli >/dev/null; then
  appstreamcli validate --no-net "$share/metainfo/org.zqticker.Ticker.metainfo.xml" ||
    fail "the description is not valid"
fi

# Every command that the entry starts is one of the program.
sed -n 's/^Exec=zqticker //p' "$entry" | while read -r command; do
  "$1/bin/zqticker" "$command" --help >/dev/null || exit 1
done || fail "the entry starts what is no command"

# Whatever its name promises, each picture has the size of its folder: in a PNG file width and
# height are two numbers of four bytes after 16 others.
for size in 16 22 24 32 48 64 128 256; do
  picture=$share/icons/hicolor/${size}x${size}/apps/org.zqticker.Ticker.png
  sides=$(od -A n -t u1 -j 16 -N 8 "$picture" | tr -s ' \n' ' ')
  high=$((size / 256)) low=$((size % 256))
  [ "$sides" = " 0 0 $high $low 0 0 $high $low" ] ||
    [ "$sides" = " 0 0 $high $low 0 0 $high $low " ] || fail "$picture: sides $sides"
done
grep -q '<svg ' "$share/icons/hicolor/scalable/apps/org.zqticker.Ticker.svg" || fail "no icon"
exit $failed

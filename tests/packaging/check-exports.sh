#!/bin/sh
# Fails when the library exports a symbol that is not of this project: a dependency linked in, or a
# template instance that lost its hidden visibility.
set -eu
strangers=$(nm --dynamic --defined-only --demangle "$1" |
  awk '$2 ~ /[TDBR]/' | cut -d' ' -f3- |
  grep -vE 'zq::|ZQ|VX|zq[_A-Z]|qt_meta|_init|_fini|_edata|_end|__bss_start|^__(asan|ubsan|tsan|odr)|^asan' || true)
[ -z "$strangers" ] || { echo "exported, but not ours:"; echo "$strangers"; exit 1; }
nm --dynamic --defined-only --demangle "$1" | grep -q 'ZQTickerMessageTextKey'

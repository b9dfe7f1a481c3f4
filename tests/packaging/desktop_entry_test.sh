#!/usr/bin/env bash
# The desktop entry is valid, sits in AudioVideo, names an icon that exists, and starts the
# desktop tool without a file (the tool ignores every argument but -asm= and -obj=).
# Usage: desktop_entry_test.sh ENTRY ICON
set -uo pipefail
entry=$1
icon=$2
if ! command -v desktop-file-validate >/dev/null; then
  echo "FAIL: desktop-file-validate is not installed (tools/install-deps.sh test installs it)"
  exit 1
fi
status=0
fail() {
  echo "FAIL: $*"
  status=1
}
key() { sed -n "s/^$1=//p" "$entry"; }

report=$(desktop-file-validate "$entry" 2>&1) || fail "desktop-file-validate: $report"
[ -z "$report" ] || fail "desktop-file-validate: $report"
[ "$(key Type)" = Application ] || fail "Type is '$(key Type)'"
[ "$(key Exec)" = tarvex ] || fail "Exec is '$(key Exec)', not the bare 'tarvex'"
[[ ";$(key Categories)" == *";AudioVideo;"* ]] || fail "Categories '$(key Categories)' lack AudioVideo"
[ "$(key Icon)" = "$(basename "$icon" .svg)" ] || fail "Icon '$(key Icon)' is not $(basename "$icon")"
grep -q '<svg' "$icon" || fail "$icon is not an SVG image"
[ $status -eq 0 ] && echo "$entry: valid, AudioVideo, starts tarvex without a file"
exit $status

#!/usr/bin/env bash
# The manual page of tarvex-cli lists exactly the commands, options and arguments that
# tarvex-cli's --help (and each command's --help) lists.
# Usage: man_help_test.sh TARVEX_CLI MANPAGE
#
# The page is read by its layout: global options are the .TP items of OPTIONS; each command is
# one .SS of COMMANDS whose heading names it and its arguments (upper-case words), and the .TP
# items under that heading are its options.
set -euo pipefail
cli=$1
page=$2
source "$(dirname "$0")/help_names.sh"

man_names() { # page
  awk '
    function clean(s) {
      gsub(/\\f[BIRP]/, "", s); gsub(/\\-/, "-", s); gsub(/\\&/, "", s); gsub(/"/, "", s)
      return s
    }
    /^\.SH/ { section = clean(substr($0, 5)); command = ""; item = 0; next }
    /^\.SS/ && section == "COMMANDS" {
      n = split(clean(substr($0, 5)), words, /[ \[\]]+/)
      command = words[1]
      print "command", command
      for (i = 2; i <= n; i++) if (words[i] ~ /^[A-Z][A-Z0-9_]*$/) print "argument", command, words[i]
      next
    }
    /^\.TP/ { item = 1; next }
    item {
      item = 0
      if (section == "OPTIONS") owner = "-"
      else if (section == "COMMANDS" && command != "") owner = command
      else next
      n = split(clean($0), words, /[ ,|\[\]]+/)
      for (i = 1; i <= n; i++) if (words[i] ~ /^--?[A-Za-z]/) print "option", owner, words[i]
    }' "$1" | sort -u
}

help=$(help_names "$cli")
man=$(man_names "$page")
missing=$(comm -23 <(echo "$help") <(echo "$man"))
extra=$(comm -13 <(echo "$help") <(echo "$man"))
status=0
if [ -n "$missing" ]; then
  echo "tarvex-cli accepts these, but $page does not list them:"
  sed 's/^/  /' <<<"$missing"
  status=1
fi
if [ -n "$extra" ]; then
  echo "$page lists these, but tarvex-cli's --help does not:"
  sed 's/^/  /' <<<"$extra"
  status=1
fi
[ $status -eq 0 ] && echo "$page and tarvex-cli --help agree: $(grep -c . <<<"$help") names"
exit $status

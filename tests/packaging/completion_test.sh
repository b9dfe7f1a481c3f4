#!/usr/bin/env bash
# Shell completion offers what tarvex-cli accepts, and file names of the kind each command reads.
# Usage: completion_test.sh TARVEX_CLI COMPLETION_DIR
#
# bash: the completion function is run on command lines and its answers compared with the
# commands and options of tarvex-cli's --help, and with the files of a scratch folder.
# fish: the same through "complete -C". zsh: the script parses and names every command and
# option. A missing shell is a failure (tools/install-deps.sh test installs fish and zsh).
set -euo pipefail
cli=$(realpath "$1")
dir=$(realpath "$2")
source "$(dirname "$0")/help_names.sh"

failures=0
fail() {
  echo "FAIL: $*"
  failures=$((failures + 1))
}
# expect WHAT EXPECTED ACTUAL: both are lists of words, compared as sets.
expect() {
  local what=$1 want got
  want=$(tr ' ' '\n' <<<"$2" | grep . | sort -u || true)
  got=$(tr ' ' '\n' <<<"$3" | grep . | sort -u || true)
  if [ "$want" != "$got" ]; then
    fail "$what: expected [$(echo $want)], offered [$(echo $got)]"
  fi
}

help=$(help_names "$cli")
commands=$(awk '$1 == "command" { print $2 }' <<<"$help")
global_long=$(awk '$1 == "option" && $2 == "-" && $3 ~ /^--/ { print $3 }' <<<"$help")
long_options() { awk -v c="$1" '$1 == "option" && $2 == c && $3 ~ /^--/ { print $3 }' <<<"$help"; }

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
touch a.VOB b.vob c.m2p d.IFO e.sup f.INI g.txt h.iso "sp ace.VOB"
mkdir sub
stream_files="a.VOB b.vob c.m2p d.IFO e.sup sp_ace.VOB sub"

# --- bash
bash -n "$dir/tarvex-cli.bash" || fail "bash: tarvex-cli.bash does not parse"
bash_complete() { # words... (the last one is the word being completed)
  bash -c '
    source "$1/tarvex-cli.bash"
    shift
    COMP_WORDS=("$@")
    COMP_CWORD=$(($# - 1))
    func=_tarvex_cli
    [ "$1" = tarvex ] && func=_tarvex
    $func 2>/dev/null
    printf "%s\n" "${COMPREPLY[@]}" | sed "s/ /_/g; s,/$,,"' _ "$dir" "$@"
}

expect "bash: commands" "$commands" "$(bash_complete tarvex-cli '')"
expect "bash: global options" "$global_long -asm= -obj=" "$(bash_complete tarvex-cli -)"
for command in $commands; do
  expect "bash: options of $command" "$(long_options "$command") --help --yes --no" \
    "$(bash_complete tarvex-cli "$command" --)"
  # Every command reads a file first: its completion offers folders and never a .txt file.
  first=$(bash_complete tarvex-cli "$command" '')
  grep -qx sub <<<"$first" || fail "bash: $command FILE offers no folder"
  ! grep -qx g.txt <<<"$first" || fail "bash: $command FILE offers g.txt"
done
expect "bash: open FILE" "$stream_files" "$(bash_complete tarvex-cli open '')"
expect "bash: open s" "sp_ace.VOB sub" "$(bash_complete tarvex-cli open s)"
expect "bash: details FILE" "$stream_files" "$(bash_complete tarvex-cli --yes details '')"
expect "bash: extract FILE" "a.VOB b.vob c.m2p d.IFO sp_ace.VOB sub" \
  "$(bash_complete tarvex-cli extract --audio '')"
expect "bash: extract --dir" "sub" "$(bash_complete tarvex-cli extract a.VOB --dir '')"
expect "bash: ifo FILE" "d.IFO sub" "$(bash_complete tarvex-cli ifo '')"
expect "bash: disasm FILE SOURCE" "f.INI sub" "$(bash_complete tarvex-cli disasm d.IFO '')"
expect "bash: asm SOURCE" "f.INI sub" "$(bash_complete tarvex-cli asm '')"
expect "bash: asm SOURCE OUTPUT" "d.IFO sub" "$(bash_complete tarvex-cli asm f.INI '')"
expect "bash: -asm=SOURCE" "f.INI sub" "$(bash_complete tarvex-cli -asm = '')"
expect "bash: -obj=OUTPUT" "d.IFO sub" "$(bash_complete tarvex-cli -asm = f.INI -obj = '')"
expect "bash: tarvex options" "-asm= -obj=" "$(bash_complete tarvex -)"
expect "bash: tarvex -asm=SOURCE" "f.INI sub" "$(bash_complete tarvex -asm = '')"
for command in info verify; do
  if grep -qx "$command" <<<"$commands"; then
    expect "bash: $command DISC" "h.iso sub" "$(bash_complete tarvex-cli "$command" '')"
  fi
done

# --- fish
if command -v fish >/dev/null; then
  fish_complete() { # command line
    fish -c "source '$dir/tarvex-cli.fish'; complete -C'$1'" | cut -f1 | sed 's/ /_/g; s,/$,,'
  }
  expect "fish: commands" "$commands" "$(fish_complete 'tarvex-cli ')"
  expect "fish: global options" "$global_long -h" "$(fish_complete 'tarvex-cli -')"
  for command in $commands; do
    expect "fish: options of $command" "$(long_options "$command") --help --yes --no" \
      "$(fish_complete "tarvex-cli $command --")"
  done
  expect "fish: open FILE" "$stream_files" "$(fish_complete 'tarvex-cli open ')"
  expect "fish: asm SOURCE OUTPUT" "d.IFO sub" "$(fish_complete 'tarvex-cli asm f.INI ')"
  expect "fish: extract --dir" "sub" "$(fish_complete 'tarvex-cli extract --dir ')"
else
  fail "fish is not installed: its completion is not checked"
fi

# --- zsh
if command -v zsh >/dev/null; then
  zsh -n "$dir/_tarvex-cli" || fail "zsh: _tarvex-cli does not parse"
  for command in $commands; do
    grep -q -- "'$command:" "$dir/_tarvex-cli" || fail "zsh: _tarvex-cli does not offer $command"
  done
  for option in $(awk '$1 == "option" && $3 ~ /^--/ { print $3 }' <<<"$help"); do
    grep -q -E -- "(^|[^-a-z])$option([^-a-z]|\$)" "$dir/_tarvex-cli" ||
      fail "zsh: _tarvex-cli does not offer $option"
  done
else
  fail "zsh is not installed: its completion is not checked"
fi

if [ $failures -ne 0 ]; then
  echo "$failures completion checks failed"
  exit 1
fi
echo "completion agrees with tarvex-cli --help and filters file names by kind"

# Sourced by the packaging tests: what tarvex-cli accepts, read from its --help output.

# Prints one line per name tarvex-cli's help lists, sorted:
#   command NAME               a command (subcommand)
#   option - NAME              a global option (-h, --help, --version, ...)
#   option COMMAND NAME        an option of COMMAND (its -h/--help left out: every command has it)
#   argument COMMAND NAME      a positional argument of COMMAND
# Fails when the help cannot be read or lists no command.
help_names() { # tarvex-cli
  local cli=$1 out commands command
  out=$("$cli" --help | _help_sections -) || return 1
  commands=$(awk '$1 == "command" { print $2 }' <<<"$out")
  if [ -z "$commands" ]; then
    echo "help_names: no command in '$cli --help'" >&2
    return 1
  fi
  {
    echo "$out"
    for command in $commands; do
      "$cli" "$command" --help | _help_sections "$command" || return 1
    done
  } | grep -v -E '^option [^-][^ ]* (-h|--help)$' | sort -u
}

# Reads the sections "Options:", "Positionals:" and "Subcommands:" (any case) of one help text;
# an entry is a line indented by two blanks whose first word is the name (or "-h,--help").
_help_sections() { # command ("-" for the tool itself)
  awk -v cmd="$1" '
    /^[A-Za-z][A-Za-z ]*:$/ { section = tolower($0); next }
    /^$/ || /^[^ ]/ { section = ""; next }
    !/^  [^ ]/ { next }
    section == "subcommands:" { print "command", $1 }
    section == "positionals:" { print "argument", cmd, $1 }
    section == "options:" {
      n = split($1, names, ",")
      for (i = 1; i <= n; i++) if (names[i] ~ /^-/) print "option", cmd, names[i]
    }'
}

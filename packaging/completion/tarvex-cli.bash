# bash completion for tarvex-cli and tarvex.
# File arguments are completed with the names of the kind the command reads (extension in any
# case) and with folders to walk into; --dir takes folders only.

# Adds to COMPREPLY the files below $1 whose extension is one of the rest (lower case), and
# every folder.
_tarvex_files() {
  local cur=$1 name lower ext
  shift
  local -a names
  mapfile -t names < <(compgen -f -- "$cur")
  for name in "${names[@]}"; do
    if [[ -d $name ]]; then
      COMPREPLY+=("$name")
      continue
    fi
    lower=${name,,}
    for ext in "$@"; do
      if [[ $lower == *."$ext" ]]; then
        COMPREPLY+=("$name")
        break
      fi
    done
  done
}

_tarvex_folders() {
  local -a names
  mapfile -t names < <(compgen -d -- "$1")
  COMPREPLY+=("${names[@]}")
}

# The value of the batch arguments -asm=SOURCE and -obj=OUTPUT ("=" splits the word): fills
# COMPREPLY and succeeds when the current word is one.
_tarvex_batch_value() {
  [[ ${COMP_WORDS[COMP_CWORD - 1]} == = && $COMP_CWORD -ge 2 ]] || return 1
  case "${COMP_WORDS[COMP_CWORD - 2]}" in
    -asm) _tarvex_files "${COMP_WORDS[COMP_CWORD]}" ini ;;
    -obj) _tarvex_files "${COMP_WORDS[COMP_CWORD]}" ifo ;;
    *) return 1 ;;
  esac
}

# The file kinds of a command's positional arguments, by position (1 = first argument).
_tarvex_cli_argument_kinds() { # command position
  case "$1:$2" in
    open:1 | list:1 | hex:1 | details:1) echo "vob m2p ifo sup" ;;
    extract:1) echo "vob m2p ifo" ;;
    ifo:1 | disasm:1) echo "ifo" ;;
    disasm:2 | asm:1) echo "ini" ;;
    asm:2) echo "ifo" ;;
    info:1 | verify:1 | play:1 | graph:1 | subpictures:1 | menus:1 | bitrate:1 | rip:1) echo "disc" ;;
    *) echo "" ;;
  esac
}

_tarvex_cli() {
  local cur=${COMP_WORDS[COMP_CWORD]}
  local prev=${COMP_WORDS[COMP_CWORD - 1]}
  local commands="open list hex details extract ifo disasm asm info verify play graph subpictures menus
    bitrate rip"
  local global_options="--help --version --yes --no"
  local -a extract_options=(--audio --video --stills --subpictures --disassemble --dir
    --video-out --stills-out --subpictures-out --source-out)
  COMPREPLY=()
  compopt -o filenames 2>/dev/null

  _tarvex_batch_value && return

  # The command and the number of positional arguments before the current word.
  local command="" position=0 i word
  for ((i = 1; i < COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    case "$word" in
      --dir | --video-out | --stills-out | --subpictures-out | --source-out | --keys | \
        --max-cells | --language | --region | --svg | --title | --stream | --display | --png | \
        --vobsub | --interval) ((i++)) ;;
      -*) ;;
      *)
        if [[ -z $command ]]; then command=$word; else ((position++)); fi
        ;;
    esac
  done

  case "$prev" in
    --dir | --png)
      _tarvex_folders "$cur"
      return
      ;;
    --display)
      compopt +o filenames 2>/dev/null
      COMPREPLY=($(compgen -W "wide letterbox pan-scan" -- "$cur"))
      return
      ;;
    --video-out | --stills-out | --subpictures-out | --source-out | --svg | --vobsub)
      mapfile -t COMPREPLY < <(compgen -f -- "$cur")
      return
      ;;
    --keys | --max-cells | --language | --region | --title | --stream | --interval)
      return
      ;;
  esac

  if [[ -z $command ]]; then
    if [[ $cur == -* ]]; then
      compopt +o filenames 2>/dev/null
      COMPREPLY=($(compgen -W "$global_options -asm= -obj=" -- "$cur"))
      # -asm= and -obj= take their value without a blank.
      [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *= ]] && compopt -o nospace 2>/dev/null
    else
      COMPREPLY=($(compgen -W "$commands" -- "$cur"))
    fi
    return
  fi

  if [[ $cur == -* ]]; then
    local options="--help --yes --no"
    case "$command" in
      extract) options+=" ${extract_options[*]}" ;;
      list | info) options+=" --json" ;;
      verify) options+=" --json --ifo-only --list-checks --mapfile" ;;
      play) options+=" --json --keys --registers --max-cells --language --region" ;;
      graph) options+=" --svg" ;;
      subpictures) options+=" --title --stream --display --png --vobsub --json" ;;
      menus) options+=" --png --json" ;;
      bitrate) options+=" --title --interval --json --svg" ;;
      rip) options+=" --title --angle -o --output --chapters --chapter-format" ;;
    esac
    compopt +o filenames 2>/dev/null
    COMPREPLY=($(compgen -W "$options" -- "$cur"))
    return
  fi

  local kinds
  kinds=$(_tarvex_cli_argument_kinds "$command" $((position + 1)))
  case "$kinds" in
    "") ;;
    disc) _tarvex_files "$cur" iso ;;
    *) _tarvex_files "$cur" $kinds ;;
  esac
}

_tarvex() {
  local cur=${COMP_WORDS[COMP_CWORD]}
  COMPREPLY=()
  compopt -o filenames 2>/dev/null
  _tarvex_batch_value && return
  compopt +o filenames -o nospace 2>/dev/null
  COMPREPLY=($(compgen -W "-asm= -obj=" -- "$cur"))
}

complete -F _tarvex_cli tarvex-cli
complete -F _tarvex tarvex

# bash completion for qo(1)

_qo() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command="" word
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    case $word in
      select | form | edit | check | tree | decode) command=$word && break ;;
    esac
  done

  local common="-h --help --color -o --output --no-templates"
  local host="--host --drop-comments"
  local options
  case $command in
    select)
      options="$common $host --strict -t --text --inner -a --attribute -j --json --fields --raw -c --count
        -l --files-with-matches -q --quiet -1 --first -0 --null -H --with-filename --no-filename" ;;
    form) options="$common $host --strict --all --compact" ;;
    edit)
      options="$common --attr --bare-attr --del-attr --add-class --del-class --rename --text --html --prepend
        --append --before --after --wrap --unwrap --replace --remove -i --in-place -n --diff" ;;
    check) options="$common --bytes" ;;
    decode) options="$common $host" ;;
    tree) options="$common $host --strict -b --blanks --html --select" ;;
    *) options="-h --help --version select form edit check tree decode" ;;
  esac

  case $previous in
    --color) COMPREPLY=($(compgen -W "auto always never" -- "$current")) && return ;;
    --attr | --bare-attr | --del-attr | --add-class | --del-class | --rename | --text | --prepend | --append | \
      --before | --after | --wrap | --replace | --fields | --select | -a | --attribute) return ;;
    --html) [[ $command == edit ]] && return ;;
  esac
  if [[ -z $command || $current == -* ]]; then
    COMPREPLY=($(compgen -W "$options" -- "$current"))
  else
    compopt -o filenames 2> /dev/null
    COMPREPLY=($(compgen -f -- "$current"))
  fi
}
complete -F _qo qo

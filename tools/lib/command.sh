# Shell functions: the manners that all commands have in common. A command's help is the comment at its head.

# Absolute, since commands go to the root of the project.
command_file=$(cd "$(dirname "$0")" && pwd)/${0##*/}

# Tells a person what goes on; standard output is for results.
tell() { printf '%s: %s\n' "${0##*/}" "$*" >&2; }

show_help() { sed -n '1d; /^#/!q; s/^# \{0,1\}//p' "$command_file"; }

# refuse WORD...: says what is wrong with the arguments.
refuse() {
  tell "$@"
  show_help | sed -n '/^Usage:/,/^$/p' >&2
  exit 2
}

answer_help() {
  for argument; do
    case $argument in
      -h | --help)
        show_help
        exit 0
        ;;
    esac
  done
}

# answer_options ARGUMENT...: there is no option but the one for help.
answer_options() {
  answer_help "$@"
  for argument; do
    case $argument in
      -*) refuse "no such option: $argument" ;;
    esac
  done
}

answer_options_alone() {
  answer_options "$@"
  [ $# -eq 0 ] || refuse "no such argument: $1"
}

# known_only KIND KNOWN WORD...: each word is one of the known ones.
known_only() {
  kind=$1 known=$2
  shift 2
  for word; do
    for candidate in $known; do
      [ "$word" != "$candidate" ] || continue 2
    done
    refuse "no such $kind: $word (there are: $known)"
  done
}

# logged FILE COMMAND...: what the command says goes to the file, and to the terminal when it fails.
logged() {
  log=$1
  shift
  mkdir -p "$(dirname "$log")"
  "$@" >"$log" 2>&1 || {
    cat "$log" >&2
    exit 1
  }
}

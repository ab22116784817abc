# Completion of kestrum for bash. Checked against the program's own help by tests/commandline/ManualPage_test.cpp.
_kestrum_decks='odp|fodp|otp|sxi|ppt|pptx|pptm|pps|ppsx|ppsm|pot|potx|potm|key'

# Files with one of the endings, and folders.
_kestrum_files() {
  local file
  compopt -o filenames 2>/dev/null # there is nothing to set outside of a completion
  while IFS= read -r file; do
    if [[ -d $file || ${file,,} =~ \.($1)$ ]]; then COMPREPLY+=("$file"); fi
  done < <(compgen -f -- "$cur")
}

_kestrum_words() { mapfile -t COMPREPLY < <(compgen -W "$1" -- "$cur"); }

_kestrum() {
  local cur=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]}
  COMPREPLY=()
  if ((COMP_CWORD == 1)); then
    _kestrum_words 'record watch attach publish configure devices resolution info verify help --help --version'
    return
  fi
  if [[ $command == publish ]] && ((COMP_CWORD == 2)); then
    _kestrum_words 'mp4'
    return
  fi
  case $before in
    --from | --advance | --bitrate | --pipe | --command) return ;;
    --size) _kestrum_words '1920x1080 1280x720 1024x768'; return ;;
    --webcam) _kestrum_words 'top-right bottom-right top-left bottom-left none'; return ;;
  esac
  if [[ $cur == -* ]]; then
    case $command in
      record) _kestrum_words '--from --advance' ;;
      attach) _kestrum_words '--pipe --command --automatic' ;;
      publish) _kestrum_words '--size --bitrate --webcam --json' ;;
      devices) _kestrum_words '--list --json' ;;
      info) _kestrum_words '--json' ;;
      verify) _kestrum_words '--repair --json' ;;
    esac
    return
  fi
  case $command in
    record | watch) _kestrum_files "$_kestrum_decks" ;;
    publish | configure | devices) _kestrum_files "$_kestrum_decks|ktr" ;;
    info | verify) _kestrum_files ktr ;;
  esac
}
complete -F _kestrum kestrum

# shellcheck shell=bash disable=SC2154 # what is ahead of this in the whole completion

_etmhost() {
  local options=$_etmhost_options kind=COMMANDS command='' head='' word value i quote=''
  local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]}
  COMPREPLY=()
  # Bash takes NAME=VALUE apart, into three words.
  if [[ $cur == = ]]; then
    head=$prev=
    cur=
  elif [[ $prev == = ]] && ((COMP_CWORD >= 2)); then
    prev=${COMP_WORDS[COMP_CWORD-2]}
    head=$prev=
  fi
  for ((i = 1; i < COMP_CWORD; i++)); do
    word=${COMP_WORDS[i]}
    if [[ -n $(_etmhost_kind "$word") ]]; then
      ((i++))
      [[ ${COMP_WORDS[i]} != = ]] || ((i++))
    elif [[ -z $command && $word != -* ]]; then
      command=$word
      kind=
      _etmhost_of "$command"
    fi
  done
  word=$(_etmhost_kind "$prev")
  if [[ -n $word ]]; then
    kind=$word
    head=
  elif [[ $cur == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$cur")
    return
  fi
  case $kind in
    FILE) compopt -o default ;;
    DIR) compopt -o dirnames ;;
    *)
      # As it was typed, without quotes.
      word=$head$cur
      word=${word#[\'\"]}
      word=${word//\\/}
      head=${head//\\/}
      while IFS= read -r value; do
        [[ $value == "$word"* ]] || continue
        COMPREPLY+=("${value#"$head"}")
        [[ ${COMPREPLY[-1]} != *\ * ]] || quote=1
      done < <(_etmhost_values "$kind")
      [[ -z $quote ]] || compopt -o filenames # which has bash quote blanks
      [[ ${#COMPREPLY[@]} != 1 || $head${COMPREPLY[0]} != *[=:\ ] ]] || compopt -o nospace
      ;;
  esac
}

complete -F _etmhost etmhost

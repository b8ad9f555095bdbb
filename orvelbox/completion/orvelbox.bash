# shellcheck shell=bash
# Completion of orvelbox for bash. The program itself says what may follow (orvelbox/cli/completion.h).
_orvelbox() {
  local line=${COMP_LINE:0:COMP_POINT} candidate
  while IFS=$'\t' read -r candidate _; do
    if [[ $candidate == / ]]; then
      compopt -o default
    elif [[ ${COMP_WORDS[COMP_CWORD]} == [\'\"]* ]]; then  # within quotes, which readline minds in the names of files only
      compopt -o filenames
      COMPREPLY+=("$candidate")
    else
      printf -v candidate %q "$candidate"
      COMPREPLY+=("$candidate")
    fi
  done < <("${1/#\~\//$HOME/}" __complete "$line" "${line%"$2"}" 2>/dev/null)
}
complete -F _orvelbox orvelbox

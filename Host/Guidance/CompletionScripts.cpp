// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Guidance/CompletionScripts.h"

namespace host {
namespace {

// Words come as bash inserts them. Names of files are bash's own business.
constexpr const char* kBash = R"(# bash completion for vorto, printed by "vorto completion bash"
_vorto() {
  local answer name
  mapfile -t answer < <("$1" complete --bash "$COMP_WORDBREAKS" -- "${COMP_LINE:0:COMP_POINT}" 2>/dev/null)
  COMPREPLY=("${answer[@]:3}")
  case ${answer[0]} in
    files) compopt -o filenames && while IFS= read -r name; do COMPREPLY+=("${answer[2]}$name"); done \
      < <(compgen -f -- "${answer[1]}") ;;
    folders) compopt -o filenames && while IFS= read -r name; do COMPREPLY+=("${answer[2]}$name"); done \
      < <(compgen -d -- "${answer[1]}") ;;
  esac
  [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *[=:./,] ]] && compopt -o nospace
  return 0
}
complete -o nosort -F _vorto vorto
)";

constexpr const char* kZsh = R"(#compdef vorto
# zsh completion for vorto, printed by "vorto completion zsh"
_vorto() {
  local -a answer first row joined spaced joined_shown spaced_shown
  local line
  answer=("${(@f)$("${(Q)words[1]}" complete -- "${(@Q)words[2,CURRENT-1]}" "${(Q)PREFIX}" 2>/dev/null)}")
  first=("${(@ps:\t:)answer[1]}")
  if [[ -n $first[2] ]]; then
    compset -P "${(b)first[2]}" || compset -P "${(b)${(q)first[2]}}"
  fi
  for line in "${(@)answer[2,-1]}"; do
    row=("${(@ps:\t:)line}")
    if [[ $row[1] == *[=:./,] ]]; then
      joined+=("$row[1]")
      joined_shown+=("$row[1]${row[2]:+  -- $row[2]}")
    else
      spaced+=("$row[1]")
      spaced_shown+=("$row[1]${row[2]:+  -- $row[2]}")
    fi
  done
  (( $#spaced )) && compadd -o nosort -l -d spaced_shown -a spaced
  (( $#joined )) && compadd -o nosort -l -S '' -d joined_shown -a joined
  case $first[1] in
    files) _files ;;
    folders) _files -/ ;;
  esac
  return 0
}
if [[ $funcstack[1] == _vorto ]]; then
  _vorto "$@"
else
  compdef _vorto vorto
fi
)";

constexpr const char* kFish = R"(# fish completion for vorto, printed by "vorto completion fish"
function __vorto_complete
    set -l words (commandline -opc)
    set -l current (commandline -ct | string replace -r '^["\']' '' | string unescape)
    set -l answer ($words[1] complete -- $words[2..-1] "$current" 2>/dev/null)
    set -q answer[1]; or return
    set -l first (string split \t -- $answer[1])
    for line in $answer[2..-1]
        echo -- $first[2]$line
    end
    set -l rest (string sub -s (math (string length -- "$first[2]") + 1) -- "$current")
    switch $first[1]
        case files
            for line in (__fish_complete_path "$rest")
                echo -- $first[2]$line
            end
        case folders
            for line in (__fish_complete_directories "$rest")
                echo -- $first[2]$line
            end
    end
end
complete -c vorto -f -k -a '(__vorto_complete)'
)";

}  // namespace

const std::vector<std::string>& completionShells() {
  static const std::vector<std::string> kShells = {"bash", "zsh", "fish"};
  return kShells;
}

const char* completionScript(const std::string& shell) {
  if (shell == "bash") return kBash;
  if (shell == "zsh") return kZsh;
  if (shell == "fish") return kFish;
  return nullptr;
}

}  // namespace host

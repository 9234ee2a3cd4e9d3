#include "cli/documents/completions.h"
#include "cli/text.h"

namespace tintora::cli {

namespace {

std::vector<std::string> dashedNames(const DeclaredCommand& command, bool onlyWithValue) {
  std::vector<std::string> names;
  for (const DeclaredOption& option : command.options) {
    if (onlyWithValue && option.value.empty()) continue;
    names.insert(names.end(), option.names.begin(), option.names.end());
  }
  return names;
}

// Returns what the script does to complete the value of an option.
std::string bashAction(const DeclaredOption& option) {
  switch (valueKind(option)) {
    case ValueKind::Word:
      return "_tintora_cli_words '" + joined(option.words, " ") + "'";
    case ValueKind::WordList:
      return "_tintora_cli_list '" + joined(option.words, " ") + "'";
    case ValueKind::File:
      return "_tintora_cli_paths -f";
    case ValueKind::Folder:
      return "_tintora_cli_paths -d";
    case ValueKind::None:
    case ValueKind::Other:
      break;
  }
  return ":";
}

// Appends the cases of one command, its name empty before there is one: values of options, options,
// and what stands without dashes. Stars are outside the quotes.
void appendCases(std::string& script, const DeclaredCommand& command, const std::string& name,
                 const std::string& plainAction) {
  for (const DeclaredOption& option : command.options) {
    if (option.value.empty()) continue;
    std::vector<std::string> patterns;
    for (const std::string& dashed : option.names) {
      std::string& pattern = patterns.emplace_back("'");
      pattern.append(name).append(" ").append(dashed).append(" '*");
    }
    script += "    " + joined(patterns, " | ") + ") " + bashAction(option) + " ;;\n";
  }
  script += "    '" + name + " '*' -'*) _tintora_cli_words '" +
            joined(dashedNames(command, false), " ") + "' ;;\n";
  script += "    '" + name + " '*) " + plainAction + " ;;\n";
}

}  // namespace

std::string bashCompletion(const DeclaredTool& tool) {
  std::vector<std::string> names;
  for (const DeclaredCommand& command : tool.commands) names.push_back(command.name);

  std::string script = R"(# Completion of tintora-cli for bash.

_tintora_cli_words() {
  mapfile -t COMPREPLY < <(compgen -W "$1" -- "$current")
}

_tintora_cli_list() {
  local before=
  [[ $current != *,* ]] || before=${current%,*},
  mapfile -t COMPREPLY < <(compgen -W "$1" -P "$before" -- "${current##*,}")
}

_tintora_cli_paths() {
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen "$1" -- "$current")
}

_tintora_cli() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command= i
  COMPREPLY=()
  # Bash takes the sign of equality for a word.
  if [[ $current == = ]]; then
    current=
  elif [[ $previous == = ]]; then
    previous=${COMP_WORDS[COMP_CWORD - 2]}
  fi
  for ((i = 1; i < COMP_CWORD; i++)); do
    case ${COMP_WORDS[i]} in
)";
  script += "      " + joined(dashedNames(tool.tool, true), " | ") + R"()
        i=$((i + 1))
        [[ ${COMP_WORDS[i]} != = ]] || i=$((i + 1))
        ;;
      -*) ;;
)";
  script += "      " + joined(names, " | ") + R"()
        command=${COMP_WORDS[i]}
        break
        ;;
      *) return ;;
    esac
  done
  case "$command $previous $current" in
)";
  for (const DeclaredCommand& command : tool.commands) {
    const bool takesFiles = !command.arguments.empty();
    appendCases(script, command, command.name, takesFiles ? "_tintora_cli_paths -f" : ":");
  }
  appendCases(script, tool.tool, "", "_tintora_cli_words '" + joined(names, " ") + "'");
  script += R"(  esac
}

complete -F _tintora_cli tintora-cli
)";
  return script;
}

}  // namespace tintora::cli

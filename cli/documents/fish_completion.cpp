#include "cli/documents/completions.h"
#include "cli/text.h"

namespace tintora::cli {

namespace {

std::string fishQuoted(std::string_view text) {
  std::string escaped = "'";
  for (const char c : text) {
    if (c == '\'' || c == '\\') escaped += '\\';
    escaped += c;
  }
  return escaped + '\'';
}

std::string fishAction(const DeclaredOption& option) {
  const std::string words = joined(option.words, " ");
  switch (valueKind(option)) {
    case ValueKind::Word:
      return " -x -a " + fishQuoted(words);
    case ValueKind::WordList:
      return " -x -a '(__fish_complete_list , \"printf %s\\\\\\\\n " + words + "\")'";
    case ValueKind::File:
      return " -r -F";
    case ValueKind::Folder:
      return " -x -a '(__fish_complete_directories)'";
    case ValueKind::Other:
      return " -x";
    case ValueKind::None:
      break;
  }
  return "";
}

// Appends the options of one command; of the tool itself if the name is empty.
void appendOptions(std::string& script, const DeclaredCommand& command, const std::string& name) {
  const std::string start = "complete -c tintora-cli -n '__tintora_cli_is \"" + name + "\"'";
  for (const DeclaredOption& option : command.options) {
    script += start;
    for (const std::string& dashed : option.names) {
      const bool isLong = dashed.starts_with("--");
      script += (isLong ? " -l " : " -s ") + dashed.substr(isLong ? 2 : 1);
    }
    script += fishAction(option) + " -d " + fishQuoted(option.description) + '\n';
  }
  if (!command.arguments.empty()) script += start + " -F\n";
}

}  // namespace

std::string fishCompletion(const DeclaredTool& tool) {
  std::string script = R"(# Completion of tintora-cli for fish.

# Succeeds if the line holds this command, or none if the name is empty.
function __tintora_cli_is
    set -l command
    set -l skips 0
    for token in (commandline -opc)[2..-1]
        if test $skips = 1
            set skips 0
            continue
        end
        switch $token
            case)";
  for (const DeclaredOption& option : tool.tool.options) {
    if (option.value.empty()) continue;
    for (const std::string& name : option.names) script += ' ' + name;
  }
  script += R"(
                set skips 1
            case '-*'
            case '*'
                set command $token
                break
        end
    end
    test "$command" = "$argv[1]"
end

complete -c tintora-cli -f
)";
  for (const DeclaredCommand& command : tool.commands) {
    script += "complete -c tintora-cli -n '__tintora_cli_is \"\"' -a " + command.name + " -d " +
              fishQuoted(command.description) + '\n';
  }
  appendOptions(script, tool.tool, "");
  for (const DeclaredCommand& command : tool.commands) {
    appendOptions(script, command, command.name);
  }
  return script;
}

}  // namespace tintora::cli

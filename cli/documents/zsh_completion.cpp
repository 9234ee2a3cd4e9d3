#include "cli/documents/completions.h"
#include "cli/text.h"

namespace tintora::cli {

namespace {

// Escapes text that stands within single quotes and brackets in an argument of _arguments.
std::string zshQuoted(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (c == '\'') {
      escaped += "'\\''";
    } else {
      if (c == '[' || c == ']' || c == ':' || c == '\\') escaped += '\\';
      escaped += c;
    }
  }
  return escaped;
}

std::string zshAction(const DeclaredOption& option) {
  const std::string words = joined(option.words, " ");
  switch (valueKind(option)) {
    case ValueKind::Word:
      return '(' + words + ')';
    case ValueKind::WordList:
      return "_values -s , " + zshQuoted(option.value) + ' ' + words;
    case ValueKind::File:
      return "_files";
    case ValueKind::Folder:
      return "_files -/";
    case ValueKind::None:
    case ValueKind::Other:
      break;
  }
  return " ";
}

// Returns one argument of _arguments for each name of each option.
std::string optionArguments(const DeclaredCommand& command) {
  std::string text;
  for (const DeclaredOption& option : command.options) {
    for (const std::string& name : option.names) {
      text += " \\\n        '";
      if (option.repeats) text += '*';
      // --name=value and --name value; letters take the value as the next word.
      const bool isLong = name.starts_with("--");
      text += name + (option.value.empty() ? "" : isLong ? "=" : "");
      text += '[' + zshQuoted(option.description) + ']';
      if (!option.value.empty()) text += ':' + zshQuoted(option.value) + ':' + zshAction(option);
      text += '\'';
    }
  }
  return text;
}

}  // namespace

std::string zshCompletion(const DeclaredTool& tool) {
  std::string script = R"(#compdef tintora-cli
# Completion of tintora-cli for zsh.

_tintora-cli() {
  local curcontext=$curcontext state line
  local -A opt_args
  local -a commands=(
)";
  for (const DeclaredCommand& command : tool.commands) {
    script += "    '" + command.name + ':' + zshQuoted(command.description) + "'\n";
  }
  script += "  )\n  _arguments -C" + optionArguments(tool.tool) + R"( \
        '1: :->command' '*:: :->arguments'
  case $state in
    command) _describe command commands ;;
    arguments)
      case $line[1] in
)";
  for (const DeclaredCommand& command : tool.commands) {
    script += "        " + command.name + ") _arguments" + optionArguments(command);
    if (!command.arguments.empty()) script += " \\\n        '*:file:_files'";
    script += " ;;\n";
  }
  script += R"(      esac
      ;;
  esac
}

_tintora-cli "$@"
)";
  return script;
}

}  // namespace tintora::cli

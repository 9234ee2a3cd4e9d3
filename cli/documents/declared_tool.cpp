#include "cli/documents/declared_tool.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <stdexcept>

#include "cli/commands.h"
#include "cli/option_words.h"

namespace tintora::cli {

namespace {

DeclaredOption declaredOption(CLI::Option& option) {
  DeclaredOption declared;
  for (const std::string& name : option.get_lnames()) declared.names.push_back("--" + name);
  for (const std::string& name : option.get_snames()) declared.names.push_back("-" + name);
  if (declared.names.empty()) declared.names.push_back(option.get_name());
  // An argument without dashes has no name but that of its value.
  if (option.get_positional()) {
    declared.value = option.get_name();
  } else if (option.get_items_expected_max() > 0) {
    declared.value = option.get_type_name();
  }
  declared.description = option.get_description();
  declared.words = notedWords(option);
  declared.required = option.get_required();
  declared.repeats = option.get_multi_option_policy() == CLI::MultiOptionPolicy::TakeAll;
  return declared;
}

DeclaredCommand declaredCommand(CLI::App& app) {
  DeclaredCommand declared{app.get_name(), app.get_description(), {}, {}};
  for (CLI::Option* option : app.get_options()) {
    (option->nonpositional() ? declared.options : declared.arguments)
        .push_back(declaredOption(*option));
  }
  return declared;
}

}  // namespace

DeclaredTool declaredTool() {
  Request request;
  CLI::App app;
  declareTool(app, request);
  DeclaredTool declared{declaredCommand(app), {}};
  for (const Command& command : commands()) {
    declared.commands.push_back(declaredCommand(*app.get_subcommand(command.name)));
  }
  return declared;
}

void requireAccepted(std::string_view commandLine) {
  Request request;
  CLI::App app;
  declareTool(app, request);
  try {
    app.parse(std::string(commandLine), true);
  } catch (const CLI::ParseError& error) {
    throw std::runtime_error(std::string(commandLine) + ": " + error.what());
  }
}

ValueKind valueKind(const DeclaredOption& option) {
  if (option.value.empty()) return ValueKind::None;
  if (!option.words.empty()) {
    return option.value == "NAMES" ? ValueKind::WordList : ValueKind::Word;
  }
  if (option.value == "FOLDER") return ValueKind::Folder;
  return option.value == "PATH" ? ValueKind::File : ValueKind::Other;
}

}  // namespace tintora::cli

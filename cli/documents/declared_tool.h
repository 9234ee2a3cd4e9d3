// What the tool's parser declares, as plain data: manual pages and completions are made from it.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tintora::cli {

struct DeclaredOption {
  std::vector<std::string> names;  // "--output", "-o"; of an argument without dashes its only name
  std::string value;               // what the value is called, such as PATH; empty for a flag
  std::string description;
  std::vector<std::string> words;  // that the value may be; none if it may be anything
  bool required = false;
  bool repeats = false;
};

struct DeclaredCommand {
  std::string name;
  std::string description;
  std::vector<DeclaredOption> options;
  std::vector<DeclaredOption> arguments;
};

struct DeclaredTool {
  DeclaredCommand tool;  // its name, and the options that stand before a command
  std::vector<DeclaredCommand> commands;
};

// Returns the declarations of tintora-cli.
DeclaredTool declaredTool();

// Throws std::runtime_error if the parser refuses the command line.
void requireAccepted(std::string_view commandLine);

// How the value of an option can be completed.
enum class ValueKind { None, Word, WordList, File, Folder, Other };
ValueKind valueKind(const DeclaredOption& option);

}  // namespace tintora::cli

// What the manual pages say beyond the parser's declarations.
#pragma once

#include <span>
#include <string_view>
#include <vector>

namespace tintora::cli {

struct Example {
  std::string_view line;
  std::string_view meaning;
};

struct CommandText {
  std::string_view command;  // "tintora-cli" for the tool itself
  std::vector<std::string_view> paragraphs;
  std::vector<Example> examples;
};

// Returns the text of a command. Throws std::runtime_error if there is none.
const CommandText& textOf(std::string_view command);

}  // namespace tintora::cli

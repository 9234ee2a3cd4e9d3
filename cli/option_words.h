// The words that an option accepts, for the pages and completions made from the declarations.
#pragma once

#include <CLI/App.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace tintora::cli {

// Notes the words that an option accepts, none of which holds a blank. Does not check arguments.
void noteWords(CLI::Option& option, const std::vector<std::string>& words);

// Returns the noted words; none for an option that accepts anything else.
std::vector<std::string> notedWords(CLI::Option& option);

// Returns the names of a table's entries.
template <typename Table>
std::vector<std::string> namesIn(const Table& table) {
  std::vector<std::string> names;
  for (const auto& entry : table) names.emplace_back(entry.name);
  return names;
}

}  // namespace tintora::cli

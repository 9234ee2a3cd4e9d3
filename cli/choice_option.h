// Options that take one of several words.
#pragma once

#include <CLI/App.hpp>
#include <map>
#include <string>
#include <vector>

#include "cli/option_values.h"
#include "cli/option_words.h"

namespace tintora::cli {

// Adds an option that sets the value by its word and refuses any other word, naming those known.
// The value must outlive the command.
template <typename Value>
void addChoice(CLI::App& command, const std::string& name, Value& value,
               const std::map<std::string, Value>& choices, const std::string& description) {
  std::vector<std::string> words;
  for (const auto& [word, ignored] : choices) words.push_back(word);
  const auto choose = [name, &value, choices](const std::string& text) {
    const auto wordOf = [](const auto& choice) { return choice.first; };
    value = findNamed(name, text, choices, wordOf).second;
  };
  CLI::Option& option =
      *command.add_option_function<std::string>(name, choose, description)->type_name("NAME");
  noteWords(option, words);
}

}  // namespace tintora::cli

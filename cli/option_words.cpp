#include "cli/option_words.h"

#include <sstream>

#include "cli/text.h"

namespace tintora::cli {

namespace {

constexpr const char* noteName = "words";

}  // namespace

// Puts the words into the description of a validator, which CLI11 keeps with its option. One that
// is not active checks nothing and is not shown in the help.
void noteWords(CLI::Option& option, const std::vector<std::string>& words) {
  const auto accept = [](std::string& /*argument*/) { return std::string(); };
  option.check(CLI::Validator(accept, joined(words, " "), noteName).active(false));
}

std::vector<std::string> notedWords(CLI::Option& option) {
  std::vector<std::string> words;
  try {
    CLI::Validator note = *option.get_validator(noteName);
    std::istringstream text(note.active(true).get_description());
    for (std::string word; text >> word;) words.push_back(word);
  } catch (const CLI::OptionNotFound&) {
    return {};
  }
  return words;
}

}  // namespace tintora::cli

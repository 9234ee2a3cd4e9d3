// The values of options: numbers and words, refused with CLI::ValidationError.
#pragma once

#include <string>
#include <string_view>

namespace tintora::cli {

[[noreturn]] void refuse(std::string_view option, const std::string& reason);

// Returns a text as a decimal number, or refuses it if it is none or not between the two bounds.
double parseNumber(std::string_view option, std::string_view text, double least, double most);

// Returns the entry of a table that has the name, by what nameOf makes of an entry, or refuses the
// name and tells all that are known.
template <typename Table, typename NameOf>
const auto& findNamed(std::string_view option, std::string_view name, const Table& table,
                      NameOf nameOf) {
  std::string known;
  for (const auto& entry : table) {
    if (nameOf(entry) == name) return entry;
    known += (known.empty() ? "" : ", ") + std::string(nameOf(entry));
  }
  refuse(option, "\"" + std::string(name) + "\" is none of " + known);
}

}  // namespace tintora::cli

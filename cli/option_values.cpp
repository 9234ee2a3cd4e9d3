#include "cli/option_values.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <charconv>
#include <system_error>

#include "cli/text.h"

namespace tintora::cli {

void refuse(std::string_view option, const std::string& reason) {
  throw CLI::ValidationError(std::string(option), reason);
}

double parseNumber(std::string_view option, std::string_view text, double least, double most) {
  double value = 0.0;
  const bool plus = text.size() > 1 && text[0] == '+' && text[1] != '-';
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data() + (plus ? 1 : 0), end, value);
  if (error == std::errc::invalid_argument || rest != end) {
    refuse(option, "\"" + std::string(text) + "\" is not a number");
  }
  const bool inRange = error == std::errc() && value >= least && value <= most;
  if (!inRange) {
    refuse(option,
           std::string(text) + " is not between " + shortest(least) + " and " + shortest(most));
  }
  return value;
}

}  // namespace tintora::cli

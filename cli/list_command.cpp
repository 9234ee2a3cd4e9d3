#include "cli/list_command.h"

#include "cli/transform_options.h"
#include "engine/colour_effects.h"

namespace tintora::cli {

namespace {

void appendItem(std::string& text, std::string_view name, std::string_view description) {
  constexpr std::size_t column = 12;
  text.append("  ").append(name);
  text.append(name.size() < column ? column - name.size() : 1, ' ').append(description) += '\n';
}

template <typename Names>
void appendNames(std::string& text, std::string_view heading, const Names& names) {
  text.append(heading) += '\n';
  for (const auto& [name, value, description] : names) appendItem(text, name, description);
}

}  // namespace

std::string formatList() {
  std::string text;
  appendNames(text, "Modes (--mode)", modeNames());
  appendNames(text, "Simulation algorithms (--algorithm)", algorithmNames());
  appendNames(text, "Light (--light)", lightNames());
  text += "Colour filters (--filter-colour)\n";
  for (const ColourFilter& filter : colourFilters) {
    std::string passed;
    if (filter.red > 0.0) passed += " red";
    if (filter.green > 0.0) passed += " green";
    if (filter.blue > 0.0) passed += " blue";
    appendItem(text, colourFilterOption(filter), "passes" + passed);
  }
  appendNames(text, "Colour swaps (--swap)", swapNames());
  return text;
}

}  // namespace tintora::cli

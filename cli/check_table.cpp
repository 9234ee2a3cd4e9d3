#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>

#include "cli/check_formats.h"
#include "cli/text.h"

namespace tintora::cli {

namespace {

// A table in the making, and whether it shows colours.
struct Table {
  const CheckedInput& checked;
  bool swatches;
  std::string text;
};

bool standardOutputShowsColours() {
  if (isatty(STDOUT_FILENO) != 1) return false;
  const auto value = [](const char* name) {
    const char* const text = std::getenv(name);
    return std::string_view(text == nullptr ? "" : text);
  };
  if (!value("NO_COLOR").empty()) return false;
  return value("COLORTERM") == "truecolor" || value("COLORTERM") == "24bit";
}

// Counts the characters of a UTF-8 text.
std::size_t lengthOf(std::string_view text) {
  return static_cast<std::size_t>(std::ranges::count_if(
      text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

std::string padLeft(const std::string& text, std::size_t width) {
  return std::string(width - std::min(lengthOf(text), width), ' ') + text;
}

std::string padRight(const std::string& text, std::size_t width) {
  return text + std::string(width - std::min(lengthOf(text), width), ' ');
}

// Returns two blanks on the colour and one after them, or nothing if colours cannot be shown.
std::string swatch(const Table& table, Rgb8 rgb) {
  if (!table.swatches) return "";
  return "\x1b[48;2;" + std::to_string(rgb.red) + ";" + std::to_string(rgb.green) + ";" +
         std::to_string(rgb.blue) + "m  \x1b[0m ";
}

std::string swatchSeen(const Table& table, Rgb8 rgb, const ColourSimulation& viewer) {
  return swatch(table, roundColour(transformColour(makeSimulation(viewer), toColour(rgb))));
}

std::string plural(std::size_t count, const std::string& noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

Rgb8 colourAt(const Table& table, std::size_t place) {
  return table.checked.input.palette.colours[place].rgb;
}

// Returns the swatch, "#rrggbb" and the name of a colour.
std::string described(const Table& table, std::size_t place) {
  const PaletteColour& colour = table.checked.input.palette.colours[place];
  return swatch(table, colour.rgb) + hexText(colour.rgb) +
         (colour.name.empty() ? "" : " " + colour.name);
}

void appendHeading(Table& table, const PaletteOptions& options) {
  const CheckedInput& checked = table.checked;
  table.text += plural(checked.input.palette.colours.size(), "colour") + ", " +
                plural(checked.check.pairs.size(), "pair") + "; " +
                std::string(labelOf(options.algorithm)) + " in " +
                std::string(lightName(lightOf(options))) + " light\n" +
                "CIEDE2000: told apart from " + shortest(options.limits.apart) + ", lost below " +
                shortest(options.limits.lost) + "\n";
  for (const std::string& colour : checked.input.leftOut) {
    table.text += "Left out, because it is translucent: " + colour + "\n";
  }
}

constexpr std::size_t columnWidth = 8;

void appendColours(Table& table) {
  table.text += "\nColours\n";
  const std::vector<PaletteColour>& colours = table.checked.input.palette.colours;
  for (std::size_t i = 0; i < colours.size(); ++i) {
    table.text += padLeft(std::to_string(i + 1), 4) + "  " + described(table, i) + "\n";
  }
}

// Appends one row of the pair table: a colour of the pair, then a figure for each viewer.
template <typename Figure>
void appendRow(Table& table, const CheckedPair& pair, std::size_t place, const std::string& measure,
               const Finding* finding, Figure figure) {
  std::string row = padLeft(std::to_string(place + 1), 4) + "  " +
                    swatch(table, colourAt(table, place)) + hexText(colourAt(table, place)) + "  " +
                    padRight(measure, 9) + padLeft(figure(pair.before), columnWidth - 1) + " ";
  for (std::size_t v = 0; v < pair.after.size(); ++v) {
    row += padLeft(figure(pair.after[v]), columnWidth - 1) + (isLostTo(finding, v) ? "*" : " ");
  }
  row.erase(row.find_last_not_of(' ') + 1);
  table.text += row + "\n";
}

void appendPairs(Table& table, bool onlyFindings) {
  const CheckedInput& checked = table.checked;
  const std::string margin(table.swatches ? 27 : 24, ' ');
  std::string types = margin.substr(5) + std::string(columnWidth - 1, ' ') + " ";
  std::string severities = margin.substr(5) + padLeft("normal", columnWidth - 1) + " ";
  for (const ColourSimulation& viewer : checked.viewers) {
    types += padLeft(std::string(typeName(viewer.type)), columnWidth - 1) + " ";
    severities += padLeft(percentName(viewer.severity), columnWidth - 1) + " ";
  }
  types.pop_back();
  severities.pop_back();
  table.text += "\nPairs" + types + "\n     " + severities + "\n";
  std::size_t next = 0;
  for (std::size_t i = 0; i < checked.check.pairs.size(); ++i) {
    const CheckedPair& pair = checked.check.pairs[i];
    const Finding* const finding = findingOf(checked.check, i, next);
    if (finding == nullptr && onlyFindings) continue;
    appendRow(table, pair, pair.first, "CIEDE2000", finding,
              [](const Difference& difference) { return fixed(difference.ciede2000, 1); });
    appendRow(table, pair, pair.second, "contrast", nullptr,
              [](const Difference& difference) { return fixed(difference.contrast, 2); });
    table.text += "\n";
  }
  table.text.pop_back();
}

void appendSuggestion(Table& table, const Suggestion& suggestion) {
  const Rgb8 from = colourAt(table, suggestion.changed);
  table.text += "    suggestion: " + swatch(table, from) + hexText(from) + " becomes " +
                swatch(table, suggestion.to) + hexText(suggestion.to) + ", a change of " +
                fixed(suggestion.change, 1) + "; then " +
                fixed(suggestion.pair.before.ciede2000, 1) + ", and " +
                fixed(leastDifference(suggestion.pair), 1) + " at least to every viewer\n";
}

void appendFindings(Table& table) {
  const CheckedInput& checked = table.checked;
  const std::size_t count = checked.check.findings.size();
  if (count == 0) {
    table.text += "\nNo findings: whatever is told apart stays so.\n";
    return;
  }
  table.text += "\n" + plural(count, "finding") + "\n";
  for (const Finding& finding : checked.check.findings) {
    const CheckedPair& pair = checked.check.pairs[finding.pair];
    table.text += "  " + described(table, pair.first) + " and " + described(table, pair.second) +
                  ": " + fixed(pair.before.ciede2000, 1) + " apart\n";
    for (const std::size_t viewer : finding.lostTo) {
      const ColourSimulation& simulation = checked.viewers[viewer];
      table.text += "    lost to " + padRight(viewerName(simulation), 12) +
                    swatchSeen(table, colourAt(table, pair.first), simulation) +
                    swatchSeen(table, colourAt(table, pair.second), simulation) +
                    padLeft(fixed(pair.after[viewer].ciede2000, 1), 5) + "\n";
    }
    if (finding.suggestion) {
      appendSuggestion(table, *finding.suggestion);
    } else {
      table.text += "    no change of one of the two alone was found that separates them\n";
    }
  }
}

}  // namespace

std::string formatCheckTable(const CheckRequest& request, const CheckedInput& checked) {
  const bool swatches = request.swatches == Swatches::Always ||
                        (request.swatches == Swatches::Auto && standardOutputShowsColours());
  Table table{checked, swatches, ""};
  appendHeading(table, request.options);
  appendColours(table);
  if (!request.onlyFindings || !checked.check.findings.empty()) {
    appendPairs(table, request.onlyFindings);
  }
  appendFindings(table);
  return table.text;
}

}  // namespace tintora::cli

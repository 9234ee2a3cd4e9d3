#include "cli/check_formats.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <nlohmann/json.hpp>

#include "cli/text.h"

namespace tintora::cli {

namespace {

using Json = nlohmann::ordered_json;

Json colourJson(const PaletteColour& colour) {
  Json json{{"hex", hexText(colour.rgb)}};
  if (!colour.name.empty()) json["name"] = colour.name;
  return json;
}

Json viewerJson(const ColourSimulation& viewer) {
  return {{"deficiency", typeName(viewer.type)}, {"severity", percentOf(viewer.severity)}};
}

Json differenceJson(const Difference& difference) {
  return {{"ciede2000", difference.ciede2000}, {"contrast", difference.contrast}};
}

Json afterJson(const CheckedInput& checked, const CheckedPair& pair) {
  Json after = Json::array();
  for (std::size_t i = 0; i < pair.after.size(); ++i) {
    Json entry = viewerJson(checked.viewers[i]);
    entry.update(differenceJson(pair.after[i]));
    after.push_back(std::move(entry));
  }
  return after;
}

Json suggestionJson(const CheckedInput& checked, const Suggestion& suggestion) {
  const Rgb8 from = checked.input.palette.colours[suggestion.changed].rgb;
  return {{"colour", suggestion.changed},
          {"from", hexText(from)},
          {"to", hexText(suggestion.to)},
          {"change_ciede2000", suggestion.change},
          {"before", differenceJson(suggestion.pair.before)},
          {"after", afterJson(checked, suggestion.pair)}};
}

Json findingJson(const CheckedInput& checked, const Finding& finding) {
  const CheckedPair& pair = checked.check.pairs[finding.pair];
  Json json{{"colours", {pair.first, pair.second}}, {"lost_to", Json::array()}};
  for (const std::size_t viewer : finding.lostTo) {
    json["lost_to"].push_back(viewerJson(checked.viewers[viewer]));
  }
  json["suggestion"] =
      finding.suggestion ? suggestionJson(checked, *finding.suggestion) : Json(nullptr);
  return json;
}

// Returns the text as a field of a CSV file, in quotes if it needs them.
std::string csvField(const std::string& text) {
  if (text.find_first_of("\",\r\n") == std::string::npos) return text;
  std::string quoted = "\"";
  for (const char c : text) quoted += c == '"' ? "\"\"" : std::string(1, c);
  return quoted + "\"";
}

}  // namespace

std::string fixed(double value, int decimals) {
  std::array<char, 64> digits;
  const auto [end, error] = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                          std::chars_format::fixed, decimals);
  return {digits.data(), end};
}

bool isLostTo(const Finding* finding, std::size_t viewer) {
  return finding != nullptr && std::ranges::find(finding->lostTo, viewer) != finding->lostTo.end();
}

const Finding* findingOf(const PaletteCheck& check, std::size_t pair, std::size_t& next) {
  const bool isNext = next < check.findings.size() && check.findings[next].pair == pair;
  return isNext ? &check.findings[next++] : nullptr;
}

std::string formatCheckJson(const CheckRequest& request, const CheckedInput& checked) {
  const PaletteOptions& options = request.options;
  Json json;
  json["algorithm"] = algorithmName(options.algorithm);
  json["light"] = lightName(lightOf(options));
  json["apart"] = options.limits.apart;
  json["lost"] = options.limits.lost;
  json["colours"] = Json::array();
  for (const PaletteColour& colour : checked.input.palette.colours) {
    json["colours"].push_back(colourJson(colour));
  }
  json["left_out"] = checked.input.leftOut;
  json["pairs"] = Json::array();
  std::size_t next = 0;
  for (std::size_t i = 0; i < checked.check.pairs.size(); ++i) {
    const CheckedPair& pair = checked.check.pairs[i];
    if (findingOf(checked.check, i, next) == nullptr && request.onlyFindings) continue;
    Json entry{{"colours", {pair.first, pair.second}}};
    entry["before"] = differenceJson(pair.before);
    entry["after"] = afterJson(checked, pair);
    json["pairs"].push_back(std::move(entry));
  }
  json["findings"] = Json::array();
  for (const Finding& finding : checked.check.findings) {
    json["findings"].push_back(findingJson(checked, finding));
  }
  return json.dump(2) + '\n';
}

std::string formatCheckCsv(const CheckRequest& request, const CheckedInput& checked) {
  std::string text =
      "first,first_name,second,second_name,deficiency,severity,ciede2000_before,ciede2000_after,"
      "contrast_before,contrast_after,lost,change,change_to\n";
  const std::vector<PaletteColour>& colours = checked.input.palette.colours;
  std::size_t next = 0;
  for (std::size_t i = 0; i < checked.check.pairs.size(); ++i) {
    const CheckedPair& pair = checked.check.pairs[i];
    const Finding* const finding = findingOf(checked.check, i, next);
    if (finding == nullptr && request.onlyFindings) continue;
    const PaletteColour& first = colours[pair.first];
    const PaletteColour& second = colours[pair.second];
    std::string change = ",";
    if (finding != nullptr && finding->suggestion) {
      change = hexText(colours[finding->suggestion->changed].rgb) + "," +
               hexText(finding->suggestion->to);
    }
    for (std::size_t v = 0; v < pair.after.size(); ++v) {
      const ColourSimulation& viewer = checked.viewers[v];
      text += hexText(first.rgb) + "," + csvField(first.name) + "," + hexText(second.rgb) + "," +
              csvField(second.name) + "," + std::string(typeName(viewer.type)) + "," +
              shortest(percentOf(viewer.severity)) + "," + shortest(pair.before.ciede2000) + "," +
              shortest(pair.after[v].ciede2000) + "," + shortest(pair.before.contrast) + "," +
              shortest(pair.after[v].contrast) + "," +
              (isLostTo(finding, v) ? "yes," + change : "no,,") + "\n";
    }
  }
  return text;
}

}  // namespace tintora::cli

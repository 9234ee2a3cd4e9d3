#include "cli/matrix_command.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <nlohmann/json.hpp>

#include "cli/text.h"
#include "cli/transform_options.h"
#include "engine/effect_matrix.h"

namespace tintora::cli {

namespace {

// Refuses infinities and NaN, which neither JSON nor SVG has a way to write.
void refuseNonFinite(std::string_view format) {
  for (std::size_t input = 0; input < effectMatrix.size(); ++input) {
    for (std::size_t output = 0; output < effectMatrix[input].size(); ++output) {
      const float entry = effectMatrix[input][output];
      if (std::isfinite(entry)) continue;
      throw RunError("entry [" + std::to_string(input) + "][" + std::to_string(output) +
                     "] of the effect matrix is " + shortest(entry) + ", which " +
                     std::string(format) + " cannot hold");
    }
  }
}

std::string formatText(const std::string& title) {
  std::size_t width = 0;
  for (const auto& row : effectMatrix) {
    for (const float entry : row) width = std::max(width, shortest(entry).size());
  }
  std::string text = title + '\n';
  for (const auto& row : effectMatrix) {
    std::string line;
    for (const float entry : row) {
      const std::string digits = shortest(entry);
      line += std::string(width - digits.size() + (line.empty() ? 0 : 2), ' ') + digits;
    }
    text += line + '\n';
  }
  return text;
}

std::string formatCsv(const std::string& title) {
  std::string quoted;
  for (const char c : title) quoted += c == '"' ? "\"\"" : std::string(1, c);
  std::string text = "title,\"" + quoted + "\"\n";
  for (const auto& row : effectMatrix) {
    std::string line;
    for (const float entry : row) line += (line.empty() ? "" : ",") + shortest(entry);
    text += line + '\n';
  }
  return text;
}

nlohmann::ordered_json rowsOf(const Matrix3x3& m) {
  return {{m[0], m[1], m[2]}, {m[3], m[4], m[5]}, {m[6], m[7], m[8]}};
}

std::string formatJson(const std::string& title, Light light, bool simulated) {
  refuseNonFinite("JSON");
  nlohmann::ordered_json json;
  json["title"] = title;
  json["light"] = light == Light::Linear ? "linear" : "encoded";
  // As doubles, so that they read back to the same value whether as float or as double.
  json["effect_matrix"] = effectMatrix;
  if (simulated) {
    json["simulation_matrix"] = rowsOf(modelContext.uninvertedMatrix);
    json["shown_matrix"] = rowsOf(modelContext.simulationMatrix);
  }
  return json.dump(2) + '\n';
}

// Escapes text for an XML element; what XML cannot hold at all becomes a blank.
std::string escapeXml(std::string text) {
  std::ranges::replace_if(
      text, [](unsigned char c) { return c < ' '; }, ' ');
  return escapeMarkup(text);
}

std::string formatSvg(const std::string& title, Light light) {
  refuseNonFinite("SVG");
  // feColorMatrix takes a row for each output channel: four coefficients and the offset.
  std::string values;
  for (std::size_t output = 0; output < 4; ++output) {
    for (std::size_t input = 0; input < 5; ++input) {
      values += (values.empty() ? ""
                 : input == 0   ? "  "
                                : " ") +
                shortest(effectMatrix[input][output]);
    }
  }
  return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"0\" height=\"0\">\n"
         "  <filter id=\"tintora\" x=\"0\" y=\"0\" width=\"100%\" height=\"100%\" "
         "color-interpolation-filters=\"" +
         std::string(light == Light::Linear ? "linearRGB" : "sRGB") +
         "\">\n"
         "    <title>" +
         escapeXml(title) +
         "</title>\n"
         "    <feColorMatrix type=\"matrix\" values=\"" +
         values +
         "\"/>\n"
         "  </filter>\n"
         "</svg>\n";
}

}  // namespace

std::string formatMatrix(MatrixFormat format, const TransformOptions& options) {
  if (isOnHalfPlanes(options)) {
    throw UsageError(
        "--algorithm brettel1997: is two half planes and no single matrix; filter takes it");
  }
  const std::string title = applyOptions(options);
  switch (format) {
    case MatrixFormat::Json:
      return formatJson(title, lightOf(options), isSimulation(options.settings.Selected));
    case MatrixFormat::Csv:
      return formatCsv(title);
    case MatrixFormat::Svg:
      return formatSvg(title, lightOf(options));
    case MatrixFormat::Text:
      break;
  }
  return formatText(title);
}

}  // namespace tintora::cli

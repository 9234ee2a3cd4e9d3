#include "cli/palette_options.h"

#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <array>
#include <cmath>

#include "cli/option_values.h"
#include "cli/option_words.h"
#include "cli/text.h"
#include "cli/transform_options.h"

namespace tintora::cli {

namespace {

constexpr std::array<AlgorithmLabel, 6> labels{{
    {SimulationAlgorithm::Judd1948, "Judd 1948"},
    {SimulationAlgorithm::Vienot1997Approximated, "Viénot et al. 1997, approximated"},
    {SimulationAlgorithm::Brettel1997, "Brettel et al. 1997"},
    {SimulationAlgorithm::Vienot1999, "Viénot et al. 1999"},
    {SimulationAlgorithm::Yang2008, "Yang et al. 2008"},
    {SimulationAlgorithm::Machado2009, "Machado et al. 2009"},
}};

constexpr std::array<NamedValue<CvdType>, 3> types{{
    {"protan", CvdType::Protan, "long-wave deficient"},
    {"deutan", CvdType::Deutan, "medium-wave deficient"},
    {"tritan", CvdType::Tritan, "short-wave deficient"},
}};

constexpr double wholePercent = 100.0;

template <typename Value>
Value valueNamed(std::string_view option, std::string_view name,
                 std::span<const NamedValue<Value>> table) {
  return findNamed(option, name, table, [](const auto& entry) { return entry.name; }).value;
}

template <typename Value>
std::string_view nameIn(std::span<const NamedValue<Value>> table, Value value) {
  return std::ranges::find(table, value, &NamedValue<Value>::value)->name;
}

// Returns the values of a list with commas, each once and in that order.
template <typename Parse>
auto parseList(std::string_view text, Parse parse) {
  std::vector<decltype(parse(text))> values;
  while (true) {
    const std::size_t comma = std::min(text.find(','), text.size());
    const auto value = parse(text.substr(0, comma));
    if (std::ranges::find(values, value) == values.end()) values.push_back(value);
    if (comma == text.size()) return values;
    text.remove_prefix(comma + 1);
  }
}

template <typename Apply>
CLI::Option& addOption(CLI::App& command, const std::string& name, const std::string& valueName,
                       const std::string& description, Apply apply) {
  return *command
              .add_option_function<std::string>(
                  name, [name, apply](const std::string& text) { apply(name, text); }, description)
              ->type_name(valueName);
}

}  // namespace

std::span<const AlgorithmLabel> algorithmLabels() {
  return labels;
}

std::string_view labelOf(SimulationAlgorithm algorithm) {
  return std::ranges::find(labels, algorithm, &AlgorithmLabel::algorithm)->label;
}

void addPaletteOptions(CLI::App& command, PaletteOptions& options) {
  const auto difference = [](double& value) {
    return [&value](const std::string& name, const std::string& text) {
      constexpr double mostDifference = 200.0;
      value = parseNumber(name, text, 0.0, mostDifference);
    };
  };
  CLI::Option& deficiency = addOption(
      command, "--deficiency", "NAMES",
      "protan, deutan and tritan, or some of them with commas between (default all)",
      [&options](const std::string& name, const std::string& text) {
        options.types = parseList(
            text, [&](std::string_view word) { return valueNamed<CvdType>(name, word, types); });
      });
  noteWords(deficiency, namesIn(types));
  addOption(command, "--severity", "PERCENTS",
            "Severities of the deficiency, with commas between (default 60,100)",
            [&options](const std::string& name, const std::string& text) {
              options.severities = parseList(text, [&](std::string_view number) {
                return parseNumber(name, number, 0.0, wholePercent) / wholePercent;
              });
            });
  CLI::Option& algorithm =
      addOption(command, "--algorithm", "NAME", "Simulation algorithm (default judd); see list",
                [&options](const std::string& name, const std::string& text) {
                  options.algorithm = valueNamed(name, text, algorithmNames());
                });
  noteWords(algorithm, namesIn(algorithmNames()));
  CLI::Option& light = addOption(
      command, "--light", "NAME",
      "encoded (default but for brettel1997): on sRGB values, as on the screen; linear: on light",
      [&options](const std::string& name, const std::string& text) {
        options.light = valueNamed(name, text, lightNames());
      });
  noteWords(light, namesIn(lightNames()));
  addOption(command, "--apart", "DIFFERENCE",
            "CIEDE2000 from which two colours are told apart (default 15)",
            difference(options.limits.apart));
  addOption(command, "--lost", "DIFFERENCE",
            "CIEDE2000 below which two simulated colours are lost (default 8)",
            difference(options.limits.lost));
  addOption(command, "--image-colours,--image-colors", "N",
            "How many main colours a picture has (default 8)",
            [&options](const std::string& /*names*/, const std::string& text) {
              constexpr std::uint64_t mostColours = 64;
              options.imageColours = parseWholeNumber("--image-colours", text, 2, mostColours);
            });
}

void checkCombination(const PaletteOptions& options) {
  const bool isLinear = options.algorithm == SimulationAlgorithm::Brettel1997;
  if (isLinear && options.light == Light::Encoded) {
    throw UsageError("--light encoded: brettel1997 works in linear light only");
  }
}

std::vector<ColourSimulation> viewersOf(const PaletteOptions& options) {
  std::vector<ColourSimulation> viewers;
  for (const CvdType type : options.types) {
    for (const double severity : options.severities) {
      viewers.push_back({type, severity, options.algorithm, lightOf(options)});
    }
  }
  return viewers;
}

Light lightOf(const PaletteOptions& options) {
  const bool isLinear = options.algorithm == SimulationAlgorithm::Brettel1997;
  return options.light.value_or(isLinear ? Light::Linear : Light::Encoded);
}

std::string_view typeName(CvdType type) {
  return nameIn<CvdType>(types, type);
}

std::string_view algorithmName(SimulationAlgorithm algorithm) {
  return nameIn(algorithmNames(), algorithm);
}

std::string_view lightName(Light light) {
  return nameIn(lightNames(), light);
}

double percentOf(double severity) {
  // Fractions of hundredths come back without the last digits' noise.
  constexpr double precision = 1e9;
  return std::round(severity * wholePercent * precision) / precision;
}

std::string percentName(double severity) {
  return shortest(percentOf(severity)) + "%";
}

std::string viewerName(const ColourSimulation& viewer) {
  return std::string(typeName(viewer.type)) + " " + percentName(viewer.severity);
}

}  // namespace tintora::cli

// The options of the commands that judge colours: whose eyes, and by which limits.
#pragma once

#include <CLI/App.hpp>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "palette/palette_check.h"

namespace tintora::cli {

struct PaletteOptions {
  std::vector<CvdType> types{CvdType::Protan, CvdType::Deutan, CvdType::Tritan};
  std::vector<double> severities{0.6, 1.0};  // 0..1
  SimulationAlgorithm algorithm = SimulationAlgorithm::Judd1948;
  std::optional<Light> light;  // that of the algorithm if none is given
  CheckLimits limits;
  std::size_t imageColours = 8;
};

// Authors and year of an algorithm.
struct AlgorithmLabel {
  SimulationAlgorithm algorithm;
  std::string_view label;
};

// Returns every simulation algorithm, oldest first.
std::span<const AlgorithmLabel> algorithmLabels();

std::string_view labelOf(SimulationAlgorithm algorithm);

// Adds the options to a command; parsing it fills the given record, which must outlive the command.
void addPaletteOptions(CLI::App& command, PaletteOptions& options);

// Throws UsageError for a light that the algorithm does not have.
void checkCombination(const PaletteOptions& options);

// Returns one viewer for each type and severity, types outermost.
std::vector<ColourSimulation> viewersOf(const PaletteOptions& options);

// Returns the light that the simulation works in.
Light lightOf(const PaletteOptions& options);

std::string_view typeName(CvdType type);                        // "protan"
std::string_view algorithmName(SimulationAlgorithm algorithm);  // "judd"
std::string_view lightName(Light light);                        // "encoded"
double percentOf(double severity);                              // 60 for 0.6
std::string percentName(double severity);                       // "60%"
std::string viewerName(const ColourSimulation& viewer);         // "protan 60%"

}  // namespace tintora::cli

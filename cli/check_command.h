// tintora-cli check: which colours of a palette are lost to viewers with a deficiency.
#pragma once

#include <CLI/App.hpp>
#include <string>
#include <vector>

#include "cli/palette_input.h"
#include "cli/palette_options.h"

namespace tintora::cli {

enum class CheckFormat { Table, Json, Csv };
enum class Swatches { Auto, Always, Never };

struct CheckRequest {
  PaletteOptions options;
  std::vector<std::string> colours;  // colours and palette files
  std::vector<std::string> images;
  CheckFormat format = CheckFormat::Table;
  Swatches swatches = Swatches::Auto;
  bool onlyFindings = false;
};

// A palette with the verdict on it.
struct CheckedInput {
  InputPalette input;
  std::vector<ColourSimulation> viewers;
  PaletteCheck check;
};

// Adds the arguments and options of the command; parsing it fills the request, which must outlive
// the command.
void addCheckArguments(CLI::App& command, CheckRequest& request);

// Gathers the colours and checks them. Throws UsageError and std::runtime_error.
CheckedInput checkInput(const CheckRequest& request);

// Checks a palette that was gathered.
CheckedInput checkColours(InputPalette input, const PaletteOptions& options);

// Returns the verdict in the format that the request asks for.
std::string formatCheck(const CheckRequest& request, const CheckedInput& checked);

}  // namespace tintora::cli
